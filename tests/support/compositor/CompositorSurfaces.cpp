// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/compositor/CompositorState.h"
#include "viewporter-server.h"

#include <QPainter>

namespace tovek {

namespace {

constexpr int compositorVersion = 4;

QImage contentOf(wl_resource *buffer)
{
    wl_shm_buffer *shm = wl_shm_buffer_get(buffer);
    if (!shm)
        return {};
    const bool hasAlpha = wl_shm_buffer_get_format(shm) == WL_SHM_FORMAT_ARGB8888;
    wl_shm_buffer_begin_access(shm);
    const QImage image(static_cast<const uchar *>(wl_shm_buffer_get_data(shm)),
                       wl_shm_buffer_get_width(shm), wl_shm_buffer_get_height(shm),
                       wl_shm_buffer_get_stride(shm),
                       hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    QImage copy = image.copy();
    wl_shm_buffer_end_access(shm);
    return copy;
}

void attach(wl_client *, wl_resource *surface, wl_resource *buffer, int32_t, int32_t)
{
    stateOf<SurfaceState>(surface).pendingBuffer = buffer;
}

void damage(wl_client *, wl_resource *, int32_t, int32_t, int32_t, int32_t) { }

void frame(wl_client *client, wl_resource *surface, uint32_t id)
{
    wl_resource *callback = wl_resource_create(client, &wl_callback_interface, 1, id);
    auto &state = stateOf<SurfaceState>(surface);
    wl_resource_set_implementation(callback, nullptr, state.compositor, [](wl_resource *gone) {
        std::erase(stateOf<CompositorState>(gone).heldFrames, gone);
    });
    state.pendingCallbacks.push_back(callback);
}

void setRegion(wl_client *, wl_resource *, wl_resource *) { }

void setInputRegion(wl_client *, wl_resource *surface, wl_resource *region)
{
    // A region that was given nothing takes nothing; more than that is not told apart here.
    stateOf<SurfaceState>(surface).takesInput = !region || stateOf<bool>(region);
}

void commit(wl_client *, wl_resource *resource)
{
    auto &surface = stateOf<SurfaceState>(resource);
    if (const auto buffer = std::exchange(surface.pendingBuffer, std::nullopt)) {
        surface.content = *buffer ? contentOf(*buffer) : QImage();
        if (*buffer)
            wl_buffer_send_release(*buffer);
    }
    CompositorState &state = *surface.compositor;
    for (wl_resource *callback : std::exchange(surface.pendingCallbacks, {}))
        state.heldFrames.push_back(callback);
    if (!state.holdsFrames)
        state.tellHeldFrames();
    if (surface.onCommit)
        surface.onCommit();
}

void setTransform(wl_client *, wl_resource *, int32_t) { }

void setScale(wl_client *, wl_resource *surface, int32_t scale)
{
    stateOf<SurfaceState>(surface).bufferScale = scale;
}

const struct wl_surface_interface surfaceRequests = [] {
    struct wl_surface_interface requests
    {
    }; // newer versions have more
    requests.destroy = &destroyResource;
    requests.attach = &attach;
    requests.damage = &damage;
    requests.frame = &frame;
    requests.set_opaque_region = &setRegion;
    requests.set_input_region = &setInputRegion;
    requests.commit = &commit;
    requests.set_buffer_transform = &setTransform;
    requests.set_buffer_scale = &setScale;
    requests.damage_buffer = &damage;
    return requests;
}();

void surfaceGone(wl_resource *resource)
{
    auto *surface = &stateOf<SurfaceState>(resource);
    CompositorState &state = *surface->compositor;
    if (surface->onGone)
        surface->onGone();
    if (state.focus == surface)
        state.focus = nullptr;
    if (surface->parent)
        std::erase(surface->parent->children, surface);
    for (SurfaceState *child : surface->children)
        child->parent = nullptr;
    for (LayerState *layer : state.layers) {
        if (layer->surface == surface)
            layer->surface = nullptr;
    }
    state.updatePointer();
    delete surface;
}

void createSurface(wl_client *client, wl_resource *compositor, uint32_t id)
{
    auto *surface = new SurfaceState; // goes with its resource
    surface->compositor = &stateOf<CompositorState>(compositor);
    surface->resource =
        wl_resource_create(client, &wl_surface_interface, wl_resource_get_version(compositor), id);
    wl_resource_set_implementation(surface->resource, &surfaceRequests, surface, &surfaceGone);
}

void addRect(wl_client *, wl_resource *region, int32_t, int32_t, int32_t width, int32_t height)
{
    if (width > 0 && height > 0)
        stateOf<bool>(region) = true;
}

void subtractRect(wl_client *, wl_resource *, int32_t, int32_t, int32_t, int32_t) { }

const struct wl_region_interface regionRequests
{
    &destroyResource, &addRect, &subtractRect
};

void createRegion(wl_client *client, wl_resource *, uint32_t id)
{
    wl_resource *region = wl_resource_create(client, &wl_region_interface, 1, id);
    wl_resource_set_implementation(region, &regionRequests, new bool(false),
                                   [](wl_resource *gone) { delete &stateOf<bool>(gone); });
}

// Newer libraries know requests that this version of the interface does not have.
const struct wl_compositor_interface compositorRequests = [] {
    struct wl_compositor_interface requests = {};
    requests.create_surface = &createSurface;
    requests.create_region = &createRegion;
    return requests;
}();

void setPosition(wl_client *, wl_resource *subsurface, int32_t x, int32_t y)
{
    if (auto *surface = static_cast<SurfaceState *>(wl_resource_get_user_data(subsurface)))
        surface->position = QPoint(x, y);
}

template <bool above>
void place(wl_client *, wl_resource *subsurface, wl_resource *)
{
    stateOf<SurfaceState>(subsurface).isAbove = above;
}

void setSync(wl_client *, wl_resource *) { }

const struct wl_subsurface_interface subsurfaceRequests
{
    &destroyResource, &setPosition, &place<true>, &place<false>, &setSync, &setSync
};

void getSubsurface(wl_client *client, wl_resource *, uint32_t id, wl_resource *surface,
                   wl_resource *parent)
{
    auto &child = stateOf<SurfaceState>(surface);
    child.parent = &stateOf<SurfaceState>(parent);
    child.parent->children.push_back(&child);
    wl_resource *subsurface = wl_resource_create(client, &wl_subsurface_interface, 1, id);
    wl_resource_set_implementation(subsurface, &subsurfaceRequests, &child, nullptr);
}

const struct wl_subcompositor_interface subcompositorRequests
{
    &destroyResource, &getSubsurface
};

void setSource(wl_client *, wl_resource *, wl_fixed_t, wl_fixed_t, wl_fixed_t, wl_fixed_t) { }

void setDestination(wl_client *, wl_resource *viewport, int32_t width, int32_t height)
{
    stateOf<SurfaceState>(viewport).destination = QSize(width, height);
}

const struct wp_viewport_interface viewportRequests
{
    &destroyResource, &setSource, &setDestination
};

void getViewport(wl_client *client, wl_resource *, uint32_t id, wl_resource *surface)
{
    wl_resource *viewport = wl_resource_create(client, &wp_viewport_interface, 1, id);
    wl_resource_set_implementation(viewport, &viewportRequests, &stateOf<SurfaceState>(surface),
                                   nullptr);
}

const struct wp_viewporter_interface viewporterRequests
{
    &destroyResource, &getViewport
};

void paint(QPainter &painter, const SurfaceState &surface, QPointF at, double scale)
{
    const auto paintChildren = [&](bool above) {
        for (const SurfaceState *child : surface.children) {
            if (child->isAbove == above)
                paint(painter, *child, at + child->position, scale);
        }
    };
    paintChildren(false);
    if (!surface.content.isNull())
        painter.drawImage(QRectF(at * scale, QSizeF(surface.points()) * scale), surface.content);
    paintChildren(true);
}

} // namespace

void CompositorState::tellHeldFrames()
{
    for (wl_resource *callback : std::exchange(heldFrames, {})) {
        wl_callback_send_done(callback, 0);
        wl_resource_destroy(callback);
    }
}

QImage CompositorState::compose(const OutputState &output, bool withCursor) const
{
    QImage image = output.output.picture.copy();
    QPainter painter(&image);
    for (const LayerState *layer : layers) {
        if (layer->surface && layer->output == &output && layer->isConfigured)
            paint(painter, *layer->surface, layer->geometry().topLeft(), output.output.scale);
    }
    if (withCursor && plan.cursor && !isCursorHidden && output.logical().contains(*plan.cursor)) {
        const QPointF at = QPointF(*plan.cursor - output.output.at) * output.output.scale;
        painter.fillRect(QRect(at.toPoint(), QSize(16, 24)), QColor(255, 0, 255));
    }
    return image;
}

void offerSurfaces(CompositorState &state)
{
    state.offer(wl_compositor_interface, compositorVersion,
                &bindPlain<wl_compositor_interface, compositorRequests>);
    state.offer(wl_subcompositor_interface, 1,
                &bindPlain<wl_subcompositor_interface, subcompositorRequests>);
    state.offer(wp_viewporter_interface, 1,
                &bindPlain<wp_viewporter_interface, viewporterRequests>);
}

} // namespace tovek
