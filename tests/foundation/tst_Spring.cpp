// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Spring.h"

#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace tovek;

class TestSpring : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void followsTheEquationOfMotion_data()
    {
        QTest::addColumn<double>("response");
        QTest::addColumn<double>("damping");
        QTest::newRow("the toast's") << 0.25 << 0.6;
        QTest::newRow("hardly damped") << 0.5 << 0.05;
        QTest::newRow("almost critical") << 0.25 << 0.999;
        QTest::newRow("critical") << 0.25 << 1.0;
        QTest::newRow("just beyond critical") << 0.25 << 1.001;
        QTest::newRow("heavily damped") << 0.4 << 2.5;
    }
    void followsTheEquationOfMotion()
    {
        QFETCH(double, response);
        QFETCH(double, damping);
        const Spring spring{response, damping};
        const double frequency = 2 * std::numbers::pi / response;
        const auto acceleration = [&](double x, double v) {
            return -2 * damping * frequency * v - frequency * frequency * x;
        };
        const double step = 1e-4;
        double x = 1;
        double v = 0;
        for (int i = 1; i <= 10000; ++i) { // fourth-order Runge-Kutta
            const double v1 = v, a1 = acceleration(x, v);
            const double v2 = v + step / 2 * a1, a2 = acceleration(x + step / 2 * v1, v2);
            const double v3 = v + step / 2 * a2, a3 = acceleration(x + step / 2 * v2, v3);
            const double v4 = v + step * a3, a4 = acceleration(x + step * v3, v4);
            x += step / 6 * (v1 + 2 * v2 + 2 * v3 + v4);
            v += step / 6 * (a1 + 2 * a2 + 2 * a3 + a4);
            if (i % 250 == 0)
                QVERIFY2(std::abs(spring.progress(i * step) - (1 - x)) < 1e-7,
                         qPrintable(QString::number(i * step)));
        }
    }

    void startsAtRest()
    {
        const Spring spring;
        QCOMPARE(spring.progress(-1), 0.0);
        QCOMPARE(spring.progress(0), 0.0);
        QVERIFY(spring.progress(1e-4) < 1e-4);
    }

    void overshootsByItsDampingAlone_data()
    {
        QTest::addColumn<double>("damping");
        QTest::addColumn<double>("overshoot");
        // The first peak of an underdamped spring lies e^(-pi z / sqrt(1 - z^2)) beyond its rest.
        QTest::newRow("the toast's") << 0.6 << std::exp(-std::numbers::pi * 0.6 / 0.8);
        QTest::newRow("critical") << 1.0 << 0.0;
        QTest::newRow("heavily damped") << 3.0 << 0.0;
    }
    void overshootsByItsDampingAlone()
    {
        QFETCH(double, damping);
        QFETCH(double, overshoot);
        const Spring spring{0.25, damping};
        double peak = 0;
        for (double t = 0; t < 2; t += 1e-4)
            peak = std::max(peak, spring.progress(t));
        QVERIFY(std::abs(std::max(0.0, peak - 1) - overshoot) < 1e-5);
    }

    void staysWithinTheToleranceOnceSettled_data()
    {
        QTest::addColumn<double>("damping");
        QTest::newRow("under") << 0.6;
        QTest::newRow("critical") << 1.0;
        QTest::newRow("over") << 2.0;
    }
    void staysWithinTheToleranceOnceSettled()
    {
        QFETCH(double, damping);
        const Spring spring{0.25, damping};
        const double settled = spring.settleTime(0.01);
        for (double t = settled; t < settled + 1; t += 1e-3)
            QVERIFY(std::abs(spring.progress(t) - 1) <= 0.0100001);
        // Not needlessly late: half a period earlier it is not settled yet.
        double farthest = 0;
        for (double t = settled - 0.25; t < settled; t += 1e-3)
            farthest = std::max(farthest, std::abs(spring.progress(t) - 1));
        QVERIFY(farthest > 0.01);
    }
};

QTEST_APPLESS_MAIN(TestSpring)
#include "tst_Spring.moc"
