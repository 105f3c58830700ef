// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/ScreenLock.h"

#include "platform/linux/SessionBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QList>

namespace tovek {

namespace {

struct ScreenSaver
{
    const char *service; ///< also the name of its interface
    const char *path;
};

constexpr ScreenSaver screenSavers[] = {
    {"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver"},
    {"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver"},
    {"org.cinnamon.ScreenSaver", "/org/cinnamon/ScreenSaver"},
    {"org.mate.ScreenSaver", "/org/mate/ScreenSaver"},
    {"org.xfce.ScreenSaver", "/org/xfce/ScreenSaver"},
};

constexpr int answerWithinMs = 100;

} // namespace

bool isScreenSaverActive()
{
    QDBusConnection bus = SessionBus::current();
    if (!bus.isConnected())
        return false;
    QList<QDBusPendingReply<bool>> replies;
    for (const ScreenSaver &saver : screenSavers) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            QString::fromLatin1(saver.service), QString::fromLatin1(saver.path),
            QString::fromLatin1(saver.service), QStringLiteral("GetActive"));
        call.setAutoStartService(false);
        replies << bus.asyncCall(call, answerWithinMs);
    }
    bool isActive = false;
    for (QDBusPendingReply<bool> &reply : replies) {
        reply.waitForFinished();
        isActive = isActive || (reply.isValid() && reply.value());
    }
    return isActive;
}

} // namespace tovek
