// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The processes that recognise text stand still, or die.

#include "desktop/Session.h"
#include "faults/Processes.h"
#include "support/Skip.h"

#include <QElapsedTimer>
#include <QTest>

#include <csignal>

using namespace tovek;

class TestRecogniser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void holdsUpNothing_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("stopped") << SIGSTOP;
        QTest::newRow("killed") << SIGKILL;
    }
    void holdsUpNothing()
    {
        QFETCH(int, signal);
        Session s;
        s.readsText = true;
        QVERIFY2(s.start(), qPrintable(s.error));
        const qint64 pid = s.tovek->program().pid();
        QVERIFY(s.open());
        QVERIFY(waitUntil([&] { return !childrenNamed("tovek-ocr", pid).isEmpty(); }));
        for (const pid_t engine : childrenNamed("tovek-ocr", pid))
            kill(engine, signal);
        s.select({150, 150}, {350, 300}); // it begins to read
        QVERIFY(s.tap("Return"));
        QCOMPARE(differentPixels(QImage::fromData(s.pasted()), s.expected({150, 150}, {350, 300})),
                 0);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(kill(pid_t(pid), SIGTERM), 0);
        QCOMPARE(s.tovek->program().waitForExit(), std::optional(0));
        QVERIFY2(timer.elapsed() < 4000, qPrintable(QString::number(timer.elapsed())));
    }

    void startsNoneForAnImage()
    {
        Session s;
        s.readsText = true;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.copy({100, 100}, {300, 250}));
        QVERIFY(!s.pasted().isEmpty());
        QTest::qWait(300);
        QCOMPARE(childrenNamed("tovek-ocr", s.tovek->program().pid()), QList<pid_t>());
    }
};

QTEST_GUILESS_MAIN(TestRecogniser)
#include "tst_Recogniser.moc"
