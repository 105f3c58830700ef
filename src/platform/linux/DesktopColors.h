// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/WindowColors.h"

#include <QDBusConnection>
#include <QObject>
#include <QStringList>

namespace tovek {

/// As the style asked for in the environment has it, then the settings portal, then GNOME's own
/// setting, which other desktops keep too. The accent is the portal's alone. Nothing is started by
/// asking or listening.
class DesktopColors : public QObject, public WindowColors
{
    Q_OBJECT

public:
    explicit DesktopColors(const QDBusConnection &bus);
    void setBus(const QDBusConnection &bus);

    WindowTheme theme() const override;
    QFuture<WindowTheme> ask() const override;

private Q_SLOTS:
    void settingChanged();
    /// The store of GNOME's settings; paths of keys, or of folders of them.
    void storeChanged(const QString &path, const QStringList &keys, const QString &tag);

private:
    QDBusConnection m_bus;
};

} // namespace tovek
