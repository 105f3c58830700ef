// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/Eye.h"
#include "support/Hand.h"
#include "support/Picture.h"
#include "support/TestDesktop.h"
#include "support/Wait.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestHandAndEye : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (const QString reason = TestDesktop::missing(); !reason.isEmpty())
            QSKIP(qPrintable(reason));
    }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        desktop = std::make_unique<TestDesktop>();
        QVERIFY2(desktop->start(), qPrintable(desktop->error()));
        picture = desktop->showPicture({100, 50, 400, 300}, {QStringLiteral("--plain")});
        QVERIFY(picture);
    }
    void cleanup() { desktop.reset(); }

    void seesEveryPixelOfAPictureInItsPlace()
    {
        const QImage seen = Eye(desktop->displayName()).lookWhenStill({100, 50, 400, 300});
        QCOMPARE(seen.size(), QSize(400, 300));
        for (int y = 0; y < 300; ++y) {
            for (int x = 0; x < 400; ++x)
                QCOMPARE(seen.pixel(x, y), pictureColor(uint32_t(x), uint32_t(y)));
        }
    }

    void countsPixelsThatDiffer()
    {
        const Eye eye(desktop->displayName());
        const QImage before = eye.lookWhenStill();
        QCOMPARE(differentPixels(before, before), 0);
        picture->writeLine("invert");
        QVERIFY(picture->waitForLine(QStringLiteral("inverted")));
        QCOMPARE(differentPixels(before, eye.lookWhenStill()), 400 * 300);
        QCOMPARE(differentPixels(before, before.copy(0, 0, 10, 10)), 1280 * 800);
    }

    void tellsWindowsAndTheFocus()
    {
        const Eye eye(desktop->displayName());
        Hand(desktop->displayName()).click({200, 200});
        QVERIFY(waitUntil([&] { return eye.activeWindow() != 0; }));
        QVERIFY(waitUntil([&] { return eye.inputFocus() == eye.activeWindow(); }));
        // The window manager may still be putting it into its place.
        QVERIFY(waitUntil([&] {
            const QList<SeenWindow> windows = eye.windows();
            return std::any_of(windows.begin(), windows.end(), [](const SeenWindow &window) {
                return window.windowClass == QStringLiteral("Picture")
                    && window.native == QRect(100, 50, 400, 300) && !window.isUnmanaged;
            });
        }));
        QVERIFY(eye.overlays(QStringLiteral("Picture")).isEmpty());
        QVERIFY(desktop->showPicture({0, 0, 50, 60}, {QStringLiteral("--unmanaged")}));
        QCOMPARE(eye.overlays(QStringLiteral("Picture")).size(), 1);
        QCOMPARE(eye.overlays(QStringLiteral("Picture")).first().native, QRect(0, 0, 50, 60));
    }

    void pressesKeysByName()
    {
        Hand hand(desktop->displayName());
        hand.click({200, 200});
        QVERIFY(picture->waitForLine(QStringLiteral("focus in")));
        QVERIFY(hand.tap(QStringLiteral("Shift_L+c")));
        QVERIFY(picture->waitForLine(QStringLiteral("key up 50")));
        const QStringList keys =
            picture->lines().filter(QRegularExpression(QStringLiteral("^key")));
        QCOMPARE(keys.join(QLatin1Char(',')),
                 QStringLiteral("key down 50,key down 54,key up 54,key up 50"));
        QVERIFY(!hand.tap(QStringLiteral("NoSuchKey")));
        QVERIFY(!hand.hold(QStringLiteral("Shift_L+NoSuchKey")));
    }

    void tellsWhetherAnotherHoldsKeys()
    {
        const Hand hand(desktop->displayName());
        const QString chord = QStringLiteral("Super_L+Shift_L+c");
        QVERIFY(!hand.isTaken(chord));
        const XConnection holder(desktop->displayName());
        xcb_grab_key(holder, false, holder.root(), XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT, 54,
                     XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        holder.sync();
        QVERIFY(hand.isTaken(chord));
        QVERIFY(!hand.isTaken(QStringLiteral("Super_L+c")));
    }

    void dragsWithTheMouse()
    {
        Hand hand(desktop->displayName());
        hand.drag({150, 100}, {307, 211});
        QCOMPARE(Eye(desktop->displayName()).pointer(), QPoint(307, 211));
        QVERIFY(picture->waitForLine(QStringLiteral("button down 1")));
    }

private:
    std::unique_ptr<TestDesktop> desktop;
    Program *picture = nullptr;
};

QTEST_GUILESS_MAIN(TestHandAndEye)
#include "tst_HandAndEye.moc"
