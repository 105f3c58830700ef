// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/Motion.h"

#include <QTest>

using namespace tovek;

class TestMotion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void swingsOverAndComesToRest()
    {
        SpringMotion motion(1, {0.3, 0.7});
        QVERIFY(motion.isAtRest());
        motion.start(0.92);
        QVERIFY(!motion.isAtRest());
        double lowest = 1;
        for (int i = 0; i < 200 && !motion.isAtRest(); ++i) {
            motion.advance(0.01);
            lowest = std::min(lowest, motion.value());
        }
        // A damping of 0.7 swings over by 4.6 % of the way.
        QVERIFY(lowest < 0.9175 && lowest > 0.9150);
        QVERIFY(motion.isAtRest());
        QCOMPARE(motion.value(), 0.92);
    }

    void turnsRoundWithoutAJump()
    {
        SpringMotion motion(1, {0.3, 0.7});
        motion.start(0.92);
        motion.advance(0.05);
        const double before = motion.value();
        motion.start(1);
        QCOMPARE(motion.value(), before);
    }

    void easesIn_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<double>("expected");
        QTest::addColumn<bool>("isAtRest");
        QTest::newRow("start") << 0.0 << 0.0 << false;
        QTest::newRow("half the time") << 0.05 << 0.25 << false;
        QTest::newRow("end") << 0.1 << 1.0 << true;
        QTest::newRow("after it") << 0.3 << 1.0 << true;
    }
    void easesIn()
    {
        QFETCH(double, seconds);
        QFETCH(double, expected);
        EaseInMotion motion(0, 0.1);
        QVERIFY(motion.isAtRest());
        motion.start(1);
        motion.advance(seconds);
        QCOMPARE(motion.value(), expected);
        QTEST(motion.isAtRest(), "isAtRest");
    }
};

QTEST_APPLESS_MAIN(TestMotion)
#include "tst_Motion.moc"
