// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/Contract.h"
#include "fakes/FakeOverlayShell.h"
#include "fakes/FakeScreenGrabber.h"
#include "fakes/FakeScreens.h"
#include "platform/x11/TwoMonitors.h"
#include "platform/x11/capture/X11Screens.h"
#include "platform/x11/overlay/X11OverlaySurface.h"
#ifdef TOVEK_WITH_WAYLAND
#include "platform/wayland/capture/WaylandFrozenDisplay.h"
#include "platform/wayland/capture/WaylandScreens.h"
#include "platform/wayland/overlay/LayerOverlayShell.h"
#include "support/compositor/TestCompositor.h"
#endif

#include <QWindow>

#include <array>
#include <map>

using namespace tovek;

namespace {

X11TestDesktop *desktop = nullptr;
#ifdef TOVEK_WITH_WAYLAND
TestCompositor *compositor = nullptr;
#endif

constexpr int deadline = 20000;

/// Two monitors, the second of 726 x 600 pixels, with overlays of a surface each.
class Desk
{
public:
    virtual ~Desk() = default;
    virtual OverlayShell &shell() = 0;
    virtual std::vector<Screen> screens() = 0;
    /// The screen as it is now.
    virtual std::shared_ptr<FrozenDisplay> freeze(const Screen &screen) = 0;
    /// Changes what lies below the overlays.
    virtual void paintBelow(const Screen &screen, QRgb color) = 0;
    /// What a person sees at a pixel of the screen, counted from its top left one.
    virtual QRgb pixel(const Screen &screen, QPoint at) = 0;
    virtual bool removeSecondMonitor() = 0;
    /// Only with the second one removed.
    virtual bool addSecondMonitor() = 0;
};

class FakeDesk : public Desk
{
public:
    FakeDesk()
    {
        m_screens.change({FakeScreens::screen(1, {0, 0, 640, 768}),
                          FakeScreens::screen(2, {640, 68, 726, 600})});
    }
    OverlayShell &shell() override { return m_shell; }
    std::vector<Screen> screens() override { return m_screens.all(); }
    std::shared_ptr<FrozenDisplay> freeze(const Screen &screen) override
    {
        QImage image(screen.native.size(), QImage::Format_RGB32);
        image.fill(m_below[*screen.displayId]);
        return std::make_shared<FakeFrozenDisplay>(image);
    }
    void paintBelow(const Screen &screen, QRgb color) override
    {
        m_below[*screen.displayId] = color;
    }
    QRgb pixel(const Screen &screen, QPoint at) override
    {
        QRgb color = m_below[*screen.displayId];
        for (const FakeOverlaySurface *surface : m_shell.surfaces) {
            if (!surface->isVisible() || !(surface->screen() == screen))
                continue;
            color = surface->frozen()->pixels().result().pixel(at);
            if (surface->presented.empty())
                continue;
            for (const DisplayList::Item &item : surface->presented.back().items) {
                if (boundsOf(item).contains(at))
                    color = std::get<DisplayList::Fill>(item).color;
            }
        }
        return color;
    }
    bool removeSecondMonitor() override
    {
        for (FakeOverlaySurface *surface : m_shell.surfaces) {
            if (surface->screen() == m_screens.screens[1])
                surface->loseScreen();
        }
        return true;
    }
    bool addSecondMonitor() override { return true; }

private:
    FakeScreens m_screens;
    FakeOverlayShell m_shell;
    std::map<quint32, QRgb> m_below;
};

class X11Desk : public Desk
{
public:
    X11Desk()
        : m_connection(X11Connection::create())
        , m_monitors(std::make_shared<X11Monitors>(m_connection))
        , m_screens(m_connection, m_monitors)
        , m_grabber(m_connection, m_monitors)
        , m_shell(m_connection, m_monitors)
    {
    }
    OverlayShell &shell() override { return m_shell; }
    std::vector<Screen> screens() override { return m_screens.all(); }
    std::shared_ptr<FrozenDisplay> freeze(const Screen &screen) override
    {
        const auto content = m_grabber.shareableContent();
        return m_grabber.capture(*content, {*screen.displayId, screen.native}, {}).result().frozen;
    }
    void paintBelow(const Screen &screen, QRgb color) override
    {
        desktop->fill(desktop->screen().root, {screen.native.topLeft(), QSize(40, 40)},
                      color & RGB_MASK);
    }
    QRgb pixel(const Screen &screen, QPoint at) override
    {
        return desktop->look({screen.native.topLeft() + at, QSize(1, 1)}).pixel(0, 0);
    }
    bool removeSecondMonitor() override { return desktop->removeMonitor("Right"); }
    bool addSecondMonitor() override
    {
        return desktop->setMonitor("Right", "726/200x600/200+640+100");
    }

private:
    std::shared_ptr<X11Connection> m_connection;
    std::shared_ptr<X11Monitors> m_monitors;
    X11Screens m_screens;
    X11ScreenGrabber m_grabber;
    X11OverlayShell m_shell;
};

#ifdef TOVEK_WITH_WAYLAND
CompositorOutput outputOf(const char *name, QSize size, QPoint at)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(0xff000000);
    return {QString::fromLatin1(name), image, 1, at};
}

class WaylandDesk : public Desk
{
public:
    WaylandDesk()
        : m_connection(WaylandConnection::open())
        , m_outputs(std::make_shared<WaylandOutputs>(m_connection))
        , m_screens(m_outputs)
        , m_shell(LayerOverlayShell::create(m_outputs, nullptr))
    {
        m_connection->handleInMainLoop();
    }
    OverlayShell &shell() override { return *m_shell; }
    std::vector<Screen> screens() override { return m_screens.all(); }
    std::shared_ptr<FrozenDisplay> freeze(const Screen &screen) override
    {
        return std::make_shared<WaylandFrozenDisplay>(
            SharedPixels::fromImage(compositor->look(indexOf(screen))));
    }
    void paintBelow(const Screen &screen, QRgb color) override
    {
        QImage image(screen.native.size(), QImage::Format_RGB32);
        image.fill(color);
        compositor->setPicture(indexOf(screen), image);
    }
    QRgb pixel(const Screen &screen, QPoint at) override
    {
        return compositor->look(indexOf(screen)).pixel(at);
    }
    bool removeSecondMonitor() override
    {
        compositor->removeOutput(1);
        return true;
    }
    bool addSecondMonitor() override
    {
        compositor->addOutput(outputOf("Right", {726, 600}, {640, 0}));
        return true;
    }

private:
    static int indexOf(const Screen &screen)
    {
        return screen.name == QLatin1String("Left") ? 0 : 1;
    }

    std::shared_ptr<WaylandConnection> m_connection;
    std::shared_ptr<WaylandOutputs> m_outputs;
    WaylandScreens m_screens;
    std::unique_ptr<LayerOverlayShell> m_shell;
};
#endif

std::unique_ptr<Desk> makeDesk(const QString &implementation)
{
#ifdef TOVEK_WITH_WAYLAND
    if (implementation == QLatin1String("layer shell"))
        return std::make_unique<WaylandDesk>();
#endif
    if (implementation == QLatin1String("x11"))
        return std::make_unique<X11Desk>();
    return std::make_unique<FakeDesk>();
}

} // namespace

/// What every implementation of the overlays' windows keeps to.
class TestOverlayShell : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data()
    {
#ifdef TOVEK_WITH_WAYLAND
        if (compositor)
            return addImplementations(std::vector<RealImplementation>{{"layer shell", {}}});
#endif
        addImplementations(std::vector<RealImplementation>{
            {"x11", desktop ? QString() : QStringLiteral("Xvfb or xrandr is missing")}});
    }

    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        QFETCH_GLOBAL(QString, implementation);
        m_desk = makeDesk(implementation);
        m_screens = m_desk->screens();
        QCOMPARE(m_screens.size(), size_t(2));
        for (size_t index = 0; index < 2; ++index) {
            m_desk->paintBelow(m_screens[index], before);
            m_windows[index] = std::make_unique<QWindow>();
            m_surfaces[index] = m_desk->shell().create(*m_windows[index], m_screens[index],
                                                       m_desk->freeze(m_screens[index]));
        }
    }
    void cleanup()
    {
        for (size_t index = 0; index < 2; ++index) {
            m_surfaces[index].reset();
            m_windows[index].reset();
        }
        m_desk.reset();
    }

    void showsNothingBeforeItIsOrderedFront()
    {
        QVERIFY(!first().isVisible());
        QVERIFY(!first().isKey());
        m_desk->paintBelow(m_screens[0], after);
        QCOMPARE(m_desk->pixel(m_screens[0], {5, 5}), after);
    }

    void showsTheFrozenDisplayAtOnce()
    {
        m_desk->paintBelow(m_screens[0], after);
        first().orderFrontRegardless();
        QVERIFY(first().isVisible());
        QVERIFY(!first().isKey());
        QVERIFY(!second().isVisible());
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {5, 5}), before, deadline);
        first().orderFrontRegardless();
        QVERIFY(first().isVisible());
    }

    void goesWhenItIsOrderedOut()
    {
        first().orderOut(); // was not there
        QVERIFY(!first().isVisible());
        first().orderFrontRegardless();
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {5, 5}), before, deadline);
        first().makeKey();
        for (int count = 0; count < 2; ++count) {
            first().orderOut();
            QVERIFY(!first().isVisible());
            QVERIFY(!first().isKey());
        }
        m_desk->paintBelow(m_screens[0], after);
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {5, 5}), after, deadline);
    }

    void goesWithItsObject()
    {
        first().orderFrontRegardless();
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {5, 5}), before, deadline);
        m_surfaces[0].reset();
        m_desk->paintBelow(m_screens[0], after);
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {5, 5}), after, deadline);
    }

    void bringsTheKeysToOneSurfaceAtATime()
    {
        first().orderFrontRegardless();
        second().orderFrontRegardless();
        first().makeKey();
        QTRY_VERIFY_WITH_TIMEOUT(first().isKey(), deadline);
        QVERIFY(!second().isKey());
        second().makeKey();
        QTRY_VERIFY_WITH_TIMEOUT(second().isKey(), deadline);
        QVERIFY(!first().isKey());
        first().orderOut(); // has none to let go of
        QVERIFY(second().isKey());
    }

    void takesTheKeysAsSoonAsItShows()
    {
        first().makeKey();
        QVERIFY(!first().isKey());
        first().orderFrontRegardless();
        QTRY_VERIFY_WITH_TIMEOUT(first().isKey(), deadline);
    }

    void presentsListsOverTheFrozenDisplay()
    {
        first().orderFrontRegardless();
        DisplayList list;
        list.items = {DisplayList::Fill{QRect(4, 4, 10, 10), 0xff00ff00},
                      DisplayList::Fill{QRect(8, 8, 10, 10), 0xff0000ff}};
        QVERIFY(first().present(list));
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {5, 5}), 0xff00ff00, deadline);
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {9, 9}), 0xff0000ff, deadline);
        QCOMPARE(m_desk->pixel(m_screens[0], {3, 4}), before);
        QVERIFY(first().present({}));
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {5, 5}), before, deadline);
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->pixel(m_screens[0], {9, 9}), before, deadline);
    }

    void leavesWithItsScreenAndSaysSo()
    {
        int farewells = 0;
        for (size_t index = 0; index < 2; ++index) {
            m_surfaces[index]->onScreenGone = [&farewells, index] { farewells += index ? 1 : 100; };
            m_surfaces[index]->orderFrontRegardless();
        }
        second().makeKey();
        QVERIFY(m_desk->removeSecondMonitor());
        QTRY_COMPARE_WITH_TIMEOUT(farewells, 1, deadline);
        QVERIFY(!second().isVisible());
        QVERIFY(!second().isKey());
        QVERIFY(first().isVisible());
        QVERIFY(m_desk->addSecondMonitor());
        QTRY_COMPARE_WITH_TIMEOUT(m_desk->screens().size(), size_t(2), deadline);
        QCOMPARE(farewells, 1);
    }

private:
    static constexpr QRgb before = 0xff336699;
    static constexpr QRgb after = 0xffee1122;

    OverlaySurface &first()
    {
        return *m_surfaces[0];
    }
    OverlaySurface &second()
    {
        return *m_surfaces[1];
    }

    std::unique_ptr<Desk> m_desk;
    std::vector<Screen> m_screens;
    std::array<std::unique_ptr<QWindow>, 2> m_windows;
    std::array<std::unique_ptr<OverlaySurface>, 2> m_surfaces;
};

#ifdef TOVEK_WITH_WAYLAND
/// The toolkit can have but one window system a process.
int runOnWayland(int argc, char **argv)
{
    TestCompositor own(
        {{outputOf("Left", {640, 768}, {}), outputOf("Right", {726, 600}, {640, 0})}});
    if (!own.start())
        return 1;
    compositor = &own;
    const UseCompositor use(own);
    qputenv("QT_QPA_PLATFORM", "wayland");
    qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1");
    QGuiApplication application(argc, argv);
    TestOverlayShell test;
    return QTest::qExec(&test, argc, argv);
}
#endif

int main(int argc, char **argv)
{
#ifdef TOVEK_WITH_WAYLAND
    if (qEnvironmentVariableIsSet("TOVEK_TEST_WAYLAND"))
        return runOnWayland(argc, argv);
#endif
    return runOnTwoMonitors<TestOverlayShell>(argc, argv, desktop, {"*Left", "640/200x768/200+0+0"},
                                              {"Right", "726/200x600/200+640+100"});
}

#include "tst_OverlayShell.moc"
