// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The overlay's keys and the selection's handles, pressed and dragged on a real desktop.

#include "desktop/Session.h"
#include "support/Skip.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void givesTheKeyboardBackAfterEscape()
    {
        Session session;
        QVERIFY2(session.start(), qPrintable(session.error));
        const Eye &eye = session.tovek->eye();
        session.tovek->hand().click({300, 300});
        QVERIFY(waitUntil([&] { return eye.activeWindow() != 0; }));
        const xcb_window_t active = eye.activeWindow();
        const xcb_window_t focus = eye.inputFocus();
        QVERIFY(session.open());
        const qsizetype seen = session.picture->lines().size();
        QVERIFY(session.tap("x"));
        QVERIFY(session.tap("Escape"));
        QVERIFY(session.isClosed());
        QCOMPARE(eye.activeWindow(), active);
        QCOMPARE(eye.inputFocus(), focus);
        QVERIFY(session.tap("y"));
        QVERIFY(session.picture->waitForLine(QStringLiteral("key down 29")));
        const QStringList since = session.picture->lines().mid(seen);
        QVERIFY2(!since.contains(QStringLiteral("key down 53")), "x went to the window below");
        QVERIFY2(!since.contains(QStringLiteral("key down 9")), "Escape went to the window below");
        QVERIFY(!ClipboardReader(session.desktop.displayName()).hasOwner());
    }

    void goesOnWhenReturnHasNothingToCopy()
    {
        Session session;
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        QVERIFY(session.tap("Return"));
        // A click is no selection either.
        session.tovek->hand().click({200, 200});
        QVERIFY(session.tap("Return"));
        QVERIFY(session.tap("space"));
        session.select({100, 100}, {300, 200});
        QVERIFY(session.tovek->covers(session.monitors()));
        QVERIFY(!ClipboardReader(session.desktop.displayName()).hasOwner());
        QVERIFY(session.tap("Return"));
        QCOMPARE(QImage::fromData(session.pasted()).size(), QSize(200, 100));
    }

    void copiesWithEachKey()
    {
        Session session;
        QVERIFY2(session.start(), qPrintable(session.error));
        for (const char *key : {"Return", "KP_Enter", "space", "Control_L+c"}) {
            QVERIFY2(session.openAgain(), key);
            session.select({150, 150}, {301, 277});
            QVERIFY2(session.tap(key), key);
            const QImage image = QImage::fromData(session.pasted());
            QVERIFY2(differentPixels(image, session.expected({150, 150}, {301, 277})) == 0, key);
        }
    }

    void opensOnceForKeysPressedTwice()
    {
        Session session;
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.tap(RunningTovek::captureScreenshot));
        QVERIFY(session.open());
        QCOMPARE(session.tovek->eye().overlays(QStringLiteral("tovek")).size(), 1);
        QVERIFY(session.tap("Escape"));
        QVERIFY(session.isClosed());
    }

    void resizesByEachHandle_data()
    {
        QTest::addColumn<double>("scale");
        for (double scale : {1.0, 1.5})
            QTest::addRow("scale %.1f", scale) << scale;
    }
    void resizesByEachHandle()
    {
        QFETCH(double, scale);
        Session session({}, scale);
        QVERIFY2(session.start(), qPrintable(session.error));
        const QRect start(420, 300, 300, 210);
        const struct
        {
            const char *name;
            int horizontal, vertical; // the side that moves: -1 left or top, 1 right or bottom
        } handles[]{{"topLeft", -1, -1}, {"top", 0, -1},       {"topRight", 1, -1},
                    {"left", -1, 0},     {"right", 1, 0},      {"bottomLeft", -1, 1},
                    {"bottom", 0, 1},    {"bottomRight", 1, 1}};
        for (const auto &handle : handles) {
            QVERIFY2(session.openAgain(), handle.name);
            session.select(start.topLeft(), start.topLeft() + QPoint(300, 210));
            // The zones lie outside the selection; three points out hits each.
            const int out = qRound(3 * scale);
            const QPoint middle = start.topLeft() + QPoint(150, 105);
            const QPoint grip =
                middle + QPoint(handle.horizontal * (150 + out), handle.vertical * (105 + out));
            const QPoint by(handle.horizontal * 37, handle.vertical * 23);
            session.select(grip, grip + by);
            QRect expected = start;
            if (handle.horizontal < 0)
                expected.setLeft(expected.left() - 37);
            if (handle.horizontal > 0)
                expected.setRight(expected.right() + 37);
            if (handle.vertical < 0)
                expected.setTop(expected.top() - 23);
            if (handle.vertical > 0)
                expected.setBottom(expected.bottom() + 23);
            QVERIFY2(session.tap("Return"), handle.name);
            const QImage image = QImage::fromData(session.pasted());
            QVERIFY2(differentPixels(image, session.before.copy(expected)) == 0, handle.name);
        }
    }
};

QTEST_GUILESS_MAIN(TestKeys)
#include "tst_Keys.moc"
