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
    std::optional<ShortcutUse> use(KeyCombo combo) override;

    bool canTakeAway(KeyCombo combo) override;
    QString takeAway(KeyCombo combo) override;
    void giveBack(const QString &taken) override;

    struct Entry
    {
        QString accelerator;
        ShortcutUse use;
        QString setting; ///< of GNOME, a list of combinations: schema and key; may be empty
    };
    /// The combinations in what `gsettings list-recursively` prints.
    static QList<Entry> fromGSettings(const QString &output);
    /// Those in Xfce's properties, which are the user's own where the user made any.
    static QList<Entry> fromXfconf(const QVariantMap &properties);

private:
    void readGSettings();
    void readXfconf();
    void waitForTables();
    std::optional<ShortcutUse> useInKde(KeyCombo combo) const;

    const QStringList m_desktops;
    const KeyboardLayout &m_layout;
    QList<Entry> m_entries;
    std::unique_ptr<QProcess> m_gsettings; ///< present only while it reads
    std::unique_ptr<QDBusPendingCallWatcher> m_xfconf; ///< likewise
};

} // namespace tovek
