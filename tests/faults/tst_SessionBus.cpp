// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The session bus dies, or never answers.

#include "desktop/Session.h"
#include "support/Skip.h"

#include <QElapsedTimer>
#include <QTest>

#include <csignal>

using namespace std::chrono_literals;
using namespace tovek;

class TestSessionBus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    /// Whether a call from outside reaches the program.
    static bool isReached(Session &s)
    {
        Program *gdbus = s.desktop.run(
            "/usr/bin/gdbus",
            {"call", "--session", "--dest", "org.tovek.Tovek", "--object-path", "/org/tovek/Tovek",
             "--method", "org.freedesktop.Application.ActivateAction", "about", "[]", "{}"});
        return gdbus && gdbus->waitForExit() == 0;
    }

    void isSilentAtTheStart()
    {
        Session s;
        QVERIFY2(s.startDesktop(), qPrintable(s.error));
        const pid_t bus = pid_t(s.desktop.bus()->pid());
        QCOMPARE(kill(bus, SIGSTOP), 0);
        QElapsedTimer timer;
        timer.start();
        QVERIFY(s.tovek->start());
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(s.copy({100, 100}, {300, 250}));
        QVERIFY(!s.pasted().isEmpty());
        QCOMPARE(kill(bus, SIGCONT), 0);
        QVERIFY(s.tovek->program().waitForLine(QStringLiteral("There is a session bus again")));
        QVERIFY(isReached(s));
    }

    void dies()
    {
        Session s;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.open());
        s.select({150, 150}, {350, 300});
        QCOMPARE(kill(pid_t(s.desktop.bus()->pid()), SIGKILL), 0);
        QVERIFY(s.tap("Control_L+s"));
        QVERIFY(s.isClosed());
        QVERIFY(!s.saved().isEmpty());
        QVERIFY(s.copy({100, 100}, {300, 250}));
        QVERIFY(!s.pasted().isEmpty());
        QVERIFY(s.desktop.startBus());
        QVERIFY(s.tovek->program().waitForLine(QStringLiteral("There is a session bus again")));
        QVERIFY(isReached(s));
        QVERIFY(s.copy({100, 100}, {300, 250}));
    }
};

QTEST_GUILESS_MAIN(TestSessionBus)
#include "tst_SessionBus.moc"
