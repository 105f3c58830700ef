// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Desks for the tests of the overlays' windows: one for each implementation.

#pragma once

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
#include "support/compositor/RunOnCompositor.h"
#endif

#include <QImage>

#include <map>

namespace tovek {

inline X11TestDesktop *desktop = nullptr;
#ifdef TOVEK_WITH_WAYLAND
inline TestCompositor *compositor = nullptr;
#endif

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
inline CompositorOutput outputOf(const char *name, QSize size, QPoint at)
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

inline std::unique_ptr<Desk> makeDesk(const QString &implementation)
{
#ifdef TOVEK_WITH_WAYLAND
    if (implementation == QLatin1String("layer shell"))
        return std::make_unique<WaylandDesk>();
#endif
    if (implementation == QLatin1String("x11"))
        return std::make_unique<X11Desk>();
    return std::make_unique<FakeDesk>();
}

} // namespace tovek
