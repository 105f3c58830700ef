// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/capture/CursorHider.h"

#include "foundation/MainThread.h"
#include "platform/wayland/SharedPixels.h"
#include "viewporter-client.h"
#include "wlr-layer-shell-unstable-v1-client.h"

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto limit = 80ms; // a few frames
constexpr uint32_t everyEdge = 15;
constexpr int mostMisses = 3; // an open menu keeps the pointer, too

} // namespace

struct CursorHider::Globals
{
    wl_compositor *compositor = nullptr;
    wl_shm *shm = nullptr;
    wl_seat *seat = nullptr;
    zwlr_layer_shell_v1 *shell = nullptr;
    wp_viewporter *viewporter = nullptr;
    std::shared_ptr<SharedPixels> clear;
    wl_buffer *buffer = nullptr;
    wl_pointer *pointer = nullptr;
    bool hasEntered = false;

    ~Globals();
    static void seatHas(void *data, wl_seat *seat, uint32_t capabilities);
    static void entered(void *data, wl_pointer *pointer, uint32_t serial, wl_surface *, wl_fixed_t,
                        wl_fixed_t);
};

CursorHider::Globals::~Globals()
{
    if (pointer)
        wl_pointer_destroy(pointer);
    if (buffer)
        wl_buffer_destroy(buffer);
    if (viewporter)
        wp_viewporter_destroy(viewporter);
    if (shell)
        wl_proxy_destroy(reinterpret_cast<wl_proxy *>(shell));
    if (seat)
        wl_seat_destroy(seat);
    if (shm)
        wl_shm_destroy(shm);
    if (compositor)
        wl_compositor_destroy(compositor);
}

void CursorHider::Globals::seatHas(void *data, wl_seat *seat, uint32_t capabilities)
{
    auto &self = *static_cast<Globals *>(data);
    const bool hasPointer = capabilities & WL_SEAT_CAPABILITY_POINTER;
    if (hasPointer == (self.pointer != nullptr))
        return;
    if (!hasPointer) {
        wl_pointer_destroy(std::exchange(self.pointer, nullptr));
        return;
    }
    static const wl_pointer_listener listener = [] {
        wl_pointer_listener first{}; // of the first version, which tells five things
        first.enter = &entered;
        first.leave = [](void *, wl_pointer *, uint32_t, wl_surface *) {};
        first.motion = [](void *, wl_pointer *, uint32_t, wl_fixed_t, wl_fixed_t) {};
        first.button = [](void *, wl_pointer *, uint32_t, uint32_t, uint32_t, uint32_t) {};
        first.axis = [](void *, wl_pointer *, uint32_t, uint32_t, wl_fixed_t) {};
        return first;
    }();
    self.pointer = wl_seat_get_pointer(seat);
    wl_pointer_add_listener(self.pointer, &listener, data);
}

void CursorHider::Globals::entered(void *data, wl_pointer *pointer, uint32_t serial, wl_surface *,
                                   wl_fixed_t, wl_fixed_t)
{
    wl_pointer_set_cursor(pointer, serial, nullptr, 0, 0);
    static_cast<Globals *>(data)->hasEntered = true;
}

/// The clear surface over one output.
struct CursorHider::Veil
{
    wl_surface *surface;
    zwlr_layer_surface_v1 *layer;
    wp_viewport *viewport;
    wl_buffer *buffer;

    Veil(const Globals &globals, wl_output *output)
        : surface(wl_compositor_create_surface(globals.compositor))
        , layer(zwlr_layer_shell_v1_get_layer_surface(
              globals.shell, surface, output, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "tovek-cursor"))
        , viewport(wp_viewporter_get_viewport(globals.viewporter, surface))
        , buffer(globals.buffer)
    {
        static constexpr zwlr_layer_surface_v1_listener listener{
            &configured, [](void *, zwlr_layer_surface_v1 *) {}};
        zwlr_layer_surface_v1_add_listener(layer, &listener, this);
        zwlr_layer_surface_v1_set_anchor(layer, everyEdge);
        zwlr_layer_surface_v1_set_exclusive_zone(layer, -1);
        wl_surface_commit(surface);
    }
    ~Veil()
    {
        wp_viewport_destroy(viewport);
        zwlr_layer_surface_v1_destroy(layer);
        wl_surface_destroy(surface);
    }
    Veil(const Veil &) = delete;
    Veil &operator=(const Veil &) = delete;

    static void configured(void *data, zwlr_layer_surface_v1 *layer, uint32_t serial,
                           uint32_t width, uint32_t height)
    {
        auto &self = *static_cast<Veil *>(data);
        zwlr_layer_surface_v1_ack_configure(layer, serial);
        wp_viewport_set_destination(self.viewport, int32_t(width), int32_t(height));
        wl_surface_attach(self.surface, self.buffer, 0, 0);
        wl_surface_commit(self.surface);
    }
};

CursorHider::CursorHider(std::shared_ptr<WaylandConnection> connection,
                         std::unique_ptr<Globals> globals)
    : m_connection(std::move(connection))
    , m_globals(std::move(globals))
{
    static constexpr wl_seat_listener listener{&Globals::seatHas, nullptr};
    wl_seat_add_listener(m_globals->seat, &listener, m_globals.get());
    m_connection->roundtrip();
}

CursorHider::~CursorHider() = default;

std::unique_ptr<CursorHider> CursorHider::create(std::shared_ptr<WaylandConnection> connection)
{
    auto globals = std::make_unique<Globals>();
    globals->compositor = connection->bind<wl_compositor>(wl_compositor_interface, 4);
    globals->shm = connection->bind<wl_shm>(wl_shm_interface, 1);
    globals->seat = connection->bind<wl_seat>(wl_seat_interface, 1);
    globals->shell = connection->bind<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, 1);
    globals->viewporter = connection->bind<wp_viewporter>(wp_viewporter_interface, 1);
    globals->clear = SharedPixels::create({1, 1});
    if (!globals->compositor || !globals->shm || !globals->seat || !globals->shell
        || !globals->viewporter || !globals->clear)
        return nullptr;
    globals->buffer = globals->clear->makeBuffer(globals->shm, WL_SHM_FORMAT_ARGB8888);
    return std::unique_ptr<CursorHider>(new CursorHider(std::move(connection), std::move(globals)));
}

void CursorHider::hide(const std::vector<WaylandOutput> &outputs)
{
    Q_ASSERT(isMainThread());
    if (!m_globals->pointer)
        return;
    m_globals->hasEntered = false;
    for (const WaylandOutput &output : outputs)
        m_veils.push_back(std::make_unique<Veil>(*m_globals, output.handle));
    // What is asked for next comes after the cursor's going.
    if (m_connection->waitFor([this] { return m_globals->hasEntered; }, limit))
        m_connection->roundtrip(limit);
}

void CursorHider::show()
{
    Q_ASSERT(isMainThread());
    // By now a slow compositor has told of it, too.
    m_hasWorked |= m_globals->hasEntered;
    if (!m_veils.empty() && !m_hasWorked)
        ++m_misses;
    m_veils.clear();
    m_connection->flush();
}

bool CursorHider::isInVain() const
{
    return !m_hasWorked && m_misses >= mostMisses;
}

} // namespace tovek
