// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The session says that the screen is about to be locked, while an overlay is open.

#include "desktop/Session.h"
#include "support/Skip.h"

#include <QTest>

using namespace tovek;

class TestLockSignals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void endTheCapture_data()
    {
        QTest::addColumn<QStringList>("signal");
        QTest::addColumn<bool>("ends");
        const QString session = QStringLiteral("/org/freedesktop/login1/session/_31");
        const QString login = QStringLiteral("/org/freedesktop/login1");
        QTest::newRow("lock") << QStringList{session, "org.freedesktop.login1.Session.Lock"}
                              << true;
        QTest::newRow("unlock") << QStringList{session, "org.freedesktop.login1.Session.Unlock"}
                                << false;
        const QString sleep = QStringLiteral("org.freedesktop.login1.Manager.PrepareForSleep");
        QTest::newRow("sleep") << QStringList{login, sleep, "true"} << true;
        QTest::newRow("awake") << QStringList{login, sleep, "false"} << false;
        const QString saver = QStringLiteral("org.gnome.ScreenSaver.ActiveChanged");
        QTest::newRow("screen saver")
            << QStringList{"/org/gnome/ScreenSaver", saver, "true"} << true;
        QTest::newRow("no screen saver")
            << QStringList{"/org/gnome/ScreenSaver", saver, "false"} << false;
    }
    void endTheCapture()
    {
        QFETCH(QStringList, signal);
        QFETCH(bool, ends);
        Session s;
        QVERIFY2(s.startDesktop(), qPrintable(s.error));
        // One bus for both.
        s.tovek->variables[QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS")] =
            s.desktop.environment().value(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
        QVERIFY(s.tovek->start());
        QTest::qWait(1500); // it listens to the machine's bus a second after its start
        QVERIFY(s.open());
        Program *gdbus = s.desktop.run(
            "/usr/bin/gdbus",
            QStringList{"emit", "--session", "--object-path", signal[0], "--signal", signal[1]}
                + signal.mid(2));
        QVERIFY(gdbus && gdbus->waitForExit() == 0);
        if (ends) {
            QVERIFY(s.isClosed());
            return;
        }
        QTest::qWait(300);
        QVERIFY(s.tovek->covers(s.monitors()));
        QVERIFY(s.tap("Escape") && s.isClosed());
    }
};

QTEST_GUILESS_MAIN(TestLockSignals)
#include "tst_LockSignals.moc"
