// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/SystemShortcuts.h"

#include <QProcess>
#include <QStringList>

#include <memory>

class QDBusPendingCallWatcher;

namespace tovek {

class KeyboardLayout;

/// The tables of the desktop that runs: the settings of GNOME and its kin, the settings daemon of
/// Xfce, the shortcut daemon of KDE. Lists nothing on other desktops.
class DesktopShortcuts : public SystemShortcuts
{
public:
    /// The names of the desktop as XDG_CURRENT_DESKTOP gives them; the layout must outlive this.
    DesktopShortcuts(const QString &currentDesktop, const KeyboardLayout &layout);
    ~DesktopShortcuts() override;

    void refresh() override;
    bool contains(KeyCombo combo) override;

    /// The combinations in what `gsettings list-recursively` prints.
    static QStringList fromGSettings(const QString &output);
    /// Those in Xfce's properties, which are the user's own where the user made any.
    static QStringList fromXfconf(const QVariantMap &properties);

private:
    void readGSettings();
    void readXfconf();
    void waitForTables();
    bool isKnownToKde(KeyCombo combo) const;

    const QStringList m_desktops;
    const KeyboardLayout &m_layout;
    QStringList m_accelerators;
    std::unique_ptr<QProcess> m_gsettings; ///< present only while it reads
    std::unique_ptr<QDBusPendingCallWatcher> m_xfconf; ///< likewise
};

} // namespace tovek
