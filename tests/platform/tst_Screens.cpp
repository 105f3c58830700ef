// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/Contract.h"
#include "fakes/FakeScreens.h"
#include "platform/x11/TwoMonitors.h"
#include "platform/x11/capture/X11Screens.h"
#ifdef TOVEK_WITH_WAYLAND
#include "platform/wayland/capture/WaylandScreens.h"
#include "support/compositor/TestCompositor.h"
#endif

using namespace tovek;

namespace {

X11TestDesktop *desktop = nullptr;

/// Two monitors. The first has two pixels a point and 320 x 300 points, and lies right of the
/// second and 100 pixels lower; the second has 726 x 600 points, a pixel each.
class Desk
{
public:
    virtual ~Desk() = default;
    virtual Screens &screens() = 0;
    /// To a pixel of the screen, counted from its top left one.
    virtual void movePointer(const Screen &screen, QPoint pixel) = 0;
    /// False where nobody is told where the pointer is.
    virtual bool knowsPointer() const { return true; }
    /// Named "Below", of 726 x 168 pixels.
    virtual bool addMonitor() = 0;
    virtual bool removeMonitor() = 0;
};

class FakeDesk : public Desk
{
public:
    FakeDesk() { m_screens.change(m_two); }
    Screens &screens() override { return m_screens; }
    void movePointer(const Screen &screen, QPoint pixel) override
    {
        m_screens.mouse = {screen.frame.minX() + (pixel.x() + 0.5) / screen.scale,
                           screen.frame.maxY() - (pixel.y() + 0.5) / screen.scale};
    }
    bool addMonitor() override
    {
        std::vector<Screen> three = m_two;
        three.push_back(FakeScreens::screen(3, {-726, -368, 726, 168}));
        three.back().name = QStringLiteral("Below");
        m_screens.change(three);
        return true;
    }
    bool removeMonitor() override
    {
        m_screens.change(m_two);
        return true;
    }

private:
    const std::vector<Screen> m_two{FakeScreens::screen(1, {0, 0, 320, 300}, 2),
                                    FakeScreens::screen(2, {-726, -200, 726, 600})};
    FakeScreens m_screens;
};

class X11Desk : public Desk
{
public:
    X11Desk()
        : m_connection(X11Connection::create())
        , m_screens(m_connection, std::make_shared<X11Monitors>(m_connection))
    {
    }
    Screens &screens() override { return m_screens; }
    void movePointer(const Screen &screen, QPoint pixel) override
    {
        const QPoint at = screen.native.topLeft() + pixel;
        xcb_warp_pointer(desktop->client(), 0, desktop->screen().root, 0, 0, 0, 0, int16_t(at.x()),
                         int16_t(at.y()));
        desktop->sync();
    }
    bool addMonitor() override { return desktop->setMonitor("Below", "726/200x168/50+0+600"); }
    bool removeMonitor() override { return desktop->removeMonitor("Below"); }

private:
    std::shared_ptr<X11Connection> m_connection;
    X11Screens m_screens;
};

#ifdef TOVEK_WITH_WAYLAND
class WaylandDesk : public Desk
{
public:
    WaylandDesk()
    {
        if (!m_compositor.start())
            qFatal("no compositor");
        const UseCompositor use(m_compositor);
        m_connection = WaylandConnection::open();
        m_screens =
            std::make_unique<WaylandScreens>(std::make_shared<WaylandOutputs>(m_connection));
        m_connection->handleInMainLoop();
    }
    Screens &screens() override { return *m_screens; }
    void movePointer(const Screen &, QPoint) override { }
    bool knowsPointer() const override { return false; }
    bool addMonitor() override
    {
        m_compositor.addOutput(output("Below", {726, 168}, 1, {0, 600}));
        return true;
    }
    bool removeMonitor() override
    {
        m_compositor.removeOutput(2);
        return true;
    }

private:
    static CompositorOutput output(const char *name, QSize size, double scale, QPoint at)
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(0xff336699);
        return {QString::fromLatin1(name), image, scale, at};
    }

    TestCompositor m_compositor{
        {{output("Right", {640, 600}, 2, {726, 100}), output("Left", {726, 600}, 1, {0, 0})}}};
    std::shared_ptr<WaylandConnection> m_connection;
    std::unique_ptr<WaylandScreens> m_screens;
};
#endif

std::unique_ptr<Desk> makeDesk(const QString &implementation)
{
#ifdef TOVEK_WITH_WAYLAND
    if (implementation == QLatin1String("wayland"))
        return std::make_unique<WaylandDesk>();
#endif
    if (implementation == QLatin1String("x11"))
        return std::make_unique<X11Desk>();
    return std::make_unique<FakeDesk>();
}

} // namespace

/// What every implementation of the screens keeps to.
class TestScreens : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data()
    {
        addImplementations({
            {"x11", desktop ? QString() : QStringLiteral("Xvfb or xrandr is missing")},
#ifdef TOVEK_WITH_WAYLAND
            {"wayland", {}},
#endif
        });
    }

    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        QFETCH_GLOBAL(QString, implementation);
        m_desk = makeDesk(implementation);
        QCOMPARE(all().size(), size_t(2));
    }
    void cleanup()
    {
        m_desk.reset();
    }

    void givesEveryScreenAnIdentityOfItsOwn()
    {
        const std::vector<Screen> screens = all();
        QVERIFY(screens[0].displayId && screens[1].displayId);
        QVERIFY(screens[0].displayId != screens[1].displayId);
        QVERIFY(!screens[0].name.isEmpty() && screens[0].name != screens[1].name);
        QCOMPARE(all(), screens);
    }

    void takesTheFirstScreensBottomLeftForTheOrigin()
    {
        QCOMPARE(toString(all().front().frame), toString(Rect{0, 0, 320, 300}));
    }

    void measuresFramesInPointsAndNativeInPixels()
    {
        QCOMPARE(all()[0].scale, 2.0);
        QCOMPARE(all()[0].native.size(), QSize(640, 600));
        QCOMPARE(all()[1].scale, 1.0);
        QCOMPARE(all()[1].native.size(), QSize(726, 600));
        for (const Screen &screen : all()) {
            QCOMPARE(screen.frame.width * screen.scale, screen.native.width());
            QCOMPARE(screen.frame.height * screen.scale, screen.native.height());
        }
    }

    void letsPointsGrowUpwardsAndPixelsDownwards()
    {
        const Screen lower = all()[0];
        const Screen higher = all()[1];
        QCOMPARE(higher.frame.maxY() - lower.frame.maxY(), 100.0);
        QCOMPARE(lower.native.top() - higher.native.top(), 100);
        QCOMPARE(higher.frame.maxX(), lower.frame.minX());
        QCOMPARE(lower.native.left() - higher.native.left(), 726);
    }

    void keepsTheVisibleFrameInsideOfTheFrame()
    {
        for (const Screen &screen : all()) {
            const Rect &visible = screen.visibleFrame;
            QVERIFY(visible.width > 0 && visible.height > 0);
            QVERIFY(visible.minX() >= screen.frame.minX() && visible.maxX() <= screen.frame.maxX());
            QVERIFY(visible.minY() >= screen.frame.minY() && visible.maxY() <= screen.frame.maxY());
        }
    }

    void hasAMainScreenAmongAll()
    {
        const auto main = m_desk->screens().main();
        QVERIFY(main);
        const std::vector<Screen> screens = all();
        QCOMPARE(std::count(screens.begin(), screens.end(), *main), 1);
    }

    void tellsThePointersPlace_data()
    {
        QTest::addColumn<size_t>("index");
        QTest::addColumn<QPoint>("pixel");
        QTest::addColumn<QPointF>("point"); // from the screen's top left corner, y down
        QTest::newRow("first, top left") << size_t(0) << QPoint(0, 0) << QPointF(0, 0);
        QTest::newRow("first, middle") << size_t(0) << QPoint(320, 300) << QPointF(160, 150);
        QTest::newRow("first, bottom right")
            << size_t(0) << QPoint(639, 599) << QPointF(319.5, 299.5);
        QTest::newRow("second, top left") << size_t(1) << QPoint(0, 0) << QPointF(0, 0);
        QTest::newRow("second, bottom right") << size_t(1) << QPoint(725, 599) << QPointF(725, 599);
    }
    void tellsThePointersPlace()
    {
        QFETCH(size_t, index);
        QFETCH(QPoint, pixel);
        QFETCH(QPointF, point);
        const Screen screen = all()[index];
        if (!m_desk->knowsPointer())
            QSKIP("the window system tells nobody where the pointer is");
        m_desk->movePointer(screen, pixel);
        const Point mouse = m_desk->screens().mouseLocation();
        const QPointF off(mouse.x - screen.frame.minX() - point.x(),
                          screen.frame.maxY() - mouse.y - point.y());
        QVERIFY(std::abs(off.x()) < 1 && std::abs(off.y()) < 1); // anywhere in its pixel
        const auto under = screenContaining(all(), mouse);
        QVERIFY(under);
        QCOMPARE(*under, screen);
    }

    void containsNothingBeyondTheScreens()
    {
        QVERIFY(!screenContaining(all(), {320, 10}));
        QVERIFY(!screenContaining(all(), {10, 300}));
        QVERIFY(!screenContaining(all(), {-10, -200.5}));
    }

    void tellsOfMonitorsThatComeAndGo()
    {
        const std::vector<Screen> before = all();
        int changes = 0;
        m_desk->screens().onChanged = [&changes] { ++changes; };
        QVERIFY(m_desk->addMonitor());
        QTRY_VERIFY_WITH_TIMEOUT(changes > 0 && all().size() == 3, 20000);
        const std::vector<Screen> three = all();
        QCOMPARE(three[2].name, QStringLiteral("Below"));
        QCOMPARE(toString(three[2].frame), toString(Rect{-726, -368, 726, 168}));
        QCOMPARE(std::vector(three.begin(), three.begin() + 2), before);
        changes = 0;
        QVERIFY(m_desk->removeMonitor());
        QTRY_VERIFY_WITH_TIMEOUT(changes > 0 && all().size() == 2, 20000);
        QCOMPARE(all(), before);
    }

private:
    std::vector<Screen> all() const
    {
        return m_desk->screens().all();
    }

    std::unique_ptr<Desk> m_desk;
};

int main(int argc, char **argv)
{
    qputenv("QT_SCREEN_SCALE_FACTORS", "Right=2;Left=1");
    return runOnTwoMonitors<TestScreens>(argc, argv, desktop, {"*Right", "640/200x600/200+726+100"},
                                         {"Left", "726/200x600/200+0+0"});
}

#include "tst_Screens.moc"
