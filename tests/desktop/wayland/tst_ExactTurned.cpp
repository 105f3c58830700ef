// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The pixels of outputs that are turned and mirrored.

#include "desktop/wayland/ExactPixels.h"

#include <QRegularExpression>

using namespace tovek;

class TestExactTurned : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void opensAndCopiesToThePixel_data()
    {
        QTest::addColumn<WaylandPlan>("plan");
        for (const char *transform : {"90", "270", "flipped"})
            QTest::addRow("turned %s", transform)
                << WaylandPlan{{{QSize(560, 640), 1, QString::fromLatin1(transform)}}};
    }
    void opensAndCopiesToThePixel()
    {
        QFETCH(WaylandPlan, plan);
        SKIP_BECAUSE(WaylandDesktop::missing(plan));
        verifyExactness(plan);
    }
};

QTEST_GUILESS_MAIN(TestExactTurned)
#include "tst_ExactTurned.moc"
