// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The programs that make up a desktop stop or die while an overlay is open.

#include "desktop/Session.h"
#include "faults/Processes.h"
#include "support/Skip.h"

#include <QTest>

#include <csignal>
#include <unistd.h>

using namespace tovek;

class TestDesktopPrograms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void areNotNeededForACapture_data()
    {
        QTest::addColumn<QByteArray>("program");
        QTest::addColumn<int>("signal");
        QTest::newRow("window manager killed") << QByteArray("openbox") << SIGKILL;
        QTest::newRow("window manager stopped") << QByteArray("openbox") << SIGSTOP;
        QTest::newRow("compositor killed") << QByteArray("picom") << SIGKILL;
    }
    void areNotNeededForACapture()
    {
        QFETCH(QByteArray, program);
        QFETCH(int, signal);
        DesktopPlan plan;
        plan.hasCompositor = program == "picom";
        SKIP_BECAUSE(TestDesktop::missing(plan));
        Session s(plan);
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.open());
        const pid_t pid = childrenNamed(program, getpid()).value(0);
        QVERIFY(pid > 0);
        QCOMPARE(kill(pid, signal), 0);
        if (program == "openbox" && signal == SIGKILL)
            QVERIFY(waitUntil([&] { return !hasWindowManager(s.desktop.displayName()); }));
        QVERIFY(waitUntil([&] { return s.tovek->covers(s.monitors()); }));
        s.select({150, 150}, {350, 300});
        QVERIFY(s.tap("Return"));
        QCOMPARE(differentPixels(QImage::fromData(s.pasted()), s.expected({150, 150}, {350, 300})),
                 0);
        // The next one, with a file.
        QVERIFY(s.tovek->open(QLatin1String(RunningTovek::captureScreenshot), s.monitors()));
        s.select({100, 100}, {400, 300});
        QVERIFY(s.tap("Control_L+s") && s.isClosed());
        QCOMPARE(differentPixels(QImage::fromData(s.saved()), s.expected({100, 100}, {400, 300})),
                 0);
        kill(pid, SIGCONT);
    }
};

QTEST_GUILESS_MAIN(TestDesktopPrograms)
#include "tst_DesktopPrograms.moc"
