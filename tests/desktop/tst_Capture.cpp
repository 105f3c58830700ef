// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The program on a real desktop: what a person sees and gets, to the pixel.

#include "desktop/Session.h"
#include "support/Png.h"
#include "support/Skip.h"

#include <QRegularExpression>
#include <QTest>
#include <QtEndian>

using namespace tovek;

namespace {

DesktopPlan twoMonitors()
{
    DesktopPlan plan;
    plan.size = {1824, 900};
    // The primary one is not at the origin, and the other is neither as large nor in line with it.
    plan.monitors = {{800, 132, 1024, 768}, {0, 0, 800, 600}};
    return plan;
}

int pixelsPerMetre(const QByteArray &png)
{
    const auto chunk = pngChunk(png, "pHYs");
    return chunk && chunk->size() == 9 ? int(qFromBigEndian<quint32>(chunk->constData())) : 0;
}

int worstHalfBrightness(const QImage &bright, const QImage &dimmed)
{
    int worst = 0;
    for (int y = 0; y < bright.height(); ++y) {
        for (int x = 0; x < bright.width(); ++x) {
            const QRgb a = bright.pixel(x, y);
            const QRgb b = dimmed.pixel(x, y);
            worst =
                std::max({worst, std::abs(qRed(a) - 2 * qRed(b)),
                          std::abs(qGreen(a) - 2 * qGreen(b)), std::abs(qBlue(a) - 2 * qBlue(b))});
        }
    }
    return worst;
}

} // namespace

class TestCapture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing(twoMonitors())); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void openingChangesNotOnePixel_data() { scales(); }
    void openingChangesNotOnePixel()
    {
        QFETCH(double, scale);
        for (const DesktopPlan &plan : {DesktopPlan(), twoMonitors()}) {
            Session session(plan, scale);
            session.readsText = true;
            QVERIFY2(session.start(), qPrintable(session.error));
            session.tovek->hand().move({300, 300});
            session.before = session.tovek->eye().lookWhenStill();
            QVERIFY(session.tap(RunningTovek::captureScreenshot));
            // From the key on, so that a flicker is seen as well.
            int worst = 0;
            const bool isOpen = waitUntil([&] {
                worst =
                    std::max(worst, differentPixels(session.before, session.tovek->eye().look()));
                return session.tovek->covers(session.monitors());
            });
            QVERIFY(isOpen);
            for (int look = 0; look < 20; ++look)
                worst =
                    std::max(worst, differentPixels(session.before, session.tovek->eye().look()));
            QCOMPARE(worst, 0);
        }
    }

    void copiesExactlyTheSelection_data() { scales(); }
    void copiesExactlyTheSelection()
    {
        QFETCH(double, scale);
        Session session({}, scale);
        QVERIFY2(session.start(), qPrintable(session.error));
        // The pointer gets to the last pixel, and the selection to the edge behind it.
        const QPoint edge(session.plan.size.width(), session.plan.size.height());
        const QPoint last = edge - QPoint(1, 1);
        const struct
        {
            const char *name;
            QPoint from, to;
            QPoint end = to;
        } drags[]{
            {"down and right", {201, 103}, {538, 407}},
            {"up and left", {538, 407}, {201, 103}},
            {"up and right", {201, 407}, {538, 103}},
            {"down and left", {538, 103}, {201, 407}},
            {"from the left edge", {0, 300}, {157, 421}},
            {"from the top edge", {400, 0}, {517, 133}},
            {"to the right edge", {1001, 300}, {last.x(), 377}, {edge.x(), 377}},
            {"to the bottom edge", {600, 611}, {723, last.y()}, {723, edge.y()}},
            {"the whole screen", {0, 0}, last, edge},
        };
        for (const auto &drag : drags) {
            QVERIFY2(session.openAgain(), drag.name);
            session.select(drag.from, drag.to);
            QVERIFY2(session.tap("Return"), drag.name);
            const QImage image = QImage::fromData(session.pasted());
            const QImage expected = session.expected(drag.from, drag.end);
            QVERIFY2(image.size() == expected.size(), drag.name);
            QVERIFY2(differentPixels(image, expected) == 0, drag.name);
        }
    }

    void savesExactlyTheSelection_data() { scales(); }
    void savesExactlyTheSelection()
    {
        QFETCH(double, scale);
        Session session(twoMonitors(), scale);
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        session.select({903, 207}, {1341, 611});
        QVERIFY(session.tap("Control_L+s"));
        const QByteArray png = session.saved();
        const QImage expected = session.expected({903, 207}, {1341, 611});
        QCOMPARE(QImage::fromData(png).size(), expected.size());
        QCOMPARE(differentPixels(QImage::fromData(png), expected), 0);
        QVERIFY(QRegularExpression(QStringLiteral("^Tovek \\d{4}-\\d\\d-\\d\\d at "
                                                  "\\d\\d\\.\\d\\d\\.\\d\\d\\.png$"))
                    .match(session.savedNames().value(0))
                    .hasMatch());
        QVERIFY(!pngChunk(png, "pHYs"));
        QVERIFY(session.isClosed());
    }

    void recordsTheResolutionOnTheClipboard_data()
    {
        QTest::addColumn<double>("scale");
        QTest::addColumn<double>("dpi");
        // Tenths of a scale, cut off, times 72.
        QTest::newRow("1") << 1.0 << 72.0;
        QTest::newRow("1.25") << 1.25 << 86.4;
        QTest::newRow("1.5") << 1.5 << 108.0;
        QTest::newRow("2") << 2.0 << 144.0;
    }
    void recordsTheResolutionOnTheClipboard()
    {
        QFETCH(double, scale);
        QFETCH(double, dpi);
        Session session({}, scale);
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        session.select({120, 120}, {420, 360});
        QVERIFY(session.tap("Return"));
        QCOMPARE(pixelsPerMetre(session.pasted()), qRound(dpi / 0.0254));
        ClipboardReader reader(session.desktop.displayName());
        QCOMPARE(reader.types(), QStringList{QStringLiteral("image/png")});
    }

    void endsASelectionAtItsScreensEdge()
    {
        Session session(twoMonitors());
        QVERIFY2(session.start(), qPrintable(session.error));
        const QPoint from(600, 300);
        QVERIFY(session.open());
        session.select(from, {1000, 500}); // on to the other monitor
        QVERIFY(session.tap("Return"));
        const QByteArray png = session.pasted();
        const QImage expected = session.expected(from, {800, 500});
        QCOMPARE(QImage::fromData(png).size(), expected.size());
        QCOMPARE(differentPixels(QImage::fromData(png), expected), 0);
        QCOMPARE(pixelsPerMetre(png), qRound(72 / 0.0254));

        QVERIFY(session.openAgain());
        session.select(from, {1000, 500});
        QVERIFY(session.tap("r"));
        session.select({620, 320}, {700, 400});
        QVERIFY(session.tap("Return"));
        const QImage drawn = QImage::fromData(session.pasted());
        QCOMPARE(drawn.size(), expected.size());
        QVERIFY(differentPixels(drawn, expected) > 0);
        QVERIFY(!drawn.hasAlphaChannel());
    }

    void dimsAllButTheSelection_data() { scales(); }
    void dimsAllButTheSelection()
    {
        QFETCH(double, scale);
        Session session({}, scale);
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        session.tovek->hand().dragAndHold({400, 300}, {700, 500});
        // The veil comes within 0.2 s, and the selection grows to where the mouse went. A busy
        // machine rests in between.
        const QRect inside(410, 310, 280, 180);
        QImage seen;
        QVERIFY(waitUntil([&] {
            seen = session.tovek->eye().look();
            const QRect corner(0, 0, 200, 200);
            return worstHalfBrightness(session.before.copy(corner), seen.copy(corner)) <= 2
                && differentPixels(seen.copy(inside), session.before.copy(inside)) == 0;
        }));
        for (const QRect &outside : {QRect(0, 0, 1280, 200), QRect(0, 600, 1280, 200),
                                     QRect(0, 200, 300, 400), QRect(800, 200, 480, 400)}) {
            const int worst = worstHalfBrightness(session.before.copy(outside), seen.copy(outside));
            QVERIFY2(worst <= 2, qPrintable(QString::number(worst)));
        }
        QVERIFY(
            differentPixels(seen.copy(390, 290, 320, 10), session.before.copy(390, 290, 320, 10))
            > 0);
    }

    void showsTheInstantOfTheKey()
    {
        Session session;
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        session.picture->writeLine("invert");
        QVERIFY(session.picture->waitForLine(QStringLiteral("inverted")));
        QVERIFY(session.desktop.showPicture({200, 200, 300, 200}, {QStringLiteral("--unmanaged")}));
        QVERIFY(waitUntil(
            [&] { return differentPixels(session.before, session.tovek->eye().look()) == 0; }));
        session.select({150, 150}, {601, 477});
        QVERIFY(session.tap("Return"));
        QCOMPARE(differentPixels(QImage::fromData(session.pasted()),
                                 session.expected({150, 150}, {601, 477})),
                 0);
    }

    void copiesAtOnceInItsOwnMode()
    {
        Session session;
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open(RunningTovek::captureImage));
        session.select({150, 150}, {301, 277});
        QCOMPARE(differentPixels(QImage::fromData(session.pasted()),
                                 session.expected({150, 150}, {301, 277})),
                 0);
    }

private:
    void scales()
    {
        QTest::addColumn<double>("scale");
        for (double scale : {1.0, 1.25, 1.5, 2.0})
            QTest::addRow("scale %.2f", scale) << scale;
    }
};

QTEST_GUILESS_MAIN(TestCapture)
#include "tst_Capture.moc"
