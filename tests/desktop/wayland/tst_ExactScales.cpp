// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The pixels of outputs on sway, at scales with fractions and without.

#include "desktop/wayland/ExactPixels.h"

#include <QRegularExpression>

using namespace tovek;

class TestExactScales : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void opensAndCopiesToThePixel_data()
    {
        QTest::addColumn<WaylandPlan>("plan");
        for (const double scale : {1.0, 1.25, 1.5, 2.0})
            QTest::addRow("scale %.2f", scale) << WaylandPlan{{{roomForDrags * scale, scale}}};
        QTest::newRow("mixed") << WaylandPlan{{{QSize(800, 600), 1}, {roomForDrags * 2, 2}}};
    }
    void opensAndCopiesToThePixel()
    {
        QFETCH(WaylandPlan, plan);
        SKIP_BECAUSE(WaylandDesktop::missing(plan));
        verifyExactness(plan);
    }

    void opensWhereAFractionOfAPointIsLeft()
    {
        const WaylandPlan plan{{{QSize(1281, 801), 1.5}}};
        SKIP_BECAUSE(WaylandDesktop::missing(plan));
        WaylandSession session(plan);
        QVERIFY2(session.start(), qPrintable(session.error));
        // Of such an output grim makes a picture that is not exact; it is the same one twice.
        verifyThatOpeningChangesNothing(session);
    }
};

QTEST_GUILESS_MAIN(TestExactScales)
#include "tst_ExactScales.moc"
