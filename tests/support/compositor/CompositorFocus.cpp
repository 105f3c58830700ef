// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Windows that get the keyboard when they are shown, and the clipboard of whoever has it.

#include "support/compositor/CompositorState.h"
#include "xdg-shell-server.h"

namespace tovek {

namespace {

constexpr int windowVersion = 1;
constexpr int dataVersion = 3;

struct WindowState
{
    CompositorState *compositor = nullptr;
    SurfaceState *surface = nullptr;
    wl_resource *role = nullptr;
    bool isConfigured = false;
    bool hadKeyboard = false;
};

void ignoreString(wl_client *, wl_resource *, const char *) { }
void ignoreNumber(wl_client *, wl_resource *, uint32_t) { }

void giveKeyboard(WindowState &window)
{
    CompositorState &state = *window.compositor;
    state.leaveKeyboard();
    wl_array noKeys;
    wl_array_init(&noKeys);
    for (wl_resource *keyboard : state.keyboards) {
        if (wl_resource_get_client(keyboard) == wl_resource_get_client(window.role))
            wl_keyboard_send_enter(keyboard, ++state.serial, window.surface->resource, &noKeys);
    }
    state.focus = window.surface;
}

void committed(WindowState &window)
{
    if (!std::exchange(window.isConfigured, true))
        xdg_surface_send_configure(window.role, ++window.compositor->serial);
    if (!window.surface->content.isNull() && !std::exchange(window.hadKeyboard, true))
        giveKeyboard(window);
}

void getToplevel(wl_client *client, wl_resource *role, uint32_t id)
{
    static const struct xdg_toplevel_interface requests = [] {
        struct xdg_toplevel_interface some = {};
        some.destroy = &destroyResource;
        some.set_title = &ignoreString;
        some.set_app_id = &ignoreString;
        return some;
    }();
    wl_resource *window = wl_resource_create(client, &xdg_toplevel_interface, windowVersion, id);
    wl_resource_set_implementation(window, &requests, wl_resource_get_user_data(role), nullptr);
}

void getWindow(wl_client *client, wl_resource *shell, uint32_t id, wl_resource *surface)
{
    static const struct xdg_surface_interface requests = [] {
        struct xdg_surface_interface some = {};
        some.destroy = &destroyResource;
        some.get_toplevel = &getToplevel;
        some.ack_configure = &ignoreNumber;
        return some;
    }();
    auto *window = new WindowState; // goes with its resource
    window->compositor = &stateOf<CompositorState>(shell);
    window->surface = &stateOf<SurfaceState>(surface);
    window->role = wl_resource_create(client, &xdg_surface_interface, windowVersion, id);
    window->surface->onCommit = [window] { committed(*window); };
    window->surface->onGone = [window] { window->surface = nullptr; };
    wl_resource_set_implementation(window->role, &requests, window, [](wl_resource *gone) {
        auto *closed = &stateOf<WindowState>(gone);
        if (closed->surface)
            closed->surface->onCommit = closed->surface->onGone = nullptr;
        delete closed;
    });
}

void bindWindows(wl_client *client, void *data, uint32_t version, uint32_t id)
{
    static const struct xdg_wm_base_interface requests
    {
        &destroyResource, nullptr, &getWindow, &ignoreNumber
    };
    wl_resource *windows = wl_resource_create(client, &xdg_wm_base_interface, int(version), id);
    wl_resource_set_implementation(windows, &requests, data, nullptr);
}

struct SourceState
{
    CompositorState *compositor;
    QByteArrayList types;
};

void createSource(wl_client *client, wl_resource *manager, uint32_t id)
{
    static const struct wl_data_source_interface requests
    {
        [](wl_client *, wl_resource *source, const char *type) {
            stateOf<SourceState>(source).types << type;
        },
            &destroyResource, &ignoreNumber
    };
    wl_resource *source =
        wl_resource_create(client, &wl_data_source_interface, wl_resource_get_version(manager), id);
    wl_resource_set_implementation(source, &requests,
                                   new SourceState{&stateOf<CompositorState>(manager), {}},
                                   [](wl_resource *gone) {
                                       auto *state = &stateOf<SourceState>(gone);
                                       if (state->compositor->clipboard.source == gone)
                                           state->compositor->clipboard = {};
                                       delete state;
                                   });
}

void setSelection(wl_client *client, wl_resource *device, wl_resource *source, uint32_t)
{
    auto &state = stateOf<CompositorState>(device);
    if (state.plan.overtakenCopies > 0) {
        --state.plan.overtakenCopies;
        state.leaveKeyboard();
    }
    if (!state.focus || wl_resource_get_client(state.focus->resource) != client) {
        if (source && state.plan.tellsRefusedCopies)
            wl_data_source_send_cancelled(source);
        return;
    }
    state.replaceClipboard(source);
    if (!source)
        return;
    state.clipboard = {source, stateOf<SourceState>(source).types,
                       [source](const QByteArray &type, int descriptor) {
                           wl_data_source_send_send(source, type.constData(), descriptor);
                       },
                       [source] { wl_data_source_send_cancelled(source); }};
}

void getDevice(wl_client *client, wl_resource *manager, uint32_t id, wl_resource *)
{
    static const struct wl_data_device_interface requests
    {
        nullptr, &setSelection, &destroyResource
    };
    wl_resource *device =
        wl_resource_create(client, &wl_data_device_interface, wl_resource_get_version(manager), id);
    wl_resource_set_implementation(device, &requests, &stateOf<CompositorState>(manager), nullptr);
}

void bindData(wl_client *client, void *data, uint32_t version, uint32_t id)
{
    static const struct wl_data_device_manager_interface requests = [] {
        struct wl_data_device_manager_interface some = {}; // newer versions have more
        some.create_data_source = &createSource;
        some.get_data_device = &getDevice;
        return some;
    }();
    wl_resource *manager =
        wl_resource_create(client, &wl_data_device_manager_interface, int(version), id);
    wl_resource_set_implementation(manager, &requests, data, nullptr);
}

} // namespace

void CompositorState::leaveKeyboard()
{
    SurfaceState *before = std::exchange(focus, nullptr);
    for (wl_resource *keyboard : keyboards) {
        if (before && wl_resource_get_client(keyboard) == wl_resource_get_client(before->resource))
            wl_keyboard_send_leave(keyboard, ++serial, before->resource);
    }
}

void offerFocus(CompositorState &state)
{
    state.offer(xdg_wm_base_interface, windowVersion, &bindWindows);
    if (state.plan.hasKeyboard)
        state.offer(wl_data_device_manager_interface, dataVersion, &bindData);
}

} // namespace tovek
