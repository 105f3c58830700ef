// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Which of the overlays has the keyboard.

#include "desktop/Drawing.h"
#include "support/Skip.h"

#include <QTest>

using namespace tovek;

namespace {

DesktopPlan twoMonitors()
{
    DesktopPlan plan;
    plan.size = {1600, 800};
    plan.monitors = {{0, 0, 900, 800}, {900, 0, 700, 800}};
    return plan;
}

constexpr QPoint inTheSelection{100, 100};

/// A selection on the left screen, and a hand that clicks on the right one too.
struct TwoScreens : Drawing
{
    TwoScreens() : Drawing(1, twoMonitors()) { }
    /// True once the right screen has answered, which has the keyboard then.
    [[nodiscard]] bool clickOnTheOther()
    {
        const QPoint there(1300, 400);
        const QRgb undimmed = tovek->eye().pixel(there);
        tovek->hand().move(there + QPoint(5, 5));
        tovek->hand().press();
        const bool hasAnswered = waitUntil([&] { return tovek->eye().pixel(there) != undimmed; });
        tovek->hand().release();
        return hasAnswered;
    }
};

/// Asks the window manager for another desktop, as a panel does. True once it is there.
bool showDesktop(const QString &displayName, uint32_t number)
{
    const XConnection x(displayName);
    const xcb_atom_t current = x.atom("_NET_CURRENT_DESKTOP");
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = x.root();
    event.type = current;
    event.data.data32[0] = number;
    xcb_send_event(x, 0, x.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char *>(&event));
    x.sync();
    const QByteArray wanted(reinterpret_cast<const char *>(&number), sizeof number);
    return waitUntil([&] { return x.property(x.root(), current) == wanted; });
}

} // namespace

class TestOverlayFocus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing(twoMonitors())); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void comesBackWithAClickOnTheToolbar()
    {
        TwoScreens d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.clickOnTheOther());
        d.clickButton(Drawing::rectangleButton);
        QVERIFY(d.waitForActiveButton(Drawing::rectangleButton));
        QCOMPARE(differentPixels(d.copied(), d.untouched()), 0);
    }

    void comesBackWithAClickIntoAText()
    {
        TwoScreens d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.tap("t"));
        d.click(inTheSelection);
        const auto hasInk = [&](QRect inSelection) {
            const QRect place(d.at(inSelection.topLeft()), inSelection.size());
            return !boxOf(d.tovek->eye().look(place), Ink::red).isEmpty();
        };
        const QRect caret(inTheSelection, QSize(4, 20));
        QVERIFY(waitUntil([&] { return hasInk(caret); }));
        QVERIFY(d.clickOnTheOther());
        d.click(inTheSelection + QPoint(30, 30));
        // Nothing shows when the click has been dealt with; the other screen has no use for
        // letters.
        QVERIFY(waitUntil([&] { return d.tap("m") && hasInk(caret.translated(5, 0)); }));
    }

    void staysAcrossAChangeOfDesktop()
    {
        TwoScreens d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(showDesktop(d.desktop.displayName(), 1));
        QVERIFY(d.tovek->covers(d.monitors()));
        QVERIFY(d.tap("r") && d.waitForActiveButton(Drawing::rectangleButton));
        QVERIFY(showDesktop(d.desktop.displayName(), 0));
        QCOMPARE(differentPixels(d.copied(), d.untouched()), 0);
    }
};

QTEST_GUILESS_MAIN(TestOverlayFocus)
#include "tst_OverlayFocus.moc"
