// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The program where a compositing manager draws the screen: with shadows, and softly.

#include "desktop/Session.h"
#include "support/Skip.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

using namespace std::chrono_literals;
using namespace tovek;

namespace {

// The screens meet, so that the shadow of one overlay would fall on the other.
DesktopPlan composited(bool hasFades = false)
{
    DesktopPlan plan;
    plan.size = {1280, 600};
    plan.monitors = {{480, 0, 800, 600}, {0, 0, 480, 600}};
    plan.hasCompositor = true;
    plan.hasFades = hasFades;
    return plan;
}

/// One picture all over both screens: of two, one would cast its shadow on the other, which picom
/// 9.1 draws sooner or later.
struct Composited : Session
{
    explicit Composited(bool hasFades = false) : Session(composited(hasFades)) { }
    [[nodiscard]] bool start()
    {
        if (!desktop.start())
            return fail(desktop.error());
        picture = desktop.showPicture(QRect(QPoint(), plan.size), {QStringLiteral("--unmanaged")});
        tovek = std::make_unique<RunningTovek>(desktop, qEnvironmentVariable("TOVEK_PROGRAM"));
        return (picture && tovek->start()) || fail(QStringLiteral("no picture, or no program"));
    }
};

/// The worst of the looks that fit in this time, at least ten.
int mostDifferentPixels(const Session &session, std::chrono::milliseconds time)
{
    int worst = 0;
    QElapsedTimer timer;
    timer.start();
    for (int look = 0; look < 10 || timer.elapsed() < time.count(); ++look)
        worst = std::max(worst, differentPixels(session.before, session.tovek->eye().look()));
    return worst;
}

/// On average, from 0 to 255.
double lightOf(const QImage &image)
{
    qint64 sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            sum += qGray(row[x]);
    }
    return double(sum) / (image.width() * image.height());
}

/// What the window tells the compositing manager of its shadow; absent when it says nothing.
std::optional<uint32_t> shadowOf(const Session &session, xcb_window_t window)
{
    const XConnection connection(session.desktop.displayName());
    const QByteArray bytes = connection.property(window, connection.atom("_COMPTON_SHADOW"));
    if (bytes.size() != sizeof(uint32_t))
        return std::nullopt;
    uint32_t value = 0;
    std::memcpy(&value, bytes.constData(), sizeof value);
    return value;
}

} // namespace

class TestCompositor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing(composited())); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void openingAndLeavingChangesNotOnePixel_data() { fades(); }
    void openingAndLeavingChangesNotOnePixel()
    {
        QFETCH(bool, hasFades);
        Composited session(hasFades);
        QVERIFY2(session.start(), qPrintable(session.error));
        session.before = session.tovek->eye().lookWhenStill();
        QVERIFY(session.tap(RunningTovek::captureScreenshot));
        int worst = 0;
        const bool isOpen = waitUntil([&] {
            worst = std::max(worst, mostDifferentPixels(session, 0ms));
            return session.tovek->covers(session.monitors());
        });
        QVERIFY(isOpen);
        // A soft appearance takes a third of a second.
        worst = std::max(worst, mostDifferentPixels(session, 500ms));
        QCOMPARE(worst, 0);
        QVERIFY(session.tap("Escape"));
        QVERIFY(session.isClosed());
        QCOMPARE(mostDifferentPixels(session, 500ms), 0);
    }

    void leavesNoTraceOfASelection_data() { fades(); }
    void leavesNoTraceOfASelection()
    {
        QFETCH(bool, hasFades);
        Composited session(hasFades);
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        session.select({550, 150}, {701, 277});
        QVERIFY(waitUntil(
            [&] { return differentPixels(session.before, session.tovek->eye().look()) > 200000; }));
        QVERIFY(session.tap("Escape"));
        QVERIFY(waitUntil(
            [&] { return differentPixels(session.before, session.tovek->eye().look()) == 0; }));
    }

    void fadesNoVeil()
    {
        Composited session(true);
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        session.select({550, 150}, {701, 277});
        // Right of the picture's middle it is bright, and far from selection and toolbar.
        const QRect place(1000, 20, 200, 100);
        const QImage bright = session.before.copy(place);
        QImage veiled;
        QVERIFY(waitUntil([&] {
            veiled = session.tovek->eye().look(place);
            return lightOf(veiled) * 2 <= lightOf(bright) + 1;
        }));
        QVERIFY(lightOf(bright) - lightOf(veiled) > 20);
        QVERIFY(session.tap("Escape"));
        // Either of them, and nothing between.
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < 600) {
            const double light = lightOf(session.tovek->eye().look(place));
            QVERIFY2(std::abs(light - lightOf(bright)) < 2 || std::abs(light - lightOf(veiled)) < 2,
                     qPrintable(QString::number(light)));
        }
        QCOMPARE(differentPixels(session.tovek->eye().look(place), bright), 0);
    }

    void noWindowCastsAShadow()
    {
        Composited session;
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open(RunningTovek::captureImage));
        const QList<SeenWindow> overlays = session.tovek->eye().overlays(QStringLiteral("tovek"));
        QCOMPARE(overlays.size(), 2);
        for (const SeenWindow &overlay : overlays)
            QCOMPARE(shadowOf(session, overlay.id), std::optional(0u));
        session.select({550, 150}, {701, 277});
        QVERIFY(session.isClosed());
        std::optional<SeenWindow> toast;
        QVERIFY(waitUntil([&] {
            for (const SeenWindow &window : session.tovek->eye().windows()) {
                if (window.title == QStringLiteral("Image copied to clipboard"))
                    toast = window;
            }
            return toast.has_value();
        }));
        QCOMPARE(shadowOf(session, toast->id), std::optional(0u));
    }

    void copiesAndSavesExactlyTheSelection()
    {
        Composited session;
        QVERIFY2(session.start(), qPrintable(session.error));
        const QPoint by(151, 127);
        for (const QPoint &from : {QPoint(480, 0), QPoint(903, 307), QPoint(320, 464)}) {
            QVERIFY(session.open());
            session.select(from, from + by);
            QVERIFY(session.tap("Return"));
            QCOMPARE(differentPixels(QImage::fromData(session.pasted()),
                                     session.expected(from, from + by)),
                     0);
        }
        QVERIFY(session.open());
        session.select({301, 201}, {437, 411});
        QVERIFY(session.tap("Control_L+s"));
        QCOMPARE(differentPixels(QImage::fromData(session.saved()),
                                 session.expected({301, 201}, {437, 411})),
                 0);
    }

    void showsTheInstantOfTheKey()
    {
        Composited session;
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        session.picture->writeLine("invert");
        QVERIFY(session.picture->waitForLine(QStringLiteral("inverted")));
        QCOMPARE(mostDifferentPixels(session, 300ms), 0);
        session.select({50, 150}, {401, 477});
        QVERIFY(session.tap("Return"));
        QCOMPARE(differentPixels(QImage::fromData(session.pasted()),
                                 session.expected({50, 150}, {401, 477})),
                 0);
    }

private:
    void fades()
    {
        QTest::addColumn<bool>("hasFades");
        QTest::newRow("at once") << false;
        QTest::newRow("softly") << true;
    }
};

QTEST_GUILESS_MAIN(TestCompositor)
#include "tst_Compositor.moc"
