// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/DBusFileRevealer.h"
#include "platform/linux/DBusNotifications.h"
#include "support/DesktopServices.h"
#include "support/TestBus.h"

#include <QRegularExpression>
#include <QTest>
#include <QUrl>

using namespace tovek;

class TestDBusNotifications : public QObject
{
    Q_OBJECT

private:
    const QString service = QStringLiteral("org.freedesktop.Notifications");
    TestBus bus;
    std::unique_ptr<NotificationServer> server;

    QDBusConnection serverBus() const
    {
        return QDBusConnection::connectToBus(bus.address(), QStringLiteral("server"));
    }
    static NotificationRequest request(const QString &file)
    {
        return {QStringLiteral("id"),           QStringLiteral("Title"),
                QStringLiteral("a <b> & c"),    QStringLiteral("SAVED"),
                QStringLiteral("/tmp/a b.png"), {{QStringLiteral("file"), file}}};
    }
    /// Adds one and waits for the outcome: the error, or an empty text.
    static QString add(DBusNotifications &notifications, const QString &file)
    {
        std::optional<QString> outcome;
        notifications.add(request(file), [&](const std::optional<QString> &error) {
            outcome = error.value_or(QString());
        });
        [&] { QTRY_VERIFY(outcome); }();
        return outcome.value_or(QStringLiteral("no outcome"));
    }

private Q_SLOTS:
    void initTestCase()
    {
        if (!TestBus::isInstalled())
            QSKIP("dbus-daemon is not installed");
        QVERIFY(bus.start());
    }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        server = std::make_unique<NotificationServer>();
        QVERIFY(server->start(serverBus()));
    }
    void cleanup() { server->stop(serverBus()); }

    void tellsTheServerEverything_data()
    {
        QTest::addColumn<QStringList>("capabilities");
        QTest::addColumn<QString>("body");
        QTest::newRow("plain text") << QStringList{"body", "actions"} << "a <b> & c";
        QTest::newRow("markup") << QStringList{"body", "body-markup"} << "a &lt;b&gt; &amp; c";
    }
    void tellsTheServerEverything()
    {
        QFETCH(QStringList, capabilities);
        server->capabilities = capabilities;
        DBusNotifications notifications;
        notifications.setCategories(
            {{QStringLiteral("OTHER"), {{QStringLiteral("no"), QStringLiteral("No")}}},
             {QStringLiteral("SAVED"), {{QStringLiteral("SHOW"), QStringLiteral("Show")}}}});
        QCOMPARE(add(notifications, QStringLiteral("one")), QString());
        QCOMPARE(server->shown.size(), 1U);
        const NotificationServer::Shown &shown = server->shown[0];
        QCOMPARE(shown.title, QStringLiteral("Title"));
        QTEST(shown.body, "body");
        QCOMPARE(shown.actions, QStringList({"default", "", "SHOW", "Show"}));
        QCOMPARE(shown.hints.value(QStringLiteral("image-path")).toString(),
                 QStringLiteral("file:///tmp/a%20b.png"));
        QCOMPARE(shown.hints.value(QStringLiteral("category")).toString(),
                 QStringLiteral("transfer.complete"));
        QCOMPARE(shown.hints.value(QStringLiteral("desktop-entry")).toString(),
                 QStringLiteral("org.tovek.Tovek"));
    }

    void letsAPassingWordReplaceTheOneBefore()
    {
        DBusNotifications notifications;
        for (const char *title : {"one", "two"}) {
            bool isDone = false;
            NotificationRequest request;
            request.title = QLatin1String(title);
            request.isPassing = true;
            notifications.add(request, [&](const std::optional<QString> &) { isDone = true; });
            QTRY_VERIFY(isDone);
        }
        QCOMPARE(server->shown.size(), 2U);
        QCOMPARE(server->shown[0].replaces, 0U);
        QCOMPARE(server->shown[1].replaces, NotificationServer::number(0));
        QCOMPARE(server->shown[1].hints.value(QStringLiteral("transient")), QVariant(true));
        QVERIFY(!server->shown[1].hints.contains(QStringLiteral("sound-name")));
    }

    void answersForItsOwnNotificationsOnly()
    {
        DBusNotifications notifications;
        QStringList answers;
        notifications.onResponse = [&](const NotificationResponse &response) {
            answers << response.userInfo.value(QStringLiteral("file")) + QLatin1Char(' ')
                    + response.actionIdentifier;
        };
        QCOMPARE(add(notifications, QStringLiteral("one")), QString());
        QCOMPARE(add(notifications, QStringLiteral("two")), QString());
        Q_EMIT server->ActionInvoked(7, QStringLiteral("default"));
        Q_EMIT server->ActionInvoked(101, QStringLiteral("SHOW"));
        Q_EMIT server->ActionInvoked(102, QStringLiteral("default"));
        QTRY_COMPARE(answers, QStringList({"one SHOW", "two default"}));
        Q_EMIT server->NotificationClosed(101, 2);
        Q_EMIT server->ActionInvoked(101, QStringLiteral("SHOW"));
        Q_EMIT server->ActionInvoked(102, QStringLiteral("SHOW"));
        QTRY_COMPARE(answers.size(), 3);
        QCOMPARE(answers.back(), QStringLiteral("two SHOW"));
    }

    void passesTheTokenOfAClickOn()
    {
        DBusNotifications notifications;
        QStringList tokens;
        notifications.onResponse = [&](const NotificationResponse &response) {
            tokens << response.activationToken;
        };
        QCOMPARE(add(notifications, QStringLiteral("one")), QString());
        QCOMPARE(add(notifications, QStringLiteral("two")), QString());
        Q_EMIT server->ActivationToken(101, QStringLiteral("first"));
        Q_EMIT server->ActionInvoked(101, QStringLiteral("SHOW"));
        Q_EMIT server->ActionInvoked(101, QStringLiteral("SHOW")); // it is good for one
        Q_EMIT server->ActivationToken(102, QStringLiteral("second"));
        Q_EMIT server->ActionInvoked(101, QStringLiteral("SHOW"));
        QTRY_COMPARE(tokens, QStringList({"first", "", ""}));
    }

    void reportsAServerThatHangs()
    {
        server->hangs = true;
        DBusNotifications notifications;
        notifications.timeoutMs = 200;
        QVERIFY(!add(notifications, QStringLiteral("one")).isEmpty());
    }

    void reportsAServerThatIsMissing()
    {
        serverBus().unregisterService(service);
        DBusNotifications notifications;
        QVERIFY(add(notifications, QStringLiteral("one")).contains(service));
    }

    void asksANewServerWhatItTakes()
    {
        DBusNotifications notifications;
        QCOMPARE(add(notifications, QStringLiteral("one")), QString());
        QCOMPARE(server->shown.back().body, QStringLiteral("a <b> & c"));
        serverBus().unregisterService(service);
        QTest::qWait(50); // the bus tells us in its own time; nothing is there to be seen
        server->capabilities = QStringList{QStringLiteral("body-markup")};
        QVERIFY(serverBus().registerService(service));
        QCOMPARE(add(notifications, QStringLiteral("two")), QString());
        QCOMPARE(server->shown.back().body, QStringLiteral("a &lt;b&gt; &amp; c"));
    }

    void revealsAFileInTheFileManager()
    {
        FileManagerService manager;
        QVERIFY(manager.start(serverBus()));
        DBusFileRevealer revealer;
        revealer.openFolder = [](const QUrl &) { QFAIL("opened the folder"); };
        const QString token = QStringLiteral("token");
        revealer.activateFileViewer(QUrl(QStringLiteral("https://example.org/a.png")), token);
        revealer.activateFileViewer(QUrl::fromLocalFile(QStringLiteral("/tmp/a b.png")), token);
        QTRY_COMPARE(manager.shown, QStringList{"file:///tmp/a%20b.png"});
        QCOMPARE(manager.startupId, token);
        // The server gave none.
        revealer.newActivationToken = [] { return QStringLiteral("our own"); };
        revealer.activateFileViewer(QUrl::fromLocalFile(QStringLiteral("/tmp/c.png")), {});
        QTRY_COMPARE(manager.startupId, QStringLiteral("our own"));
        manager.stop(serverBus());
    }

    void opensTheFolderWithoutAFileManager()
    {
        DBusFileRevealer revealer;
        QUrl opened;
        revealer.openFolder = [&](const QUrl &folder) { opened = folder; };
        revealer.activateFileViewer(QUrl::fromLocalFile(QStringLiteral("/tmp/a b.png")), {});
        QTRY_COMPARE(opened, QUrl::fromLocalFile(QStringLiteral("/tmp/")));
    }
};

QTEST_GUILESS_MAIN(TestDBusNotifications)
#include "tst_DBusNotifications.moc"
