// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/UnreadErrors.h"

#include "platform/linux/BusProbe.h"
#include "platform/linux/SessionBus.h"

#include <QDBusMessage>
#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto busLimit = 500ms;
constexpr int serverLimitMs = 2000; // it may have to be started

} // namespace

bool areErrorsUnread()
{
    struct stat file = {};
    if (fstat(STDERR_FILENO, &file) != 0)
        return true;
    if (S_ISCHR(file.st_mode))
        return !isatty(STDERR_FILENO);
    // The session's journal is a socket; sessions of X11 write into a file of this name.
    return S_ISSOCK(file.st_mode)
        || QFile::symLinkTarget(QStringLiteral("/proc/self/fd/2"))
               .contains(QLatin1String("xsession-errors"));
}

void notifyOfError(const QString &error)
{
    if (probeBus(sessionBusAddress(), busLimit) != BusHealth::answers)
        return;
    QDBusMessage notify = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.Notifications"),
        QStringLiteral("/org/freedesktop/Notifications"),
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
    const QVariantMap hints{{QStringLiteral("desktop-entry"), QStringLiteral("org.tovek.Tovek")}};
    // Where the server takes markup, a sign of it would cut the text.
    notify << QStringLiteral("Tovek") << 0U << QStringLiteral("org.tovek.Tovek")
           << QStringLiteral("Tovek") << QString(error).remove(QLatin1Char('<')) << QStringList()
           << hints << -1;
    SessionBus::current().call(notify, QDBus::Block, serverLimitMs);
}

} // namespace tovek
