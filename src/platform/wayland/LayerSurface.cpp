// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/LayerSurface.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "wlr-layer-shell-unstable-v1-client.h"

#include <QGuiApplication>
#include <QWindow>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr uint32_t knownVersion = 4;
constexpr auto surfaceAnswerLimit = 2s;

} // namespace

LayerShell::LayerShell(std::shared_ptr<WaylandConnection> connection)
    : m_connection(std::move(connection))
    , m_handle(m_connection->bind<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, knownVersion))
{
}

std::shared_ptr<LayerShell> LayerShell::create()
{
    auto connection = WaylandConnection::ofToolkit();
    if (!connection || !connection->offers(zwlr_layer_shell_v1_interface.name))
        return nullptr;
    return std::shared_ptr<LayerShell>(new LayerShell(std::move(connection)));
}

LayerShell::~LayerShell()
{
    if (!qApp)
        return;
    // Before version 3 the compositor need not know.
    if (zwlr_layer_shell_v1_get_version(m_handle) >= ZWLR_LAYER_SHELL_V1_DESTROY_SINCE_VERSION)
        zwlr_layer_shell_v1_destroy(m_handle);
    else
        wl_proxy_destroy(reinterpret_cast<wl_proxy *>(m_handle));
}

LayerSurface::LayerSurface(std::shared_ptr<LayerShell> shell, wl_surface *surface)
    : SurfaceRole(surface)
    , m_shell(std::move(shell))
{
}

std::unique_ptr<LayerSurface> LayerSurface::create(std::shared_ptr<LayerShell> shell,
                                                   QWindow &window, QScreen *screen,
                                                   const Place &place)
{
    if (screen)
        window.setScreen(screen);
    window.create();
    wl_surface *surface = surfaceOf(window);
    if (!surface)
        return nullptr;
    std::unique_ptr<LayerSurface> layer(new LayerSurface(std::move(shell), surface));
    WaylandConnection &connection = layer->m_shell->connection();
    layer->m_handle =
        zwlr_layer_shell_v1_get_layer_surface(layer->m_shell->handle(), surface, outputOf(screen),
                                              ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, place.nameSpace);
    static constexpr zwlr_layer_surface_v1_listener listener{&configured, &closed};
    zwlr_layer_surface_v1_add_listener(layer->m_handle, &listener, layer.get());
    zwlr_layer_surface_v1_set_size(layer->m_handle, uint32_t(place.size.width()),
                                   uint32_t(place.size.height()));
    zwlr_layer_surface_v1_set_anchor(layer->m_handle, place.anchors);
    zwlr_layer_surface_v1_set_exclusive_zone(layer->m_handle,
                                             place.panels == Panels::areCovered ? -1 : 0);
    zwlr_layer_surface_v1_set_margin(layer->m_handle, place.top, place.right, place.bottom,
                                     place.left);
    zwlr_layer_surface_v1_set_keyboard_interactivity(layer->m_handle, 0);
    wl_surface_commit(surface);
    connection.waitFor([&] { return layer->m_isConfigured || layer->m_isClosed; },
                       surfaceAnswerLimit);
    if (!layer->m_isConfigured) {
        logLine(QStringLiteral("The compositor shows no window above the others%1")
                    .arg(layer->m_isClosed ? QString() : QStringLiteral(": it does not answer")));
        return nullptr;
    }
    connection.adopt(layer->m_handle);
    window.resize(layer->configuredSize());
    return layer;
}

LayerSurface::~LayerSurface()
{
    Q_ASSERT(isMainThread());
    if (m_handle && qApp)
        zwlr_layer_surface_v1_destroy(m_handle);
}

void LayerSurface::setKeyboard(Keyboard keyboard)
{
    Q_ASSERT(isMainThread());
    if (m_isClosed)
        return;
    zwlr_layer_surface_v1_set_keyboard_interactivity(m_handle,
                                                     keyboard == Keyboard::exclusive ? 1 : 0);
    wl_surface_commit(surface());
    m_shell->connection().flush();
}

void LayerSurface::configured(void *data, zwlr_layer_surface_v1 *handle, uint32_t serial,
                              uint32_t width, uint32_t height)
{
    auto &self = *static_cast<LayerSurface *>(data);
    zwlr_layer_surface_v1_ack_configure(handle, serial);
    self.m_isConfigured = true;
    self.setConfiguredSize(QSize(int(width), int(height)));
}

void LayerSurface::closed(void *data, zwlr_layer_surface_v1 *)
{
    auto &self = *static_cast<LayerSurface *>(data);
    self.m_isClosed = true;
    if (self.onClosed)
        self.onClosed();
}

} // namespace tovek
