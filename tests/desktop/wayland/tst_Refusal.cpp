// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// What the program does where it can see nothing of the desktop.

#include "support/Pixels.h"
#include "support/Skip.h"
#include "support/Wait.h"
#include "support/WaylandDesktop.h"
#include "support/WaylandHand.h"

#include <QRegularExpression>

using namespace tovek;

class TestRefusal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(WaylandDesktop::missing(plan())); }

    void opensNoOverlayOverWhatItCannotSee()
    {
        WaylandDesktop desktop(plan());
        QVERIFY2(desktop.start(), qPrintable(desktop.error()));
        const WaylandHand hand(desktop.socket(), {1280, 800});
        const QImage before = desktop.lookWhenStill();
        Program *tovek = startOnXWayland(desktop, {QStringLiteral("--background")});
        QVERIFY(tovek->waitForLine(QStringLiteral("This Wayland session cannot be captured")));
        QCOMPARE(desktop.windowTitles(), QStringList());
        for (const char *action : {"start-capture", "capture-image", "capture-text"}) {
            QVERIFY(waitUntil([&] { return act(desktop, QLatin1String(action)); }));
            QVERIFY(waitUntil([&] { return desktop.windowTitles() == QStringList{"Tovek"}; }));
        }
        const QImage after = desktop.lookWhenStill();
        const QRect aside(0, 0, 300, 800);
        QCOMPARE(differentPixels(after.copy(aside), before.copy(aside)), 0);
        QVERIFY(differentPixels(after, before) > 0);
    }

    void saysSoAtTheStart()
    {
        WaylandDesktop desktop(plan());
        QVERIFY2(desktop.start(), qPrintable(desktop.error()));
        WaylandHand hand(desktop.socket(), {1280, 800});
        QVERIFY(startOnXWayland(desktop, {}));
        QVERIFY(waitUntil([&] { return desktop.windowTitles() == QStringList{"Tovek"}; }));
        QVERIFY(hand.tap(QStringLiteral("Escape")));
        QVERIFY(waitUntil([&] { return desktop.windowTitles().isEmpty(); }));
    }

private:
    static WaylandPlan plan()
    {
        WaylandPlan plan;
        plan.hasXWayland = true;
        return plan;
    }

    static Program *startOnXWayland(WaylandDesktop &desktop, const QStringList &arguments)
    {
        QString display;
        const auto hasDisplay = [&] {
            display = desktop.xDisplay();
            return !display.isEmpty();
        };
        if (!waitUntil(hasDisplay))
            return nullptr;
        return desktop.run(qEnvironmentVariable("TOVEK_PROGRAM"), arguments,
                           {{QStringLiteral("DISPLAY"), display},
                            {QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb")}});
    }

    static bool act(WaylandDesktop &desktop, const QString &action)
    {
        return !desktop
                    .output(QStringLiteral("gdbus"),
                            {QStringLiteral("call"), QStringLiteral("--session"),
                             QStringLiteral("--dest"), QStringLiteral("org.tovek.Tovek"),
                             QStringLiteral("--object-path"), QStringLiteral("/org/tovek/Tovek"),
                             QStringLiteral("--method"),
                             QStringLiteral("org.freedesktop.Application.ActivateAction"), action,
                             QStringLiteral("[]"), QStringLiteral("{}")})
                    .isEmpty();
    }
};

QTEST_GUILESS_MAIN(TestRefusal)
#include "tst_Refusal.moc"
