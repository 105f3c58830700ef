// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// What a save tells the desktop, and what the desktop's answer brings about.

#include "desktop/Session.h"
#include "support/DesktopServices.h"
#include "support/Skip.h"

#include <QRegularExpression>
#include <QTest>
#include <QUrl>

using namespace tovek;

namespace {

/// The test's own programs on the desktop's bus.
class DesktopBus
{
public:
    explicit DesktopBus(const TestDesktop &desktop)
        : m_name(QStringLiteral("services of %1").arg(desktop.displayName()))
        , m_bus(QDBusConnection::connectToBus(
              desktop.environment().value(QStringLiteral("DBUS_SESSION_BUS_ADDRESS")), m_name))
    {
    }
    ~DesktopBus() { QDBusConnection::disconnectFromBus(m_name); }
    DesktopBus(const DesktopBus &) = delete;
    DesktopBus &operator=(const DesktopBus &) = delete;

    const QDBusConnection &connection() const { return m_bus; }

private:
    QString m_name;
    QDBusConnection m_bus;
};

/// Saves a part of the screen; the URL of the new file once it is there, or an empty text.
QString save(Session &session, QPoint from, QPoint to)
{
    const QStringList before = session.savedNames();
    if (!session.open())
        return {};
    session.select(from, to);
    const auto fresh = [&] {
        QStringList names = session.savedNames();
        names.removeIf([&](const QString &name) { return before.contains(name); });
        return names.value(0);
    };
    if (!session.tap("Control_L+s") || !session.isClosed()
        || !waitUntil([&] { return !fresh().isEmpty(); }))
        return {};
    const QString path = QDir(session.desktop.downloads()).filePath(fresh());
    return QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded);
}

/// Saves of one second would have one name.
void waitForTheNextSecond()
{
    const int second = QTime::currentTime().second();
    QVERIFY(waitUntil([&] { return QTime::currentTime().second() != second; }));
}

} // namespace

class TestNotifications : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void showsTheFileOfTheNotificationThatIsClicked()
    {
        Session session;
        QVERIFY2(session.start(), qPrintable(session.error));
        const DesktopBus bus(session.desktop);
        NotificationServer server;
        FileManagerService files;
        QVERIFY(server.start(bus.connection()));
        QVERIFY(files.start(bus.connection()));

        const QString first = save(session, {150, 150}, {301, 277});
        QVERIFY(waitUntil([&] { return server.shown.size() == 1; }));
        waitForTheNextSecond();
        const QString second = save(session, {400, 300}, {521, 377});
        QVERIFY(waitUntil([&] { return server.shown.size() == 2; }));
        QVERIFY(!first.isEmpty() && !second.isEmpty());
        QVERIFY(first != second);

        const QStringList urls{first, second};
        for (int index = 0; index < 2; ++index) {
            const NotificationServer::Shown &shown = server.shown[size_t(index)];
            QCOMPARE(shown.title, QStringLiteral("Screenshot Saved"));
            QCOMPARE(shown.body, QUrl(urls[index]).fileName());
            QCOMPARE(shown.actions, QStringList({"default", "", "SHOW_IN_FINDER", "Show"}));
            QCOMPARE(shown.hints.value(QStringLiteral("image-path")).toString(), urls[index]);
            QCOMPARE(shown.replaces, 0U);
        }

        // The older one first, so that it is not merely the last file that is shown.
        Q_EMIT server.ActionInvoked(NotificationServer::number(0),
                                    QStringLiteral("SHOW_IN_FINDER"));
        QVERIFY(waitUntil([&] { return files.shown.size() == 1; }));
        // The server gives no token; the window is to come to the front all the same.
        QVERIFY2(files.startupId.startsWith(QStringLiteral("tovek-")), qPrintable(files.startupId));
        Q_EMIT server.ActionInvoked(NotificationServer::number(1), QStringLiteral("default"));
        QVERIFY(waitUntil([&] { return files.shown.size() == 2; }));
        QCOMPARE(files.shown, urls);

        // Neither somebody else's notification nor another action.
        Q_EMIT server.ActionInvoked(7, QStringLiteral("default"));
        Q_EMIT server.ActionInvoked(NotificationServer::number(0), QStringLiteral("other"));
        Q_EMIT server.ActionInvoked(NotificationServer::number(0), QStringLiteral("default"));
        QVERIFY(waitUntil([&] { return files.shown.size() == 3; }));
        QCOMPARE(files.shown.back(), first);
        QVERIFY(session.tovek->program().isRunning());
    }

    void opensTheFolderWithoutAFileManagerOnTheBus()
    {
        Session session;
        QVERIFY2(session.startDesktop(), qPrintable(session.error));
        // What the desktop would open a folder with.
        const QDir programs(session.desktop.home());
        QFile opener(programs.filePath(QStringLiteral("xdg-open")));
        QVERIFY(opener.open(QIODevice::WriteOnly));
        opener.write("#!/bin/sh\necho \"$1\" >> \"$HOME/opened\"\n");
        opener.close();
        QVERIFY(opener.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
        session.tovek->variables[QStringLiteral("PATH")] =
            programs.path() + QLatin1Char(':') + qEnvironmentVariable("PATH");
        QVERIFY(session.tovek->start());
        const DesktopBus bus(session.desktop);
        NotificationServer server;
        QVERIFY(server.start(bus.connection()));
        QVERIFY(!save(session, {150, 150}, {301, 277}).isEmpty());
        QVERIFY(waitUntil([&] { return server.shown.size() == 1; }));
        Q_EMIT server.ActionInvoked(NotificationServer::number(0), QStringLiteral("default"));
        const auto opened = [&] {
            QFile file(programs.filePath(QStringLiteral("opened")));
            return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
        };
        QVERIFY(waitUntil([&] { return !opened().isEmpty(); }));
        QCOMPARE(QUrl::fromUserInput(QString::fromUtf8(opened())),
                 QUrl::fromLocalFile(session.desktop.downloads() + QLatin1Char('/')));
    }

    void savesWithoutAServer()
    {
        Session session;
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(!save(session, {150, 150}, {301, 277}).isEmpty());
        QVERIFY(
            session.tovek->program().waitForLine(QStringLiteral("Failed to show notification: ")));
        QVERIFY(session.open());
        QVERIFY(session.tap("Escape"));
        QVERIFY(session.isClosed());
    }

    void doesNotWaitForAServerThatHangs()
    {
        Session session;
        QVERIFY2(session.start(), qPrintable(session.error));
        const DesktopBus bus(session.desktop);
        NotificationServer server;
        server.hangs = true;
        QVERIFY(server.start(bus.connection()));
        QVERIFY(!save(session, {150, 150}, {301, 277}).isEmpty());
        const auto hasFailed = [&] {
            return !session.tovek->program()
                        .lines()
                        .filter(QStringLiteral("Failed to show notification: "))
                        .isEmpty();
        };
        // The whole of another capture fits into the time that the server is given.
        QVERIFY(session.copy({400, 300}, {521, 377}));
        QVERIFY(!hasFailed());
        QVERIFY(waitUntil(hasFailed, std::chrono::seconds(20)));
        QVERIFY(session.tovek->program().isRunning());
    }
};

QTEST_GUILESS_MAIN(TestNotifications)
#include "tst_Notifications.moc"
