// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/PartSteps.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;
using namespace std::chrono_literals;

class TestPartSteps : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void tellsOnlyWhatTakesLong_data()
    {
        QTest::addColumn<int>("now");
        QTest::addColumn<double>("share");
        QTest::addColumn<bool>("isDue");
        QTest::newRow("too early") << 299 << 0.1 << false;
        QTest::newRow("a tenth after the first step") << 300 << 0.1 << true;
        QTest::newRow("as long as a step is left") << 300 << 300.0 / 550 << true;
        QTest::newRow("less than a step is left") << 300 << 0.56 << false;
        QTest::newRow("all is read") << 5000 << 1.0 << false;
        QTest::newRow("nothing is read") << 5000 << 0.0 << false;
    }
    void tellsOnlyWhatTakesLong()
    {
        QFETCH(int, now);
        QFETCH(double, share);
        QTEST(PartSteps().isDue(std::chrono::milliseconds(now), share), "isDue");
    }

    void restsBetweenTwoParts_data()
    {
        QTest::addColumn<int>("took");
        QTest::addColumn<int>("next");
        QTest::newRow("quickly made") << 5 << 650;
        QTest::newRow("slowly made") << 100 << 400 + 100 + 12 * 100;
    }
    void restsBetweenTwoParts()
    {
        QFETCH(int, took);
        QFETCH(int, next);
        PartSteps steps;
        steps.made(400ms, 400ms + std::chrono::milliseconds(took));
        QVERIFY(!steps.isDue(std::chrono::milliseconds(next - 1), 0.1));
        QVERIFY(steps.isDue(std::chrono::milliseconds(next), 0.1));
    }
};

QTEST_APPLESS_MAIN(TestPartSteps)
#include "tst_PartSteps.moc"
