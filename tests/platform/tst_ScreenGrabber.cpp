// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/Contract.h"
#include "fakes/FakeMutter.h"
#include "fakes/FakeScreenGrabber.h"
#include "platform/mutter/MutterScreenGrabber.h"
#include "platform/x11/TwoMonitors.h"
#include "platform/x11/capture/X11ScreenGrabber.h"
#include "support/TestBus.h"
#ifdef TOVEK_WITH_WAYLAND
#include "platform/wayland/capture/ExtScreenGrabber.h"
#include "platform/wayland/capture/WlrScreenGrabber.h"
#include "support/compositor/TestCompositor.h"
#endif

using namespace tovek;

namespace {

X11TestDesktop *desktop = nullptr;

/// Two monitors of 640 x 768 and 726 x 600 pixels, and what they show.
class Desk
{
public:
    virtual ~Desk() = default;
    virtual ScreenGrabber &grabber() = 0;
    /// What a person sees there now, as RGB32.
    virtual QImage look(const CaptureDisplay &display) = 0;
    /// Gives a few pixels of every monitor this colour.
    virtual void paint(QRgb color) = 0;
    /// Where there is another way to the pixels.
    virtual bool hasFallback() const { return true; }
};

class FakeDesk : public Desk
{
public:
    FakeDesk()
    {
        m_grabber.images[1] = QImage(640, 768, QImage::Format_RGB32);
        m_grabber.images[2] = QImage(726, 600, QImage::Format_RGB32);
        for (auto &[id, image] : m_grabber.images)
            image.fill(id * 1000);
        paint(0xff111111);
    }
    ScreenGrabber &grabber() override { return m_grabber; }
    QImage look(const CaptureDisplay &display) override
    {
        // The fallback knows of one picture at a time.
        m_grabber.fallbackImage = m_grabber.images.at(display.displayId);
        return m_grabber.fallbackImage;
    }
    void paint(QRgb color) override
    {
        for (auto &[id, image] : m_grabber.images)
            image.setPixel(70, 80, color);
    }

private:
    FakeScreenGrabber m_grabber;
};

class X11Desk : public Desk
{
public:
    X11Desk()
        : m_connection(X11Connection::create())
        , m_grabber(m_connection, std::make_shared<X11Monitors>(m_connection))
    {
    }
    ScreenGrabber &grabber() override { return m_grabber; }
    QImage look(const CaptureDisplay &display) override { return desktop->look(display.native); }
    void paint(QRgb color) override
    {
        desktop->fill(desktop->window(), QRect(30, 20, 9, 9), color & RGB_MASK);
        desktop->fill(desktop->screen().root, QRect(710, 180, 9, 9), color & RGB_MASK);
    }

private:
    std::shared_ptr<X11Connection> m_connection;
    X11ScreenGrabber m_grabber;
};

/// A mutter that nobody sees; the real one is in desktop/gnome/GnomeScreenCast.
class MutterDesk : public Desk
{
public:
    MutterDesk()
    {
        if (!m_bus.start())
            qFatal("no message bus");
        m_mutter = std::make_unique<FakeMutter>();
        m_mutter->setMonitors(
            {{"DP-1", {0, 0}, filled({640, 768})}, {"DP-2", {640, 0}, filled({726, 600})}});
        const std::vector<PortalDisplay> displays{{5, {0, 0, 640, 768}, {0, 0, 640, 768}},
                                                  {8, {640, 0, 726, 600}, {640, 0, 726, 600}}};
        m_grabber = std::make_unique<MutterScreenGrabber>(
            m_mutter->program(), [displays] { return displays; },
            std::make_unique<FakeScreenGrabber>());
    }
    ~MutterDesk() override
    {
        m_grabber.reset();
        m_mutter.reset();
    }
    ScreenGrabber &grabber() override { return *m_grabber; }
    QImage look(const CaptureDisplay &display) override
    {
        return m_mutter->monitors()[display.displayId == 5 ? 0 : 1].picture;
    }
    void paint(QRgb color) override
    {
        for (size_t monitor : {0, 1}) {
            QImage picture = m_mutter->monitors()[monitor].picture;
            picture.setPixel(70, 80, color);
            m_mutter->setPicture(monitor, picture);
        }
    }
    bool hasFallback() const override { return false; }

private:
    static QImage filled(QSize size)
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(0xff336699);
        return image;
    }

    TestBus m_bus;
    std::unique_ptr<FakeMutter> m_mutter;
    std::unique_ptr<MutterScreenGrabber> m_grabber;
};

#ifdef TOVEK_WITH_WAYLAND
/// Offers one of the ways alone.
template <typename Grabber>
class WaylandDesk : public Desk
{
public:
    WaylandDesk() : m_compositor(plan())
    {
        if (!m_compositor.start())
            qFatal("no compositor");
        const UseCompositor use(m_compositor);
        m_connection = WaylandConnection::open();
        m_outputs = std::make_shared<WaylandOutputs>(m_connection);
        m_connection->handleInMainLoop();
        m_grabber = Grabber::create(m_connection, m_outputs);
    }
    ScreenGrabber &grabber() override { return *m_grabber; }
    QImage look(const CaptureDisplay &display) override
    {
        return m_compositor.look(m_outputs->list().front().id == display.displayId ? 0 : 1);
    }
    void paint(QRgb color) override
    {
        for (int output : {0, 1}) {
            QImage picture = m_compositor.look(output);
            picture.setPixel(70, 80, color);
            m_compositor.setPicture(output, picture);
        }
    }
    bool hasFallback() const override { return false; }

private:
    static CompositorPlan plan()
    {
        CompositorPlan plan;
        for (const QSize size : {QSize(640, 768), QSize(726, 600)}) {
            QImage image(size, QImage::Format_RGB32);
            image.fill(0xff336699);
            plan.outputs.push_back({QString::number(size.width()), image, 1,
                                    QPoint(plan.outputs.empty() ? 0 : 640, 0)});
        }
        return plan;
    }

    TestCompositor m_compositor;
    std::shared_ptr<WaylandConnection> m_connection;
    std::shared_ptr<WaylandOutputs> m_outputs;
    std::unique_ptr<ScreenGrabber> m_grabber;
};
#endif

std::unique_ptr<Desk> makeDesk(const QString &implementation)
{
#ifdef TOVEK_WITH_WAYLAND
    if (implementation == QLatin1String("ext-image-copy-capture"))
        return std::make_unique<WaylandDesk<ExtScreenGrabber>>();
    if (implementation == QLatin1String("wlr-screencopy"))
        return std::make_unique<WaylandDesk<WlrScreenGrabber>>();
#endif
    if (implementation == QLatin1String("mutter"))
        return std::make_unique<MutterDesk>();
    if (implementation == QLatin1String("x11"))
        return std::make_unique<X11Desk>();
    return std::make_unique<FakeDesk>();
}

} // namespace

/// What every implementation of the grabber and of its frozen displays keeps to.
class TestScreenGrabber : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data()
    {
        addImplementations({
            {"mutter",
             TestBus::isInstalled() ? QString() : QStringLiteral("dbus-daemon is missing")},
            {"x11", desktop ? QString() : QStringLiteral("Xvfb or xrandr is missing")},
#ifdef TOVEK_WITH_WAYLAND
            {"ext-image-copy-capture", {}},
            {"wlr-screencopy", {}},
#endif
        });
    }

    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        QFETCH_GLOBAL(QString, implementation);
        m_desk = makeDesk(implementation);
        m_desk->paint(0xff224466);
    }
    void cleanup()
    {
        m_desk.reset();
    }

    void listsTheDisplays()
    {
        const auto content = grabber().shareableContent();
        QVERIFY(content);
        QCOMPARE(content->displays.size(), size_t(2));
        QVERIFY(content->displays[0].displayId != content->displays[1].displayId);
        QCOMPARE(content->displays[0].native.size(), QSize(640, 768));
        QCOMPARE(content->displays[1].native.size(), QSize(726, 600));
    }

    void givesTheNativePixelsAsTheyAre_data()
    {
        QTest::addColumn<int>("preparations");
        QTest::newRow("unprepared") << 0;
        QTest::newRow("prepared") << 1;
        QTest::newRow("prepared more than once") << 3;
    }
    void givesTheNativePixelsAsTheyAre()
    {
        QFETCH(int, preparations);
        for (int count = 0; count < preparations; ++count)
            grabber().prepare();
        const auto content = grabber().shareableContent();
        QVERIFY(content);
        for (const CaptureDisplay &display : content->displays) {
            const auto frozen = freeze(*content, display);
            QVERIFY(frozen);
            QCOMPARE(frozen->size(), display.native.size());
            const QImage pixels = frozen->pixels().result();
            QCOMPARE(pixels.format(), QImage::Format_RGB32);
            QCOMPARE(pixels, m_desk->look(display));
            QCOMPARE(frozen->pixels().result(), pixels);
        }
    }

    void showsTheInstantOfTheContentInEveryCapture()
    {
        const auto content = grabber().shareableContent();
        QVERIFY(content);
        std::vector<QImage> before;
        for (const CaptureDisplay &display : content->displays)
            before.push_back(m_desk->look(display));
        for (size_t index = 0; index < before.size(); ++index) {
            m_desk->paint(index ? 0xff00ff00 : 0xffff0000);
            const CaptureDisplay &display = content->displays[index];
            QVERIFY(m_desk->look(display) != before[index]);
            const auto frozen = freeze(*content, display);
            QVERIFY(frozen);
            QCOMPARE(frozen->pixels().result(), before[index]);
        }
    }

    void keepsThePixelsWhateverHappensOnTheScreen_data()
    {
        QTest::addColumn<bool>("isAskedBefore");
        QTest::newRow("asked for before the change") << true;
        QTest::newRow("asked for after the change") << false;
    }
    void keepsThePixelsWhateverHappensOnTheScreen()
    {
        QFETCH(bool, isAskedBefore);
        auto content = grabber().shareableContent();
        QVERIFY(content);
        const CaptureDisplay display = content->displays.front();
        const QImage before = m_desk->look(display);
        const auto frozen = freeze(*content, display);
        QVERIFY(frozen);
        if (isAskedBefore)
            QCOMPARE(frozen->pixels().result(), before);
        content.reset();
        m_desk->paint(0xffff0000);
        QVERIFY(m_desk->look(display) != before);
        QCOMPARE(frozen->pixels().result(), before);
    }

    void keepsTwoCapturesApart()
    {
        const auto firstContent = grabber().shareableContent();
        QVERIFY(firstContent);
        const CaptureDisplay display = firstContent->displays.front();
        const QImage firstLook = m_desk->look(display);
        auto first = freeze(*firstContent, display);
        m_desk->paint(0xffff0000);
        const QImage secondLook = m_desk->look(display);
        const auto secondContent = grabber().shareableContent();
        QVERIFY(secondContent);
        const auto second = freeze(*secondContent, display);
        QVERIFY(first && second);
        QCOMPARE(first->pixels().result(), firstLook);
        first.reset();
        QCOMPARE(second->pixels().result(), secondLook);
        QVERIFY(firstLook != secondLook);
    }

    void saysWhyADisplayOutsideOfTheContentFails()
    {
        const auto content = grabber().shareableContent();
        QVERIFY(content);
        const auto unknown = grabber().capture(*content, {12345, QRect(0, 0, 9, 9)}, {}).result();
        QVERIFY(!unknown.frozen);
        QVERIFY(!unknown.error.isEmpty());
        const auto empty = grabber().capture({}, content->displays.front(), {}).result();
        QVERIFY(!empty.frozen);
        QVERIFY(!empty.error.isEmpty());
    }

    void fallsBackToTheLiveDesktop()
    {
        const auto content = grabber().shareableContent();
        QVERIFY(content);
        m_desk->paint(0xffff0000);
        for (const CaptureDisplay &display : content->displays) {
            const QImage now = m_desk->look(display);
            QCOMPARE(grabber().captureFallback(display.native, {}),
                     m_desk->hasFallback() ? now : QImage());
        }
    }

    void makesAFrozenDisplayOfAnImage()
    {
        QImage image(30, 20, QImage::Format_ARGB32_Premultiplied);
        image.fill(0xff336699);
        image.setPixel(3, 4, 0xffffee11);
        const auto frozen = grabber().frozenFromImage(image);
        QVERIFY(frozen);
        image.fill(0xff000000);
        QCOMPARE(frozen->size(), QSize(30, 20));
        const QImage pixels = frozen->pixels().result();
        QCOMPARE(pixels.format(), QImage::Format_RGB32);
        QCOMPARE(pixels.size(), frozen->size());
        QCOMPARE(pixels.pixel(0, 0), 0xff336699);
        QCOMPARE(pixels.pixel(3, 4), 0xffffee11);
    }

private:
    ScreenGrabber &grabber()
    {
        return m_desk->grabber();
    }
    std::shared_ptr<FrozenDisplay> freeze(const ShareableContent &content,
                                          const CaptureDisplay &display)
    {
        const auto result = grabber().capture(content, display, {}).result();
        if (!result.error.isEmpty())
            qWarning("%s", qPrintable(result.error));
        return result.frozen;
    }

    std::unique_ptr<Desk> m_desk;
};

int main(int argc, char **argv)
{
    return runOnTwoMonitors<TestScreenGrabber>(argc, argv, desktop,
                                               {"*Left", "640/200x768/200+0+0"},
                                               {"Right", "726/200x600/200+640+100"});
}

#include "tst_ScreenGrabber.moc"
