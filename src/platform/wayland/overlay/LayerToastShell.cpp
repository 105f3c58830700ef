// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/overlay/LayerToastShell.h"

#include "platform/wayland/SharedPixels.h"
#include "platform/wayland/WaylandOutputs.h"
#include "platform/wayland/capture/WaylandScreenGrabber.h"
#include "viewporter-client.h"
#include "wlr-layer-shell-unstable-v1-client.h"

#include <QPainter>

#include <cmath>

namespace tovek {

struct LayerToastShell::Globals
{
    std::shared_ptr<WaylandConnection> connection;
    std::shared_ptr<WaylandOutputs> outputs;
    WaylandPtr<wl_compositor, wl_compositor_destroy> compositor;
    WaylandPtr<wl_shm, wl_shm_destroy> shm;
    WaylandPtr<wp_viewporter, wp_viewporter_destroy> viewporter; ///< null where there is none
    WaylandPtr<zwlr_layer_shell_v1, zwlr_layer_shell_v1_destroy> layers;
};

namespace {

using namespace std::chrono_literals;

constexpr uint32_t compositorVersion = 4; // damage in pixels
constexpr uint32_t layerVersion = 4;

/// Where a toast lies, as the compositor wants to know it.
struct Place
{
    wl_output *output = nullptr; ///< null: which one the compositor likes
    double scale = 1;
    QPoint at; ///< points, from the output's top left corner
    QSize size; ///< points, whole ones; what is more than the picture is transparent
    QSize pixels; ///< of that size
};

Place placeOf(QRect native, const std::vector<WaylandOutput> &outputs)
{
    Place place;
    QPointF corner;
    const std::vector<QRect> rects = nativeRects(outputs);
    for (size_t i = 0; i < rects.size(); ++i) {
        if (!rects[i].contains(native.center()))
            continue;
        place.output = outputs[i].handle;
        place.scale = outputs[i].scale;
        corner = QPointF(native.topLeft() - rects[i].topLeft()) / place.scale;
    }
    place.at = corner.toPoint();
    place.size = {int(std::ceil(native.width() / place.scale)),
                  int(std::ceil(native.height() / place.scale))};
    place.pixels = (QSizeF(place.size) * place.scale).toSize().expandedTo(native.size());
    return place;
}

/// A picture in memory that the compositor may still be reading.
struct Buffer
{
    std::shared_ptr<SharedPixels> pixels;
    WaylandPtr<wl_buffer, wl_buffer_destroy> handle;
    bool isBusy = false;

    static void released(void *data, wl_buffer *) { static_cast<Buffer *>(data)->isBusy = false; }
    static constexpr wl_buffer_listener listener{&released};
};

class LayerToastWindow : public ToastWindow
{
public:
    LayerToastWindow(std::shared_ptr<LayerToastShell::Globals> globals, QRect native)
        : m_globals(std::move(globals))
        , m_place(placeOf(native, m_globals->outputs->list()))
        , m_surface(wl_compositor_create_surface(m_globals->compositor.get()))
    {
        const WaylandPtr<wl_region, wl_region_destroy> nowhere(
            wl_compositor_create_region(m_globals->compositor.get()));
        wl_surface_set_input_region(m_surface.get(), nowhere.get());
        if (m_globals->viewporter)
            m_viewport.reset(
                wp_viewporter_get_viewport(m_globals->viewporter.get(), m_surface.get()));
    }

    ~LayerToastWindow() override
    {
        m_layer.reset();
        m_viewport.reset();
        m_surface.reset();
        m_globals->connection->flush();
    }

    void orderFront() override
    {
        m_layer.reset(zwlr_layer_shell_v1_get_layer_surface(
            m_globals->layers.get(), m_surface.get(), m_place.output,
            ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "tovek-toast"));
        zwlr_layer_surface_v1 *layer = m_layer.get();
        zwlr_layer_surface_v1_add_listener(layer, &listener, this);
        zwlr_layer_surface_v1_set_size(layer, uint32_t(m_place.size.width()),
                                       uint32_t(m_place.size.height()));
        zwlr_layer_surface_v1_set_anchor(
            layer, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT);
        zwlr_layer_surface_v1_set_margin(layer, m_place.at.y(), 0, 0, m_place.at.x());
        // Panels do not push it aside.
        zwlr_layer_surface_v1_set_exclusive_zone(layer, -1);
        wl_surface_commit(m_surface.get());
        m_globals->connection->flush();
    }

    void present(const QImage &picture) override
    {
        m_picture = picture;
        if (m_isConfigured)
            put();
    }

    void vanish(const QImage &empty) override
    {
        // Emptied first, because a compositor may fade the last content out.
        present(empty);
        m_layer.reset();
        wl_surface_attach(m_surface.get(), nullptr, 0, 0);
        wl_surface_commit(m_surface.get());
        m_isConfigured = false;
        m_globals->connection->roundtrip(500ms);
    }

private:
    static void configured(void *data, zwlr_layer_surface_v1 *layer, uint32_t serial, uint32_t,
                           uint32_t)
    {
        auto &self = *static_cast<LayerToastWindow *>(data);
        zwlr_layer_surface_v1_ack_configure(layer, serial);
        self.m_isConfigured = true;
        self.put();
    }
    static void closed(void *data, zwlr_layer_surface_v1 *)
    {
        static_cast<LayerToastWindow *>(data)->m_isConfigured = false;
    }
    static constexpr zwlr_layer_surface_v1_listener listener{&configured, &closed};

    void put()
    {
        Buffer *buffer = freeBuffer();
        if (!buffer || m_picture.isNull())
            return;
        QImage image = SharedPixels::image(buffer->pixels, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.drawImage(0, 0, m_picture);
        painter.end();
        buffer->isBusy = true;
        wl_surface_attach(m_surface.get(), buffer->handle.get(), 0, 0);
        wl_surface_damage_buffer(m_surface.get(), 0, 0, m_place.pixels.width(),
                                 m_place.pixels.height());
        if (m_viewport)
            wp_viewport_set_destination(m_viewport.get(), m_place.size.width(),
                                        m_place.size.height());
        else
            wl_surface_set_buffer_scale(m_surface.get(), std::max(1, qRound(m_place.scale)));
        wl_surface_commit(m_surface.get());
        m_globals->connection->flush();
    }

    /// Null when there is no memory.
    Buffer *freeBuffer()
    {
        for (const auto &buffer : m_buffers) {
            if (!buffer->isBusy)
                return buffer.get();
        }
        auto buffer = std::make_unique<Buffer>();
        buffer->pixels = SharedPixels::create(m_place.pixels);
        if (!buffer->pixels)
            return nullptr;
        buffer->handle.reset(
            buffer->pixels->makeBuffer(m_globals->shm.get(), WL_SHM_FORMAT_ARGB8888));
        wl_buffer_add_listener(buffer->handle.get(), &Buffer::listener, buffer.get());
        m_buffers.push_back(std::move(buffer));
        return m_buffers.back().get();
    }

    std::shared_ptr<LayerToastShell::Globals> m_globals;
    Place m_place;
    std::vector<std::unique_ptr<Buffer>> m_buffers;
    WaylandPtr<wl_surface, wl_surface_destroy> m_surface;
    WaylandPtr<wp_viewport, wp_viewport_destroy> m_viewport;
    WaylandPtr<zwlr_layer_surface_v1, zwlr_layer_surface_v1_destroy> m_layer;
    QImage m_picture;
    bool m_isConfigured = false;
};

} // namespace

std::unique_ptr<LayerToastShell>
LayerToastShell::create(std::shared_ptr<WaylandConnection> connection,
                        std::shared_ptr<WaylandOutputs> outputs)
{
    // Below version 3 it cannot be let go.
    if (!connection || connection->versionOf("zwlr_layer_shell_v1") < 3)
        return nullptr;
    auto globals = std::make_shared<Globals>();
    globals->compositor.reset(
        connection->bind<wl_compositor>(wl_compositor_interface, compositorVersion));
    globals->shm.reset(connection->bind<wl_shm>(wl_shm_interface, 1));
    globals->viewporter.reset(connection->bind<wp_viewporter>(wp_viewporter_interface, 1));
    globals->layers.reset(
        connection->bind<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, layerVersion));
    globals->connection = std::move(connection);
    globals->outputs = std::move(outputs);
    if (!globals->compositor || !globals->shm)
        return nullptr;
    // The constructor is private.
    return std::unique_ptr<LayerToastShell>(new LayerToastShell(std::move(globals)));
}

LayerToastShell::LayerToastShell(std::shared_ptr<Globals> globals) : m_globals(std::move(globals))
{
}

LayerToastShell::~LayerToastShell() = default;

std::unique_ptr<ToastWindow> LayerToastShell::create(QRect native, const QString &)
{
    return std::make_unique<LayerToastWindow>(m_globals, native);
}

} // namespace tovek
