// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "Witness.h"

#include "wlr-layer-shell-unstable-v1-client.h"
#include "wlr-screencopy-unstable-v1-client.h"

#include <QFile>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace tovek::bench {

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto deadline = 5s;
constexpr int side = 8; // points
constexpr int colors = 64;
constexpr int pixelBytes = 4;

/// So many squares, each of one colour, and behind them a pixel that is copied into.
struct Memory
{
    uint32_t *pixels = nullptr;
    std::vector<wl_buffer *> squares;
    wl_buffer *copy = nullptr;

    static uint32_t colorOf(int index) { return 0xff000000U + uint32_t(index) * 0x030201U; }
    uint32_t copied() const { return pixels[colors * side * side]; }
    void create(wl_shm *shm)
    {
        constexpr int square = side * side;
        constexpr int bytes = (colors * square + 1) * pixelBytes;
        const int file = memfd_create("witness", MFD_CLOEXEC);
        if (ftruncate(file, bytes) != 0)
            return;
        pixels = static_cast<uint32_t *>(
            mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
        wl_shm_pool *pool = wl_shm_create_pool(shm, file, bytes);
        for (int i = 0; i < colors; ++i) {
            std::fill_n(pixels + i * square, square, colorOf(i));
            squares.push_back(wl_shm_pool_create_buffer(pool, i * square * pixelBytes, side, side,
                                                        side * pixelBytes, WL_SHM_FORMAT_XRGB8888));
        }
        copy = wl_shm_pool_create_buffer(pool, colors * square * pixelBytes, 1, 1, pixelBytes,
                                         WL_SHM_FORMAT_XRGB8888);
        wl_shm_pool_destroy(pool);
        close(file);
    }
};

} // namespace

struct Witness::Globals
{
    wl_display *display = nullptr;
    wl_compositor *compositor = nullptr;
    wl_shm *shm = nullptr;
    zwlr_layer_shell_v1 *layers = nullptr;
    zwlr_screencopy_manager_v1 *copies = nullptr;
    std::vector<wl_output *> outputs;
    std::vector<std::unique_ptr<Spot>> spots;
};

struct Witness::Spot
{
    Globals &globals;
    wl_output *output;
    Memory memory{};
    wl_surface *surface = nullptr;
    zwlr_screencopy_frame_v1 *frame = nullptr;
    int color = 0;
    bool isConfigured = false;
    std::optional<bool> isCovered{};

    void create()
    {
        memory.create(globals.shm);
        static constexpr zwlr_layer_surface_v1_listener listener{
            [](void *data, zwlr_layer_surface_v1 *layer, uint32_t serial, uint32_t, uint32_t) {
                zwlr_layer_surface_v1_ack_configure(layer, serial);
                static_cast<Spot *>(data)->isConfigured = true;
            },
            [](void *, zwlr_layer_surface_v1 *) {}};
        surface = wl_compositor_create_surface(globals.compositor);
        zwlr_layer_surface_v1 *layer = zwlr_layer_shell_v1_get_layer_surface(
            globals.layers, surface, output, ZWLR_LAYER_SHELL_V1_LAYER_TOP, "witness");
        zwlr_layer_surface_v1_add_listener(layer, &listener, this);
        zwlr_layer_surface_v1_set_size(layer, side, side);
        zwlr_layer_surface_v1_set_anchor(
            layer, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT);
        wl_surface_commit(surface);
    }
    /// Another colour, and a copy of the frame that has it.
    void look()
    {
        static constexpr zwlr_screencopy_frame_v1_listener listener{
            [](void *, zwlr_screencopy_frame_v1 *, uint32_t, uint32_t, uint32_t, uint32_t) {},
            [](void *, zwlr_screencopy_frame_v1 *, uint32_t) {},
            [](void *data, zwlr_screencopy_frame_v1 *, uint32_t, uint32_t, uint32_t) {
                auto &self = *static_cast<Spot *>(data);
                self.isCovered = ((self.memory.copied() ^ Memory::colorOf(self.color)) & 0xffffff);
                self.end();
            },
            [](void *data, zwlr_screencopy_frame_v1 *) { static_cast<Spot *>(data)->end(); },
            [](void *, zwlr_screencopy_frame_v1 *, uint32_t, uint32_t, uint32_t, uint32_t) {},
            [](void *, zwlr_screencopy_frame_v1 *, uint32_t, uint32_t, uint32_t) {},
            [](void *data, zwlr_screencopy_frame_v1 *frame) {
                zwlr_screencopy_frame_v1_copy(frame, static_cast<Spot *>(data)->memory.copy);
            }};
        color = (color + 1) % colors;
        wl_surface_attach(surface, memory.squares[size_t(color)], 0, 0);
        wl_surface_damage_buffer(surface, 0, 0, side, side);
        wl_surface_commit(surface);
        frame =
            zwlr_screencopy_manager_v1_capture_output_region(globals.copies, 0, output, 1, 1, 1, 1);
        zwlr_screencopy_frame_v1_add_listener(frame, &listener, this);
    }
    void end() { zwlr_screencopy_frame_v1_destroy(std::exchange(frame, nullptr)); }
};

Witness::Witness(const QString &socket) : m_globals(std::make_unique<Globals>())
{
    Globals &globals = *m_globals;
    globals.display = wl_display_connect(QFile::encodeName(socket).constData());
    if (!globals.display)
        return;
    static constexpr wl_registry_listener listener{
        [](void *data, wl_registry *registry, uint32_t name, const char *interface, uint32_t) {
            auto &made = *static_cast<Globals *>(data);
            const auto bind = [&](auto *&global, const wl_interface &wanted, uint32_t version) {
                if (std::strcmp(interface, wanted.name) == 0)
                    global = static_cast<std::remove_reference_t<decltype(global)>>(
                        wl_registry_bind(registry, name, &wanted, version));
            };
            bind(made.compositor, wl_compositor_interface, 4);
            bind(made.shm, wl_shm_interface, 1);
            bind(made.layers, zwlr_layer_shell_v1_interface, 3);
            bind(made.copies, zwlr_screencopy_manager_v1_interface, 3);
            wl_output *output = nullptr;
            bind(output, wl_output_interface, 1);
            if (output)
                made.outputs.push_back(output);
        },
        [](void *, wl_registry *, uint32_t) {}};
    wl_registry_add_listener(wl_display_get_registry(globals.display), &listener, &globals);
    wl_display_roundtrip(globals.display);
    if (!isWorking())
        return;
    for (wl_output *output : globals.outputs) {
        globals.spots.push_back(std::make_unique<Spot>(Spot{globals, output, {}}));
        globals.spots.back()->create();
    }
    const auto isWaiting = [](const auto &spot) { return !spot->isConfigured; };
    while (std::any_of(globals.spots.begin(), globals.spots.end(), isWaiting)
           && wl_display_dispatch(globals.display) >= 0) { }
}

Witness::~Witness()
{
    if (m_globals->display)
        wl_display_disconnect(m_globals->display);
}

bool Witness::isWorking() const
{
    return m_globals->compositor && m_globals->shm && m_globals->layers && m_globals->copies
        && !m_globals->outputs.empty();
}

std::optional<double> Witness::waitUntilCovered()
{
    return waitUntil(true);
}

bool Witness::waitUntilUncovered()
{
    return waitUntil(false).has_value();
}

std::optional<double> Witness::waitUntil(bool isCovered)
{
    const auto begin = Clock::now();
    for (const auto &spot : m_globals->spots)
        spot->isCovered.reset();
    const auto isDone = [&](const auto &spot) { return spot->isCovered == isCovered; };
    const auto &spots = m_globals->spots;
    while (!std::all_of(spots.begin(), spots.end(), isDone)) {
        for (const auto &spot : spots) {
            if (!spot->frame)
                spot->look();
        }
        wl_display_flush(m_globals->display);
        pollfd ready{wl_display_get_fd(m_globals->display), POLLIN, 0};
        if (Clock::now() - begin > deadline)
            return std::nullopt;
        if (poll(&ready, 1, 100) > 0 && wl_display_dispatch(m_globals->display) < 0)
            return std::nullopt;
    }
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

} // namespace tovek::bench
