// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The pixels of outputs on KWin.

#include "desktop/wayland/ExactPixels.h"

#include <QRegularExpression>

using namespace tovek;

class TestExactKWin : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void opensAndCopiesToThePixel_data()
    {
        QTest::addColumn<WaylandPlan>("plan");
        QTest::newRow("one") << onKWin({{roomForDrags, 1}});
        QTest::newRow("scale 2") << onKWin({{roomForDrags * 2, 2}});
        QTest::newRow("two") << onKWin({{roomForDrags, 1}, {roomForDrags, 1}});
    }
    void opensAndCopiesToThePixel()
    {
        QFETCH(WaylandPlan, plan);
        SKIP_BECAUSE(WaylandDesktop::missing(plan));
        verifyExactness(plan);
    }
};

QTEST_GUILESS_MAIN(TestExactKWin)
#include "tst_ExactKWin.moc"
