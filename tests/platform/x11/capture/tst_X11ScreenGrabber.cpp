// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/X11TestDesktop.h"
#include "platform/x11/capture/X11GrowingDisplay.h"
#include "platform/x11/capture/X11ScreenGrabber.h"
#include "platform/x11/capture/X11Screens.h"

#include <QGuiApplication>
#include <QTest>

using namespace tovek;

namespace {

X11TestDesktop *desktop = nullptr;

} // namespace

class TestX11ScreenGrabber : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".*"));
        m_connection = X11Connection::create();
        QVERIFY(m_connection);
        m_monitors = std::make_shared<X11Monitors>(m_connection);
    }

    void givesTheDesktopsPixels_data()
    {
        QTest::addColumn<bool>("sharesMemory");
        QTest::addColumn<bool>("isPrepared");
        QTest::newRow("shared memory") << true << false;
        QTest::newRow("shared memory, prepared") << true << true;
        QTest::newRow("replies") << false << false;
    }
    void givesTheDesktopsPixels()
    {
        QFETCH(bool, sharesMemory);
        QFETCH(bool, isPrepared);
        X11ScreenGrabber grabber(m_connection, m_monitors,
                                 sharesMemory ? X11PixelFetcher::Transfer::sharedMemory
                                              : X11PixelFetcher::Transfer::reply);
        if (isPrepared)
            grabber.prepare();
        const auto content = grabber.shareableContent();
        QVERIFY(content);
        for (const CaptureDisplay &display : content->displays) {
            const auto result = grabber.capture(*content, display, {}).result();
            QCOMPARE(result.error, QString());
            QCOMPARE(result.frozen->size(), display.native.size());
            const QImage pixels = result.frozen->pixels().result();
            QCOMPARE(pixels.format(), QImage::Format_RGB32);
            QCOMPARE(pixels, desktop->look(display.native));
            // The unused byte must not turn into transparency anywhere.
            QCOMPARE(reinterpret_cast<const quint32 *>(pixels.constScanLine(3))[5] >> 24, 0xffu);
            QCOMPARE(grabber.captureFallback(display.native, {}), pixels);
        }
    }

    void showsTheInstantOfTheFreeze()
    {
        X11ScreenGrabber grabber(m_connection, m_monitors);
        const QImage before = desktop->look();
        const auto content = grabber.shareableContent();
        std::vector<std::shared_ptr<FrozenDisplay>> frozen;
        for (const CaptureDisplay &display : content->displays)
            frozen.push_back(grabber.capture(*content, display, {}).result().frozen);
        frozen.front()->pixels().waitForFinished();
        desktop->fill(desktop->window(), QRect(0, 0, 9, 9), 0x00aa00aa);
        desktop->fill(desktop->screen().root, QRect(700, 300, 9, 9), 0x00aa00aa);
        for (size_t i = 0; i < frozen.size(); ++i)
            QCOMPARE(frozen[i]->pixels().result(), before.copy(content->displays[i].native));
    }

    void keepsWhatComesInRows()
    {
        const QImage image = desktop->look(QRect(0, 0, 90, 50));
        auto growing = X11GrowingDisplay::create(m_connection, image.size());
        if (m_connection->screen().root_depth != 24) {
            QVERIFY(!growing); // the pixels are others there
            return;
        }
        QVERIFY(growing);
        for (int y = 0; y < image.height(); y += 7) {
            QVERIFY(!growing->finished(image));
            growing->addRows(image.copy(0, y, image.width(), std::min(7, image.height() - y)));
        }
        const auto frozen = std::dynamic_pointer_cast<X11FrozenDisplay>(growing->finished(image));
        QVERIFY(frozen);
        growing.reset();
        QCOMPARE(frozen->pixels().result(), image);
        const auto barrier = std::make_shared<X11Barrier>(m_connection);
        m_connection->flush();
        X11PixelFetcher fetcher(m_connection);
        QCOMPARE(fetcher.fetch(frozen->pixmap(), barrier).result(), image);
    }

    void keepsThePixelsWhenTheDisplayIsDropped()
    {
        QFuture<QImage> pixels;
        QImage expected;
        {
            X11ScreenGrabber grabber(m_connection, m_monitors);
            const auto content = grabber.shareableContent();
            const CaptureDisplay &display = content->displays.back();
            expected = desktop->look(display.native);
            pixels = grabber.capture(*content, display, {}).result().frozen->pixels();
        }
        QCOMPARE(pixels.result(), expected);
    }

    void fetchesWhereTheServerTakesNoMoreClients()
    {
        X11ScreenGrabber grabber(m_connection, m_monitors);
        const auto content = grabber.shareableContent();
        const auto frozen =
            grabber.capture(*content, content->displays.front(), {}).result().frozen;
        // Servers take a few hundred clients.
        std::vector<xcb_connection_t *> others;
        do
            others.push_back(xcb_connect(nullptr, nullptr));
        while (!xcb_connection_has_error(others.back()) && others.size() < 3000);
        QVERIFY(xcb_connection_has_error(others.back()));
        const QImage pixels = frozen->pixels().result();
        for (xcb_connection_t *other : others)
            xcb_disconnect(other);
        QCOMPARE(pixels, desktop->look(content->displays.front().native));
    }

    void givesThePixmapsBack()
    {
        X11ScreenGrabber grabber(m_connection, m_monitors);
        const auto capture = [&grabber] {
            const auto content = grabber.shareableContent();
            for (const CaptureDisplay &display : content->displays)
                grabber.capture(*content, display, {}).result().frozen->pixels().waitForFinished();
        };
        for (int i = 0; i < 5; ++i)
            capture();
        QCoreApplication::processEvents();
        const qint64 before = desktop->serverMemory();
        for (int i = 0; i < 100; ++i) {
            capture();
            QCoreApplication::processEvents();
        }
        // A hundred lost pixmaps would be over 200 MB.
        QCOMPARE_LE(desktop->serverMemory() - before, qint64(20) << 20);
    }

    void dropsUnusedPreparation()
    {
        X11PixmapPool pool(m_connection);
        pool.prepare({QSize(64, 64), QSize(32, 32)});
        pool.prepare({QSize(64, 64)});
        QCOMPARE(pool.count(), size_t(1));
        QVERIFY(pool.take(QSize(64, 64)));
        QCOMPARE(pool.count(), size_t(0));
        pool.prepare({QSize(64, 64)});
        QTRY_COMPARE(pool.count(), size_t(0));
    }

    void tellsWhatItCannotDo()
    {
        X11ScreenGrabber grabber(m_connection, m_monitors);
        const auto content = grabber.shareableContent();
        const CaptureDisplay &display = content->displays.front();
        const auto excluded = grabber.capture(*content, display, {1}).result();
        QVERIFY(!excluded.frozen);
        QVERIFY(!excluded.error.isEmpty());
        const auto unknown = grabber.capture(*content, {12345, QRect(0, 0, 9, 9)}, {}).result();
        QVERIFY(!unknown.frozen);
        QVERIFY(!unknown.error.isEmpty());
    }

    void knowsTheScreens()
    {
        X11Screens screens(m_connection, m_monitors);
        const std::vector<Screen> all = screens.all();
        QCOMPARE(all.size(), m_monitors->list().size());
        QCOMPARE(*screens.main(), all.front());
        for (const Screen &screen : all) {
            QVERIFY(screen.displayId);
            QCOMPARE(screen.frame.width * screen.scale, screen.native.width());
            QCOMPARE(screen.frame.x, screen.native.x());
            for (const QPoint at :
                 {screen.native.topLeft(), screen.native.center(), screen.native.bottomRight()}) {
                xcb_warp_pointer(desktop->client(), 0, desktop->screen().root, 0, 0, 0, 0,
                                 int16_t(at.x()), int16_t(at.y()));
                desktop->sync();
                const auto under = screenContaining(all, screens.mouseLocation());
                QVERIFY(under);
                QCOMPARE(*under, screen);
            }
        }
    }

    void leavesPanelsOut_data()
    {
        QTest::addColumn<QRect>("monitor");
        QTest::addColumn<QRect>("panel");
        QTest::addColumn<QRect>("expected");
        const QRect left(0, 0, 100, 80);
        const QRect right(100, 0, 100, 80);
        QTest::newRow("above") << left << QRect(0, 0, 100, 10) << QRect(0, 10, 100, 70);
        QTest::newRow("below") << left << QRect(0, 70, 100, 10) << QRect(0, 0, 100, 70);
        QTest::newRow("left") << left << QRect(0, 0, 10, 80) << QRect(10, 0, 90, 80);
        QTest::newRow("right") << right << QRect(190, 0, 10, 80) << QRect(100, 0, 90, 80);
        QTest::newRow("on the other monitor") << right << QRect(0, 70, 100, 10) << right;
        QTest::newRow("leaving nothing") << left << QRect(0, 0, 100, 80) << left;
    }
    void leavesPanelsOut()
    {
        QFETCH(QRect, monitor);
        QFETCH(QRect, panel);
        QTEST(withoutPanels(monitor, {panel}), "expected");
    }

private:
    std::shared_ptr<X11Connection> m_connection;
    std::shared_ptr<X11Monitors> m_monitors;
};

int main(int argc, char **argv)
{
    X11TestDesktop server;
    const int depth = qEnvironmentVariableIntValue("TOVEK_TEST_DEPTH");
    if (!server.start(QSize(1366, 768), depth ? depth : 24)) {
        std::puts("SKIP: no Xvfb");
        return 77;
    }
    if (qEnvironmentVariableIsSet("TOVEK_TEST_TWO_MONITORS")
        && (!server.setMonitor("*Left", "640/200x768/200+0+0", "screen")
            || !server.setMonitor("Right", "726/200x600/200+640+100"))) {
        std::puts("SKIP: no xrandr");
        return 77;
    }
    if (qEnvironmentVariableIsSet("TOVEK_TEST_TWO_MONITORS"))
        qputenv("QT_SCREEN_SCALE_FACTORS", "2;1");
    desktop = &server;
    qputenv("DISPLAY", server.displayName());
    qputenv("QT_QPA_PLATFORM", "xcb");
    QGuiApplication application(argc, argv);
    TestX11ScreenGrabber test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_X11ScreenGrabber.moc"
