// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeNotifications.h"
#include "fakes/LogCapture.h"
#include "feedback/NotificationManager.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestNotificationManager : public QObject
{
    Q_OBJECT

private:
    struct Setup
    {
        FakeNotifications center;
        FakeFileRevealer revealer;
        NotificationManager manager{center, revealer};
        void save(const QString &path)
        {
            manager.showSavedNotification(QStringLiteral("Saved to Desktop"),
                                          QUrl::fromLocalFile(path));
        }
    };

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void registersItsCategories()
    {
        Setup s;
        const std::vector<NotificationCategory> expected{
            {QStringLiteral("SAVE_COMPLETE"),
             {{QStringLiteral("SHOW_IN_FINDER"), QStringLiteral("Show")}}},
            {QStringLiteral("NO_STATUS_ITEM"),
             {{QStringLiteral("CAPTURE"), QStringLiteral("Capture")},
              {QStringLiteral("PREFERENCES"), QStringLiteral("Preferences")}}}};
        QVERIFY(s.center.categories == expected);
    }

    void tellsOfTheSavedFile()
    {
        Setup s;
        QVERIFY(!s.manager.pendingFileUrl());
        s.save(QStringLiteral("/tmp/a b.png"));
        const NotificationRequest &request = s.center.requests.at(0);
        QCOMPARE(request.title, QStringLiteral("Screenshot Saved"));
        QCOMPARE(request.body, QStringLiteral("Saved to Desktop"));
        QCOMPARE(request.categoryIdentifier, QStringLiteral("SAVE_COMPLETE"));
        QCOMPARE(request.userInfo.value(QStringLiteral("fileURL")),
                 QStringLiteral("file:///tmp/a%20b.png"));
        QCOMPARE(s.manager.pendingFileUrl(), QUrl::fromLocalFile(QStringLiteral("/tmp/a b.png")));
    }

    void revealsEachNotificationsOwnFile()
    {
        Setup s;
        s.save(QStringLiteral("/tmp/first.png"));
        s.save(QStringLiteral("/tmp/second.png"));
        QVERIFY(s.center.requests[0].identifier != s.center.requests[1].identifier);
        s.center.choose(0, QStringLiteral("SHOW_IN_FINDER"));
        s.center.choose(1, defaultNotificationAction, QStringLiteral("token"));
        s.center.choose(1, QStringLiteral("dismissed"));
        const std::vector<QUrl> expected{QUrl(QStringLiteral("file:///tmp/first.png")),
                                         QUrl(QStringLiteral("file:///tmp/second.png"))};
        QVERIFY(s.revealer.revealed == expected);
        QCOMPARE(s.revealer.token, QStringLiteral("token"));
    }

    void offersWhatAStatusItemWould()
    {
        Setup s;
        QStringList done;
        s.manager.onCapture = [&] { done << QStringLiteral("capture"); };
        s.manager.onPreferences = [&] { done << QStringLiteral("preferences"); };
        int shown = 0;
        s.manager.showInPlaceOfStatusItem([&] { ++shown; });
        QCOMPARE(shown, 1);
        QCOMPARE(s.center.requests.at(0).categoryIdentifier, QStringLiteral("NO_STATUS_ITEM"));
        s.center.choose(0, QStringLiteral("CAPTURE"));
        s.center.choose(0, QStringLiteral("PREFERENCES"));
        s.center.choose(0, defaultNotificationAction);
        QCOMPARE(done, QStringList({QStringLiteral("capture"), QStringLiteral("preferences")}));
        QVERIFY(s.revealer.revealed.empty());
    }

    void showsAMessageThatLeavesNothingBehind()
    {
        Setup s;
        s.manager.showMessage(QStringLiteral("No picture"));
        QCOMPARE(s.center.requests.at(0).title, QStringLiteral("No picture"));
        QVERIFY(s.center.requests.at(0).isPassing);
    }

    void ignoresAResponseWithoutAFile_data()
    {
        QTest::addColumn<QString>("fileUrl");
        QTest::newRow("missing") << QString();
        QTest::newRow("no URL") << QStringLiteral("http://[");
    }
    void ignoresAResponseWithoutAFile()
    {
        QFETCH(QString, fileUrl);
        Setup s;
        QMap<QString, QString> info;
        if (!fileUrl.isEmpty())
            info.insert(QStringLiteral("fileURL"), fileUrl);
        s.center.onResponse({defaultNotificationAction, info});
        QVERIFY(s.revealer.revealed.empty());
    }

    void logsWhatFails()
    {
        Setup s;
        LogCapture output;
        s.manager.requestAuthorization();
        s.save(QStringLiteral("/tmp/a.png"));
        QVERIFY(output.lines().isEmpty());
        s.center.authorizationError = QStringLiteral("denied");
        s.center.addError = QStringLiteral("no server");
        s.manager.requestAuthorization();
        s.save(QStringLiteral("/tmp/a.png"));
        QCOMPARE(output.lines(),
                 QStringList({"Notification permission error: denied",
                              "Failed to show notification: no server"}));
    }
};

QTEST_GUILESS_MAIN(TestNotificationManager)
#include "tst_NotificationManager.moc"
