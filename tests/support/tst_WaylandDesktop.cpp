// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/Skip.h"
#include "support/Wait.h"
#include "support/WaylandDesktop.h"
#include "support/WaylandHand.h"

#include <QJsonObject>

using namespace tovek;

class TestWaylandDesktop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(WaylandDesktop::missing()); }

    void hasTheOutputsOfThePlan()
    {
        WaylandDesktop desktop({{{QSize(640, 480), 1}, {QSize(1200, 900), 1.5}}});
        QVERIFY2(desktop.start(), qPrintable(desktop.error()));
        QCOMPARE(desktop.look(0).size(), QSize(640, 480));
        QCOMPARE(desktop.look(1).size(), QSize(1200, 900));
        QVERIFY(!desktop.lookWhenStill().isNull());
    }

    void takesInput()
    {
        WaylandDesktop desktop;
        QVERIFY2(desktop.start(), qPrintable(desktop.error()));
        WaylandHand hand(desktop.socket(), {1280, 800});
        QVERIFY(hand.isWorking());
        for (const char *message :
             {"mode seen bindsym Escape mode default", "bindsym Mod4+Shift+c mode seen"})
            QVERIFY(!desktop.tell({QLatin1String(message)}).isNull());
        QVERIFY(hand.tap(QStringLiteral("Super_L+Shift_L+c")));
        QVERIFY(waitUntil([&] {
            return desktop.tell({QStringLiteral("-t"), QStringLiteral("get_binding_state")})
                       .object()
                       .value(QLatin1String("name"))
                == QLatin1String("seen");
        }));
        QVERIFY(!hand.tap(QStringLiteral("NoSuchKey")));
    }
};

QTEST_GUILESS_MAIN(TestWaylandDesktop)
#include "tst_WaylandDesktop.moc"
