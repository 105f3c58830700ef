// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/FullScreenSurface.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "xdg-shell-client.h"

#include <QGuiApplication>
#include <QWindow>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr uint32_t windowVersion = 2;
constexpr char programName[] = "org.tovek.Tovek"; // of its desktop file
constexpr auto windowAnswerLimit = 2s;

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
                                                             QWindow &window, QScreen *screen)
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
    connection.waitFor([&] { return role->m_isConfigured; }, windowAnswerLimit);
    if (!role->m_isConfigured) {
        logLine(QStringLiteral("The compositor shows no window: it does not answer"));
        return nullptr;
    }
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
            // Of a window that it does not know yet, the compositor may leave the size open.
            if (self.m_announced.isEmpty())
                return;
            self.m_isConfigured = true;
            if (self.m_announced != self.configuredSize())
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

FullScreenSurface::~FullScreenSurface()
{
    Q_ASSERT(isMainThread());
    if (!qApp)
        return;
    if (m_window)
        xdg_toplevel_destroy(m_window);
    if (m_handle)
        xdg_surface_destroy(m_handle);
}

} // namespace tovek
