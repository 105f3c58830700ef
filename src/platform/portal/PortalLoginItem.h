// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/LoginItem.h"
#include "platform/portal/PortalBus.h"

#include <memory>

namespace tovek {

struct PortalAnswer;

/// Starting at login as a program in a sandbox may have it: the desktop's portal is asked, and may
/// ask the user. It tells nobody later on what came of it, so that is kept in a file.
class PortalLoginItem : public QObject, public LoginItem
{
public:
    /// `note` is the path of that file, which is there while the program starts at login.
    PortalLoginItem(std::shared_ptr<PortalBus> bus, QString note);

    bool isEnabled() const override;
    /// What is refused later is told by `onChanged`.
    [[nodiscard]] std::optional<QString> setEnabled(bool isEnabled) override;
    void setWatching(bool isOn) override { m_isWatching = isOn; }

    static QString standardNote();

private:
    std::optional<QString> keep(bool isEnabled);
    void answered(const PortalAnswer &answer, bool wanted);

    std::shared_ptr<PortalBus> m_bus;
    const QString m_note;
    bool m_isWatching = false;
    int m_questions = 0; ///< counts them: only the last answer matters
};

} // namespace tovek
