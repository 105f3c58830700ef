// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"

#include <QStringList>

namespace tovek {

/// The keys of a desktop that gives them to no program: the user binds our commands to them, in
/// whatever that desktop reads its keys from. Every grab is refused.
class UserBoundHotKeys : public HotKeys
{
public:
    /// By the names of the desktop, as XDG_CURRENT_DESKTOP gives them.
    explicit UserBoundHotKeys(const QString &currentDesktop);

    [[nodiscard]] int grab(quint32, KeyCombo) override { return 1; }
    void release(quint32) override { }
    void setWatchingRawKeys(bool) override { }
    bool reportsRelease() const override { return false; }
    bool isTaken(KeyCombo) override { return false; }
    /// Of the keys, Print with Control, Option or Shift can be written.
    std::optional<CommandBinding> commandBinding(KeyCombo combo,
                                                 const QString &command) const override;

private:
    QStringList m_desktops; ///< in lower case
};

} // namespace tovek
