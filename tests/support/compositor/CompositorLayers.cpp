// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/compositor/CompositorState.h"
#include "wlr-layer-shell-unstable-v1-server.h"

namespace tovek {

namespace {

constexpr int layerShellVersion = 4;
constexpr int seatVersion = 5;
constexpr uint32_t top = 1, bottom = 2, left = 4, right = 8; // of anchors

void configure(LayerState &layer)
{
    QSize size = layer.size;
    const QSize whole = layer.output->logical().size();
    if (size.width() == 0)
        size.setWidth(whole.width() - layer.margins.left() - layer.margins.right());
    if (size.height() == 0)
        size.setHeight(whole.height() - layer.margins.top() - layer.margins.bottom());
    zwlr_layer_surface_v1_send_configure(layer.resource, ++layer.compositor->serial,
                                         uint32_t(size.width()), uint32_t(size.height()));
}

void setSize(wl_client *, wl_resource *layer, uint32_t width, uint32_t height)
{
    stateOf<LayerState>(layer).size = QSize(int(width), int(height));
}

void setAnchor(wl_client *, wl_resource *layer, uint32_t anchors)
{
    stateOf<LayerState>(layer).anchors = anchors;
}

void setZone(wl_client *, wl_resource *, int32_t) { }

void setMargin(wl_client *, wl_resource *layer, int32_t topMargin, int32_t rightMargin,
               int32_t bottomMargin, int32_t leftMargin)
{
    stateOf<LayerState>(layer).margins = {leftMargin, topMargin, rightMargin, bottomMargin};
}

void setKeyboard(wl_client *, wl_resource *layer, uint32_t keyboard)
{
    stateOf<LayerState>(layer).keyboard = keyboard;
}

void ignoreObject(wl_client *, wl_resource *, wl_resource *) { }
void ignoreNumber(wl_client *, wl_resource *, uint32_t) { }

const struct zwlr_layer_surface_v1_interface layerRequests
{
    &setSize, &setAnchor, &setZone, &setMargin, &setKeyboard, &ignoreObject, &ignoreNumber,
        &destroyResource, &ignoreNumber, &ignoreNumber
};

void layerGone(wl_resource *resource)
{
    auto *layer = &stateOf<LayerState>(resource);
    CompositorState &state = *layer->compositor;
    if (layer->surface)
        layer->surface->onCommit = nullptr;
    state.layers.remove(layer);
    delete layer;
    state.updatePointer();
}

void getLayer(wl_client *client, wl_resource *shell, uint32_t id, wl_resource *surface,
              wl_resource *output, uint32_t, const char *name)
{
    auto &state = stateOf<CompositorState>(shell);
    auto *layer = new LayerState; // goes with its resource
    layer->compositor = &state;
    layer->surface = &stateOf<SurfaceState>(surface);
    layer->output = output ? &stateOf<OutputState>(output) : state.outputAt(0);
    layer->name = QString::fromUtf8(name);
    layer->resource = wl_resource_create(client, &zwlr_layer_surface_v1_interface,
                                         wl_resource_get_version(shell), id);
    wl_resource_set_implementation(layer->resource, &layerRequests, layer, &layerGone);
    if (!layer->surface->content.isNull()) {
        wl_resource_post_error(shell, ZWLR_LAYER_SHELL_V1_ERROR_ALREADY_CONSTRUCTED,
                               "the surface has a buffer");
        return;
    }
    state.layers.push_back(layer);
    ++state.layerCount;
    layer->surface->onCommit = [layer] {
        if (!std::exchange(layer->isConfigured, true))
            configure(*layer);
        layer->compositor->updatePointer();
    };
}

const struct zwlr_layer_shell_v1_interface shellRequests
{
    &getLayer, &destroyResource
};

void bindShell(wl_client *client, void *data, uint32_t version, uint32_t id)
{
    wl_resource *resource =
        wl_resource_create(client, &zwlr_layer_shell_v1_interface, int(version), id);
    wl_resource_set_implementation(resource, &shellRequests, data, nullptr);
}

void setCursor(wl_client *, wl_resource *pointer, uint32_t, wl_resource *surface, int32_t, int32_t)
{
    auto &state = stateOf<CompositorState>(pointer);
    state.isCursorPainted = false;
    if (state.cursorOwner
        && wl_resource_get_client(state.cursorOwner) == wl_resource_get_client(pointer))
        state.isCursorHidden = !surface;
}

const struct wl_pointer_interface pointerRequests
{
    &setCursor, &destroyResource
};

void getPointer(wl_client *client, wl_resource *seat, uint32_t id)
{
    auto &state = stateOf<CompositorState>(seat);
    wl_resource *pointer =
        wl_resource_create(client, &wl_pointer_interface, wl_resource_get_version(seat), id);
    wl_resource_set_implementation(pointer, &pointerRequests, &state, [](wl_resource *gone) {
        std::erase(stateOf<CompositorState>(gone).pointers, gone);
    });
    state.pointers.push_back(pointer);
}

const struct wl_keyboard_interface keyboardRequests
{
    &destroyResource
};

void getKeyboard(wl_client *client, wl_resource *seat, uint32_t id)
{
    wl_resource *keyboard =
        wl_resource_create(client, &wl_keyboard_interface, wl_resource_get_version(seat), id);
    auto &state = stateOf<CompositorState>(seat);
    wl_resource_set_implementation(keyboard, &keyboardRequests, &state, [](wl_resource *gone) {
        std::erase(stateOf<CompositorState>(gone).keyboards, gone);
    });
    state.keyboards.push_back(keyboard);
}

const struct wl_seat_interface seatRequests
{
    &getPointer, &getKeyboard, nullptr, &destroyResource
};

void bindSeat(wl_client *client, void *data, uint32_t version, uint32_t id)
{
    const auto &state = *static_cast<CompositorState *>(data);
    wl_resource *seat = wl_resource_create(client, &wl_seat_interface, int(version), id);
    wl_resource_set_implementation(seat, &seatRequests, data, nullptr);
    wl_seat_send_capabilities(seat,
                              (state.plan.cursor ? WL_SEAT_CAPABILITY_POINTER : 0)
                                  | (state.plan.hasKeyboard ? WL_SEAT_CAPABILITY_KEYBOARD : 0));
    if (version >= WL_SEAT_NAME_SINCE_VERSION)
        wl_seat_send_name(seat, "seat");
}

} // namespace

QRect LayerState::geometry() const
{
    const QSize whole = output->logical().size();
    const QSize used(size.width() ? size.width() : whole.width(),
                     size.height() ? size.height() : whole.height());
    const auto along = [](bool atStart, bool atEnd, int room, int length, int start, int end) {
        if (atStart)
            return start;
        return atEnd ? room - length - end : (room - length) / 2;
    };
    return {QPoint(along(anchors & left, anchors & right, whole.width(), used.width(),
                         margins.left(), margins.right()),
                   along(anchors & top, anchors & bottom, whole.height(), used.height(),
                         margins.top(), margins.bottom())),
            used};
}

/// The mouse is over the uppermost surface that shows something where it is.
void CompositorState::updatePointer()
{
    if (!plan.cursor || plan.keepsPointer)
        return;
    LayerState *under = nullptr;
    for (LayerState *layer : layers) {
        if (layer->surface && !layer->surface->content.isNull() && layer->surface->takesInput
            && layer->geometry().translated(layer->output->output.at).contains(*plan.cursor))
            under = layer;
    }
    for (LayerState *layer : layers) {
        if (layer == under || !std::exchange(layer->hasPointer, false) || !layer->surface)
            continue;
        for (wl_resource *pointer : pointers) {
            if (wl_resource_get_client(pointer) == wl_resource_get_client(layer->resource))
                wl_pointer_send_leave(pointer, ++serial, layer->surface->resource);
        }
    }
    if (!under) {
        cursorOwner = nullptr;
        isCursorHidden = false;
        return;
    }
    if (std::exchange(under->hasPointer, true))
        return;
    isCursorHidden = false;
    const QPoint at = *plan.cursor - under->output->output.at - under->geometry().topLeft();
    for (wl_resource *pointer : pointers) {
        if (wl_resource_get_client(pointer) != wl_resource_get_client(under->resource))
            continue;
        cursorOwner = pointer;
        wl_pointer_send_enter(pointer, ++serial, under->surface->resource,
                              wl_fixed_from_int(at.x()), wl_fixed_from_int(at.y()));
    }
}

void offerLayers(CompositorState &state)
{
    state.offer(zwlr_layer_shell_v1_interface, layerShellVersion, &bindShell);
    state.offer(wl_seat_interface, seatVersion, &bindSeat);
}

} // namespace tovek
