// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/FullScreenSurface.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "platform/wayland/SharedPixels.h"
#include "xdg-shell-client.h"

#include <QGuiApplication>
#include <QWindow>

#include <cstdlib>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr uint32_t windowVersion = 2;
constexpr char programName[] = "org.tovek.Tovek"; // of its desktop file
constexpr auto windowAnswerLimit = 2s;
/// wlroots tells a window without pixels no size.
constexpr auto windowSizeLimit = 100ms;
/// Only mutter offers this. It tells the size in a second answer, at its leisure.
constexpr char shellOfMutter[] = "gtk_shell1";
/// Each frame that this takes is one of the wait for the overlay.
constexpr auto bringOverLimit = 1000ms;

/// Fractions of points are rounded, here and there.
bool isAbout(QSize one, QSize other)
{
    const QSize difference = one - other;
    return std::abs(difference.width()) <= 1 && std::abs(difference.height()) <= 1;
}

} // namespace

WindowShell::WindowShell(std::shared_ptr<WaylandConnection> connection)
    : m_connection(std::move(connection))
    , m_handle(m_connection->bind<xdg_wm_base>(xdg_wm_base_interface, windowVersion))
{
    static constexpr xdg_wm_base_listener listener{
        [](void *, xdg_wm_base *asked, uint32_t serial) { xdg_wm_base_pong(asked, serial); }};
    xdg_wm_base_add_listener(m_handle, &listener, nullptr);
    m_connection->adopt(m_handle);
}

std::shared_ptr<WindowShell> WindowShell::create()
{
    auto connection = WaylandConnection::ofToolkit();
    if (!connection || !connection->offers(xdg_wm_base_interface.name))
        return nullptr;
    return std::shared_ptr<WindowShell>(new WindowShell(std::move(connection)));
}

WindowShell::~WindowShell()
{
    if (qApp) // else the toolkit has closed the connection
        xdg_wm_base_destroy(m_handle);
}

FullScreenSurface::FullScreenSurface(std::shared_ptr<WindowShell> shell, wl_surface *surface)
    : SurfaceRole(surface)
    , m_shell(std::move(shell))
{
}

std::unique_ptr<FullScreenSurface> FullScreenSurface::create(std::shared_ptr<WindowShell> shell,
                                                             QWindow &window, QScreen *screen,
                                                             QSize points)
{
    if (screen)
        window.setScreen(screen);
    window.create();
    wl_surface *surface = surfaceOf(window);
    if (!surface)
        return nullptr;
    std::unique_ptr<FullScreenSurface> role(new FullScreenSurface(std::move(shell), surface));
    role->open(window, screen);
    WaylandConnection &connection = role->m_shell->connection();
    connection.waitFor([&] { return role->m_hasAnswered; }, windowAnswerLimit);
    if (!role->m_hasAnswered) {
        logLine(QStringLiteral("The compositor shows no window: it does not answer"));
        return nullptr;
    }
    connection.waitFor([&] { return role->isSizeKnown(); },
                       connection.offers(shellOfMutter) ? windowAnswerLimit : windowSizeLimit);
    if (!role->isSizeKnown())
        role->setConfiguredSize(points);
    else if (!isAbout(role->m_announced, points))
        role->bringOver(screen, points);
    connection.adopt(role->m_handle);
    connection.adopt(role->m_window);
    window.resize(role->configuredSize());
    return role;
}

void FullScreenSurface::open(const QWindow &window, QScreen *screen)
{
    // What is made of a wrapper is handled while its answer is waited for.
    auto *windows = m_shell->connection().waitable(m_shell->handle());
    m_handle = xdg_wm_base_get_xdg_surface(windows, surface());
    wl_proxy_wrapper_destroy(windows);
    static constexpr xdg_surface_listener surfaceListener{
        [](void *data, xdg_surface *configured, uint32_t serial) {
            auto &self = *static_cast<FullScreenSurface *>(data);
            xdg_surface_ack_configure(configured, serial);
            self.m_hasAnswered = true;
            // Of a window that it does not know yet, the compositor may leave the size open.
            if (!self.m_announced.isEmpty() && self.m_announced != self.configuredSize())
                self.setConfiguredSize(self.m_announced);
        }};
    xdg_surface_add_listener(m_handle, &surfaceListener, this);
    m_window = xdg_surface_get_toplevel(m_handle);
    static constexpr xdg_toplevel_listener windowListener{
        [](void *data, xdg_toplevel *, int32_t width, int32_t height, wl_array *) {
            static_cast<FullScreenSurface *>(data)->m_announced = QSize(width, height);
        },
        [](void *data, xdg_toplevel *) {
            auto &self = *static_cast<FullScreenSurface *>(data);
            if (self.onClosed)
                self.onClosed();
        }};
    xdg_toplevel_add_listener(m_window, &windowListener, this);
    xdg_toplevel_set_title(m_window, window.title().toUtf8().constData());
    xdg_toplevel_set_app_id(m_window, programName);
    xdg_toplevel_set_fullscreen(m_window, outputOf(screen));
    wl_surface_commit(surface());
}

/// Where mutter (48) lays out its screens in pixels, it makes a window for the scale of the screen
/// with the pointer. On a screen of another scale it is told a wrong size and shown larger or
/// smaller; its scale is that of its screen only after it was moved there, from where it has been
/// shown. Nobody sees it meanwhile: it is clear.
void FullScreenSurface::bringOver(QScreen *screen, QSize points)
{
    WaylandConnection &connection = m_shell->connection();
    auto *shown = connection.waitable(surface());
    const WaylandPtr<wl_callback, wl_callback_destroy> frame(wl_surface_frame(shown));
    wl_proxy_wrapper_destroy(shown);
    bool isShown = false;
    static constexpr wl_callback_listener listener{
        [](void *data, wl_callback *, uint32_t) { *static_cast<bool *>(data) = true; }};
    wl_callback_add_listener(frame.get(), &listener, &isShown);
    showNothing();
    connection.waitFor([&] { return isShown; }, bringOverLimit);
    xdg_toplevel_unset_fullscreen(m_window);
    xdg_toplevel_set_fullscreen(m_window, outputOf(screen));
    connection.waitFor([&] { return isAbout(configuredSize(), points); }, bringOverLimit);
    showNothing();
}

/// As large as it should be: what does not fill its screen is put into the middle, on black.
void FullScreenSurface::showNothing()
{
    WaylandConnection &connection = m_shell->connection();
    const WaylandPtr<wl_shm, wl_shm_destroy> memory(connection.bind<wl_shm>(wl_shm_interface, 1));
    const auto clear = SharedPixels::create(configuredSize());
    if (!memory || !clear)
        return;
    m_nothing.reset(clear->makeBuffer(memory.get(), WL_SHM_FORMAT_ARGB8888));
    wl_surface_attach(surface(), m_nothing.get(), 0, 0);
    wl_surface_damage(surface(), 0, 0, INT32_MAX, INT32_MAX);
    wl_surface_commit(surface());
}

FullScreenSurface::~FullScreenSurface()
{
    Q_ASSERT(isMainThread());
    if (!qApp) {
        (void)m_nothing.release();
        return;
    }
    if (m_window)
        xdg_toplevel_destroy(m_window);
    if (m_handle)
        xdg_surface_destroy(m_handle);
}

} // namespace tovek
