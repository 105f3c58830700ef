// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Captures of compositors that do something else than what everybody expects.

#include "platform/wayland/capture/ExtScreenGrabber.h"
#include "platform/wayland/capture/WlrScreenGrabber.h"
#include "support/Picture.h"
#include "support/Pixels.h"
#include "support/compositor/TestCompositor.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

#include <wayland-client-protocol.h>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

using Captures = TestCompositor::Captures;

constexpr int longestWaitMs = 3500;

QImage picture(QSize size, uint32_t seed = 0)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, pictureColor(uint32_t(x) + seed, uint32_t(y)));
    return image;
}

CompositorPlan oneOutput(QSize size = {300, 200})
{
    CompositorPlan plan;
    plan.outputs = {{QStringLiteral("ONE"), picture(size)}};
    return plan;
}

CompositorPlan twoOutputs()
{
    CompositorPlan plan = oneOutput();
    plan.outputs.push_back({QStringLiteral("TWO"), picture({320, 240}, 7), 2, QPoint(300, 0)});
    return plan;
}

/// Also in the byte of each pixel that says nothing in its format.
bool isOpaque(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        if (!std::all_of(line, line + image.width(), [](QRgb color) { return color >> 24 == 255; }))
            return false;
    }
    return true;
}

/// A compositor, and the program's side of it.
struct Desk
{
    Desk(const QString &way, CompositorPlan plan) : compositor(onlyOffering(way, std::move(plan)))
    {
        if (!compositor.start())
            qFatal("no compositor");
        const UseCompositor use(compositor);
        connection = WaylandConnection::open();
        outputs = std::make_shared<WaylandOutputs>(connection);
        connection->handleInMainLoop();
        grabber = way == QLatin1String("ext") ? ExtScreenGrabber::create(connection, outputs)
                                              : WlrScreenGrabber::create(connection, outputs);
    }
    static CompositorPlan onlyOffering(const QString &way, CompositorPlan plan)
    {
        plan.withheld << (way == QLatin1String("ext")
                              ? QStringLiteral("zwlr_screencopy_manager_v1")
                              : QStringLiteral("ext_image_copy_capture_manager_v1"));
        return plan;
    }
    /// What came of each output; null where nothing did.
    QList<QImage> captured()
    {
        const auto content = grabber->shareableContent();
        QList<QImage> images;
        for (size_t i = 0; content && i < content->displays.size(); ++i) {
            const auto result = grabber->capture(*content, content->displays[i], {}).result();
            images << (result.frozen ? result.frozen->pixels().result() : QImage());
        }
        return images;
    }

    TestCompositor compositor;
    std::shared_ptr<WaylandConnection> connection;
    std::shared_ptr<WaylandOutputs> outputs;
    std::unique_ptr<ScreenGrabber> grabber;
};

} // namespace

class TestWaylandScreenGrabber : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void connectsToACompositorThatIsBusyAtFirst()
    {
        TestCompositor compositor(oneOutput());
        QVERIFY(compositor.start());
        const UseCompositor use(compositor);
        compositor.beBusy(4s);
        const auto connection = WaylandConnection::open();
        QVERIFY(connection);
        QVERIFY(connection->offers("zwlr_layer_shell_v1"));
    }

    void initTestCase_data()
    {
        QTest::addColumn<QString>("way");
        QTest::newRow("ext") << "ext";
        QTest::newRow("wlr") << "wlr";
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void takesEveryFormatThatIsExact_data()
    {
        QTest::addColumn<uint32_t>("format");
        QTest::newRow("XRGB8888") << uint32_t(WL_SHM_FORMAT_XRGB8888);
        QTest::newRow("ARGB8888") << uint32_t(WL_SHM_FORMAT_ARGB8888);
        QTest::newRow("XBGR8888") << uint32_t(WL_SHM_FORMAT_XBGR8888);
        QTest::newRow("ABGR8888") << uint32_t(WL_SHM_FORMAT_ABGR8888);
        QTest::newRow("XRGB2101010") << uint32_t(WL_SHM_FORMAT_XRGB2101010);
        QTest::newRow("XBGR2101010") << uint32_t(WL_SHM_FORMAT_XBGR2101010);
    }
    void takesEveryFormatThatIsExact()
    {
        QFETCH(uint32_t, format);
        CompositorPlan plan = twoOutputs();
        plan.formats = {format};
        Desk desk(way(), plan);
        const QList<QImage> images = desk.captured();
        QCOMPARE(images.size(), 2);
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(images[i].format(), QImage::Format_RGB32);
            QCOMPARE(differentPixels(images[i], desk.compositor.look(i)), 0);
            QVERIFY(isOpaque(images[i]));
        }
    }

    void takesPackedPixels()
    {
        if (way() == QLatin1String("ext"))
            QSKIP("the row length is ours there: such a format is not chosen");
        for (const uint32_t format : {WL_SHM_FORMAT_RGB888, WL_SHM_FORMAT_BGR888}) {
            CompositorPlan plan = oneOutput({301, 200});
            plan.formats = {format};
            Desk desk(way(), plan);
            const QList<QImage> images = desk.captured();
            QCOMPARE(images.size(), 1);
            QCOMPARE(differentPixels(images[0], desk.compositor.look(0)), 0);
        }
    }

    void prefersWhatNeedsNoConversion()
    {
        if (way() == QLatin1String("wlr"))
            QSKIP("one format is offered there");
        CompositorPlan plan = oneOutput();
        plan.formats = {WL_SHM_FORMAT_RGB565, WL_SHM_FORMAT_XBGR8888, WL_SHM_FORMAT_XRGB8888};
        Desk desk(way(), plan);
        QCOMPARE(differentPixels(desk.captured().value(0), desk.compositor.look(0)), 0);
    }

    void turnsOutputsUpright_data()
    {
        QTest::addColumn<int>("transform");
        for (int transform = 0; transform < 8; ++transform)
            QTest::addRow("%d", transform) << transform;
    }
    void turnsOutputsUpright()
    {
        QFETCH(int, transform);
        CompositorPlan plan = oneOutput();
        plan.outputs[0].transform = transform;
        Desk desk(way(), plan);
        QCOMPARE(desk.outputs->list().front().native, QSize(300, 200));
        QCOMPARE(differentPixels(desk.captured().value(0), desk.compositor.look(0)), 0);
    }

    void turnsPicturesThatAreUpsideDown()
    {
        CompositorPlan plan = oneOutput();
        plan.isUpsideDown = true;
        plan.outputs[0].transform = WL_OUTPUT_TRANSFORM_90;
        Desk desk(way(), plan);
        QCOMPARE(differentPixels(desk.captured().value(0), desk.compositor.look(0)), 0);
    }

    void speaksTheOlderVersions()
    {
        if (way() == QLatin1String("ext"))
            QSKIP("there is one version");
        for (const uint32_t version : {1U, 2U}) {
            CompositorPlan plan = oneOutput();
            plan.screencopyVersion = version;
            Desk desk(way(), plan);
            QCOMPARE(differentPixels(desk.captured().value(0), desk.compositor.look(0)), 0);
        }
    }

    void saysThatAFormatIsUnknown()
    {
        CompositorPlan plan = oneOutput();
        plan.formats = {WL_SHM_FORMAT_RGB565};
        Desk desk(way(), plan);
        QVERIFY(desk.captured().isEmpty());
        QCOMPARE(desk.grabber->failure(),
                 QStringLiteral("the compositor's pixels have an unknown format"));
    }

    void saysThatTheCompositorRefuses()
    {
        Desk desk(way(), twoOutputs());
        desk.compositor.setCaptures(Captures::areRefused);
        QVERIFY(desk.captured().isEmpty());
        QCOMPARE(desk.grabber->failure(), QStringLiteral("the compositor refused the picture"));
        desk.compositor.setCaptures(Captures::work);
        QCOMPARE(desk.captured().size(), 2);
    }

    void triesOnceMoreWhereThatMayHelp()
    {
        Desk desk(way(), oneOutput());
        desk.compositor.setCaptures(Captures::areRefusedOnce);
        const QList<QImage> images = desk.captured();
        if (way() == QLatin1String("ext"))
            QCOMPARE(differentPixels(images.value(0), desk.compositor.look(0)), 0);
        else
            QVERIFY(images.isEmpty()); // a refusal is final there
    }

    void endsWithASessionThatStops()
    {
        if (way() == QLatin1String("wlr"))
            QSKIP("there are no sessions");
        Desk desk(way(), oneOutput());
        desk.compositor.setCaptures(Captures::stop);
        QElapsedTimer timer;
        timer.start();
        QVERIFY(desk.captured().isEmpty());
        QVERIFY(timer.elapsed() < longestWaitMs);
        QCOMPARE(desk.grabber->failure(), QStringLiteral("the compositor ended the capture"));
    }

    void waitsThreeSecondsForACompositorThatIsSilent()
    {
        Desk desk(way(), oneOutput());
        desk.compositor.setCaptures(Captures::areSilent);
        QElapsedTimer timer;
        timer.start();
        QVERIFY(desk.captured().isEmpty());
        QVERIFY2(timer.elapsed() < longestWaitMs, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(desk.grabber->failure(), QStringLiteral("the compositor does not answer"));
        desk.compositor.setCaptures(Captures::work);
        QCOMPARE(differentPixels(desk.captured().value(0), desk.compositor.look(0)), 0);
    }

    void keepsTheOtherScreensWhenOneIsUnpluggedMeanwhile()
    {
        Desk desk(way(), twoOutputs());
        desk.compositor.setCaptures(Captures::loseTheirOutput); // the first one
        const QList<QImage> images = desk.captured();
        QCOMPARE(images.size(), 2);
        QVERIFY(images[0].isNull());
        QCOMPARE(differentPixels(images[1], desk.compositor.look(0)), 0);
        QTRY_COMPARE(desk.outputs->list().size(), size_t(1));
        QCOMPARE(desk.captured().size(), 1);
    }

    void followsOutputsThatComeAndChange()
    {
        Desk desk(way(), oneOutput());
        desk.compositor.addOutput(
            {QStringLiteral("NEW"), picture({200, 100}, 3), 1.5, QPoint(300, 0)});
        QTRY_COMPARE(desk.outputs->list().size(), size_t(2));
        QCOMPARE(desk.outputs->list()[1].scale, 1.5);
        desk.compositor.setScale(1, 1.25);
        QTRY_COMPARE(desk.outputs->list()[1].scale, 1.25);
        const QList<QImage> images = desk.captured();
        for (int i = 0; i < 2; ++i)
            QCOMPARE(differentPixels(images.value(i), desk.compositor.look(i)), 0);
    }

    void goesOnWithAProtocolThatIsWithdrawn()
    {
        Desk desk(way(), oneOutput());
        desk.compositor.withdraw(way() == QLatin1String("ext") ? "ext_image_copy_capture_manager_v1"
                                                               : "zwlr_screencopy_manager_v1");
        QTest::qWait(20);
        // What was bound may still be served, or ends in a reason: never in a hang or a crash.
        QElapsedTimer timer;
        timer.start();
        const QList<QImage> images = desk.captured();
        QVERIFY(timer.elapsed() < longestWaitMs);
        QVERIFY(!images.isEmpty() || !desk.grabber->failure().isEmpty());
    }

    void saysThatTheCompositorHasGone()
    {
        Desk desk(way(), oneOutput());
        bool isLost = false;
        desk.connection->onLost = [&] { isLost = true; };
        desk.compositor.hangUp();
        QElapsedTimer timer;
        timer.start();
        QVERIFY(desk.captured().isEmpty());
        QVERIFY(timer.elapsed() < longestWaitMs);
        QVERIFY(!desk.grabber->failure().isEmpty());
        QTRY_VERIFY(isLost);
    }

private:
    static QString way()
    {
        QFETCH_GLOBAL(QString, way);
        return way;
    }
};

QTEST_GUILESS_MAIN(TestWaylandScreenGrabber)
#include "tst_WaylandScreenGrabber.moc"
