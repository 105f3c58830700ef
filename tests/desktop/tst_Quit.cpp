// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "desktop/Session.h"
#include "support/SelectionReader.h"
#include "support/Skip.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestQuit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void takesNoKeyWhileAReaderKeepsItWaiting()
    {
        // So large that the server does not take it in one piece.
        DesktopPlan plan;
        plan.size = {3840, 2400};
        Session session(plan);
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.copy({0, 0}, {3839, 2399}));
        const QByteArray copied = session.pasted();
        SelectionReader reader(session.desktop.displayName().toLatin1());
        const auto value = reader.read("image/png", [&](int piece) {
            if (piece > 0)
                return true;
            Program *quit = session.desktop.run(QStringLiteral("/usr/bin/gdbus"),
                                                {"call", "--session", "--dest", "org.tovek.Tovek",
                                                 "--object-path", "/org/tovek/Tovek", "--method",
                                                 "org.freedesktop.Application.ActivateAction",
                                                 "quit", "[]", "{}"});
            bool isTapped = quit && quit->waitForExit() == 0;
            for (int tap = 0; tap < 5; ++tap)
                isTapped = isTapped && session.tap(RunningTovek::captureScreenshot);
            // From one that has ended by them nothing more would come.
            const auto hasEnded = [&] { return !session.tovek->program().isRunning(); };
            return isTapped && !waitUntil(hasEnded, std::chrono::milliseconds(300));
        });
        QVERIFY(value && value->pieces > 1);
        QVERIFY(value->bytes == copied);
        QCOMPARE(session.tovek->program().waitForExit(), std::optional(0));
        QVERIFY(session.isClosed());
        QVERIFY(session.pasted() == copied);
    }
};

QTEST_GUILESS_MAIN(TestQuit)
#include "tst_Quit.moc"
