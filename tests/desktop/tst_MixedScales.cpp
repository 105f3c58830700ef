// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Screens that each have a scale of their own: neither may show or cut anything by the other's.

#include "desktop/Session.h"
#include "support/Png.h"
#include "support/Skip.h"

#include <QRegularExpression>
#include <QTest>
#include <QtEndian>
#include <QtMath>

using namespace tovek;

namespace {

// The primary one is not at the origin, and the other is neither as large nor in line with it.
const QRect primary(800, 132, 1024, 768);
const QRect second(0, 0, 800, 600);
// Letters are hinted only where every screen has scale 1 (Qt 6.4). With this one they never are.
const QRect third(0, 640, 320, 240);
constexpr int thirdScale = 2;

DesktopPlan threeMonitors()
{
    DesktopPlan plan;
    plan.size = {1824, 900};
    plan.monitors = {primary, second, third};
    return plan;
}

struct Scales
{
    double primary = 1, second = 1;
};

struct MixedSession : Session
{
    MixedSession() : Session(threeMonitors()) { }
    [[nodiscard]] bool start(Scales scales)
    {
        if (!startDesktop())
            return false;
        tovek->variables[QStringLiteral("QT_SCREEN_SCALE_FACTORS")] =
            QStringLiteral("%1=%2;%3=%4;%5=%6")
                .arg(TestDesktop::monitorName(0))
                .arg(scales.primary)
                .arg(TestDesktop::monitorName(1))
                .arg(scales.second)
                .arg(TestDesktop::monitorName(2))
                .arg(thirdScale);
        return tovek->start() || fail(tovek->error());
    }
    [[nodiscard]] bool openAndSelect(QRect native)
    {
        if (!open())
            return false;
        select(native.topLeft(), native.topLeft() + QPoint(native.width(), native.height()));
        tovek->hand().move(primary.topLeft() + QPoint(5, 5));
        return true;
    }
};

int pixelsPerMetre(const QByteArray &png)
{
    const auto chunk = pngChunk(png, "pHYs");
    return chunk && chunk->size() == 9 ? int(qFromBigEndian<quint32>(chunk->constData())) : 0;
}

/// How many pixels differ by more than nobody can see: what shines through the toolbar's glass is
/// of a moment in which the handles below it may still change.
int visiblyDifferentPixels(const QImage &one, const QImage &other)
{
    int count = 0;
    for (int y = 0; y < one.height(); ++y) {
        const auto *left = reinterpret_cast<const QRgb *>(one.constScanLine(y));
        const auto *right = reinterpret_cast<const QRgb *>(other.constScanLine(y));
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = left[x];
            const QRgb b = right[x];
            count += std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                               std::abs(qBlue(a) - qBlue(b))})
                > 3;
        }
    }
    return count;
}

/// Tenths of the scale, cut off, times 72 to the inch.
int resolutionOf(double scale)
{
    return qRound(qFloor(scale * 10) / 10.0 * 72 / 0.0254);
}

} // namespace

class TestMixedScales : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing(threeMonitors())); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void openingChangesNotOnePixel_data() { scales(); }
    void openingChangesNotOnePixel()
    {
        MixedSession session;
        QVERIFY2(session.start(fetched()), qPrintable(session.error));
        for (const QRect &under : {primary, second}) {
            session.tovek->hand().move(under.center());
            session.before = session.tovek->eye().lookWhenStill();
            QVERIFY(session.tap(RunningTovek::captureScreenshot));
            int worst = 0;
            const auto look = [&] {
                worst =
                    std::max(worst, differentPixels(session.before, session.tovek->eye().look()));
                return session.tovek->covers(session.monitors());
            };
            QVERIFY(waitUntil(look));
            for (int count = 0; count < 5; ++count)
                look();
            QCOMPARE(worst, 0);
            QVERIFY(session.tap("Escape"));
            QVERIFY(session.isClosed());
        }
    }

    void copiesExactlyFromEachScreen_data() { scales(); }
    void copiesExactlyFromEachScreen()
    {
        MixedSession session;
        QVERIFY2(session.start(fetched()), qPrintable(session.error));
        const struct
        {
            const char *name;
            QPoint from, to;
            double scale;
        } drags[]{
            {"inside the primary", {1003, 331}, {1340, 507}, fetched().primary},
            {"up and left there", {1340, 507}, {1003, 331}, fetched().primary},
            {"from its top left corner", primary.topLeft(), {1117, 333}, fetched().primary},
            {"to its bottom right", {1501, 611}, primary.bottomRight(), fetched().primary},
            {"inside the second", {203, 131}, {540, 307}, fetched().second},
            {"up and right there", {203, 307}, {540, 131}, fetched().second},
            {"from the origin", {0, 0}, {157, 121}, fetched().second},
            {"to its bottom right corner", {501, 411}, second.bottomRight(), fetched().second},
        };
        for (const auto &drag : drags) {
            QVERIFY2(session.openAgain(), drag.name);
            session.select(drag.from, drag.to);
            QVERIFY2(session.tap("Return"), drag.name);
            const QByteArray png = session.pasted();
            // The last column and row mean the screen's own edge, which is beyond them.
            const QRect monitor = primary.contains(drag.to) ? primary : second;
            const QPoint beyond(drag.to.x() == monitor.right(), drag.to.y() == monitor.bottom());
            const QImage expected = session.expected(drag.from, drag.to + beyond);
            QVERIFY2(QImage::fromData(png).size() == expected.size(), drag.name);
            QVERIFY2(differentPixels(QImage::fromData(png), expected) == 0, drag.name);
            QVERIFY2(pixelsPerMetre(png) == resolutionOf(drag.scale), drag.name);
        }
    }

    void savesExactlyFromEachScreen()
    {
        MixedSession session;
        QVERIFY2(session.start({1.25, 2}), qPrintable(session.error));
        for (const QPoint &from : {QPoint(903, 207), QPoint(101, 53)}) {
            const QPoint to = from + QPoint(438, 404);
            QVERIFY(session.openAgain());
            session.select(from, to);
            QVERIFY(session.tap("Control_L+s"));
            const QByteArray png = session.saved();
            const QImage expected = session.expected(from, to);
            QCOMPARE(QImage::fromData(png).size(), expected.size());
            QCOMPARE(differentPixels(QImage::fromData(png), expected), 0);
            QVERIFY(QFile::remove(
                QDir(session.desktop.downloads()).filePath(session.savedNames().value(0))));
        }
    }

    /// Label, handles, veil and toolbar come to look as where every screen has that scale.
    void looksAsOnScreensOfOneScale_data()
    {
        QTest::addColumn<QRect>("monitor");
        QTest::addColumn<QRect>("selection");
        QTest::addColumn<double>("scale");
        QTest::addColumn<double>("otherScale");
        const QRect onPrimary(1000, 300, 420, 240);
        const QRect onSecond(140, 120, 420, 240);
        QTest::newRow("1.5 beside 1") << primary << onPrimary << 1.5 << 1.0;
        QTest::newRow("1 beside 2") << primary << onPrimary << 1.0 << 2.0;
        QTest::newRow("2 beside 1, at the origin") << second << onSecond << 2.0 << 1.0;
        QTest::newRow("1.25 beside 2, at the origin") << second << onSecond << 1.25 << 2.0;
    }
    void looksAsOnScreensOfOneScale()
    {
        QFETCH(QRect, monitor);
        QFETCH(QRect, selection);
        QFETCH(double, scale);
        QFETCH(double, otherScale);
        const bool isPrimary = monitor == primary;
        MixedSession mixed;
        MixedSession alike;
        QVERIFY2(mixed.start({isPrimary ? scale : otherScale, isPrimary ? otherScale : scale}),
                 qPrintable(mixed.error));
        QVERIFY2(alike.start({scale, scale}), qPrintable(alike.error));
        QVERIFY(mixed.openAndSelect(selection));
        QVERIFY(alike.openAndSelect(selection));
        QImage seen;
        QImage expected;
        const auto isDone = [&] {
            seen = mixed.tovek->eye().look(monitor);
            expected = alike.tovek->eye().look(monitor);
            return visiblyDifferentPixels(seen, expected) == 0
                && differentPixels(seen, mixed.before.copy(monitor)) > 100000;
        };
        QVERIFY2(waitUntil(isDone),
                 qPrintable(QString::number(visiblyDifferentPixels(seen, expected))
                            + QStringLiteral(" pixels differ")));
    }

private:
    void scales()
    {
        QTest::addColumn<double>("primaryScale");
        QTest::addColumn<double>("secondScale");
        QTest::newRow("1 and 2") << 1.0 << 2.0;
        QTest::newRow("2 and 1") << 2.0 << 1.0;
        QTest::newRow("1.5 and 1.25") << 1.5 << 1.25;
    }
    static Scales fetched()
    {
        QFETCH(double, primaryScale);
        QFETCH(double, secondScale);
        return {primaryScale, secondScale};
    }
};

QTEST_GUILESS_MAIN(TestMixedScales)
#include "tst_MixedScales.moc"
