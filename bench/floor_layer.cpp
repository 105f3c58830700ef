// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The floor under a capture on sway: a bare client that waits until F8 comes up, has every output
// copied into shared memory, and shows each copy on a layer surface over its output. A drag shows a
// rubber band, any key closes. It keeps nothing from one capture to the next. It does not hide a
// cursor that the compositor draws into its pictures, which the program must.
//
// floor_layer SWAYSOCK
// Output: "ready".

#include "platform/wayland/SwayIpc.h"
#include "viewporter-client.h"
#include "wlr-layer-shell-unstable-v1-client.h"
#include "wlr-screencopy-unstable-v1-client.h"

#include <QJsonObject>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

constexpr uint32_t everyEdge = 15;
constexpr uint32_t white = 0xffffffff;

template <typename Function>
void ignore(Function *&listener)
{
    listener = [](auto...) {};
}

struct Globals
{
    wl_display *display = nullptr;
    wl_compositor *compositor = nullptr;
    wl_shm *shm = nullptr;
    wl_seat *seat = nullptr;
    zwlr_layer_shell_v1 *layers = nullptr;
    zwlr_screencopy_manager_v1 *copies = nullptr;
    wp_viewporter *viewporter = nullptr;
    std::vector<wl_output *> outputs;
};

/// The picture of an output, then the surface over it.
struct Overlay
{
    Globals &globals;
    wl_output *output;
    zwlr_screencopy_frame_v1 *frame = nullptr;
    wl_surface *surface = nullptr;
    zwlr_layer_surface_v1 *layer = nullptr;
    wp_viewport *viewport = nullptr;
    wl_buffer *buffer = nullptr;
    uint32_t *pixels = nullptr;
    uint32_t format = 0;
    int width = 0, height = 0, stride = 0;
    double scale = 1;
    bool isCopied = false;
    std::array<int, 4> band{}; ///< left, top, right, bottom
    std::vector<uint32_t> covered{}; ///< what lay below the band

    Overlay(Globals &of, wl_output *over) : globals(of), output(over) { }
    Overlay(const Overlay &) = delete;
    Overlay &operator=(const Overlay &) = delete;
    void begin();
    void show();
    void drawBand(std::array<int, 4> to);
    ~Overlay();

private:
    template <typename Visit>
    void visitBand(const Visit &visit);
    void damageBand();
};

void Overlay::begin()
{
    static const zwlr_screencopy_frame_v1_listener listener = [] {
        zwlr_screencopy_frame_v1_listener made{};
        made.buffer = [](void *data, zwlr_screencopy_frame_v1 *, uint32_t format, uint32_t width,
                         uint32_t height, uint32_t stride) {
            auto &self = *static_cast<Overlay *>(data);
            self.format = format;
            self.width = int(width);
            self.height = int(height);
            self.stride = int(stride);
        };
        made.buffer_done = [](void *data, zwlr_screencopy_frame_v1 *frame) {
            auto &self = *static_cast<Overlay *>(data);
            const auto bytes = self.stride * self.height;
            const int file = memfd_create("floor", MFD_CLOEXEC);
            if (ftruncate(file, bytes) != 0)
                std::exit(1);
            self.pixels = static_cast<uint32_t *>(
                mmap(nullptr, size_t(bytes), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
            wl_shm_pool *pool = wl_shm_create_pool(self.globals.shm, file, bytes);
            self.buffer = wl_shm_pool_create_buffer(pool, 0, self.width, self.height, self.stride,
                                                    self.format);
            wl_shm_pool_destroy(pool);
            close(file);
            zwlr_screencopy_frame_v1_copy(frame, self.buffer);
        };
        ignore(made.flags);
        ignore(made.failed);
        ignore(made.damage);
        ignore(made.linux_dmabuf);
        made.ready = [](void *data, zwlr_screencopy_frame_v1 *, uint32_t, uint32_t, uint32_t) {
            static_cast<Overlay *>(data)->isCopied = true;
        };
        return made;
    }();
    frame = zwlr_screencopy_manager_v1_capture_output(globals.copies, 0, output);
    zwlr_screencopy_frame_v1_add_listener(frame, &listener, this);
}

void Overlay::show()
{
    static constexpr zwlr_layer_surface_v1_listener listener{
        [](void *data, zwlr_layer_surface_v1 *layer, uint32_t serial, uint32_t width,
           uint32_t height) {
            auto &self = *static_cast<Overlay *>(data);
            zwlr_layer_surface_v1_ack_configure(layer, serial);
            self.scale = double(self.width) / width;
            wp_viewport_set_destination(self.viewport, int(width), int(height));
            wl_surface_attach(self.surface, self.buffer, 0, 0);
            wl_surface_damage_buffer(self.surface, 0, 0, self.width, self.height);
            wl_surface_commit(self.surface);
        },
        [](void *, zwlr_layer_surface_v1 *) {}};
    surface = wl_compositor_create_surface(globals.compositor);
    viewport = wp_viewporter_get_viewport(globals.viewporter, surface);
    layer = zwlr_layer_shell_v1_get_layer_surface(globals.layers, surface, output,
                                                  ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "floor");
    zwlr_layer_surface_v1_add_listener(layer, &listener, this);
    zwlr_layer_surface_v1_set_anchor(layer, everyEdge);
    zwlr_layer_surface_v1_set_exclusive_zone(layer, -1);
    zwlr_layer_surface_v1_set_keyboard_interactivity(layer, 1);
    wl_surface_commit(surface);
}

template <typename Visit>
void Overlay::visitBand(const Visit &visit)
{
    const auto [left, top, right, bottom] = band;
    for (int x = left; x <= right; ++x) {
        visit(pixels[top * stride / 4 + x]);
        visit(pixels[bottom * stride / 4 + x]);
    }
    for (int y = top + 1; y < bottom; ++y) {
        visit(pixels[y * stride / 4 + left]);
        visit(pixels[y * stride / 4 + right]);
    }
}

void Overlay::damageBand()
{
    const auto [left, top, right, bottom] = band;
    wl_surface_damage_buffer(surface, left, top, right - left + 1, 1);
    wl_surface_damage_buffer(surface, left, bottom, right - left + 1, 1);
    wl_surface_damage_buffer(surface, left, top, 1, bottom - top + 1);
    wl_surface_damage_buffer(surface, right, top, 1, bottom - top + 1);
}

void Overlay::drawBand(std::array<int, 4> to)
{
    if (!covered.empty()) {
        size_t next = 0;
        visitBand([&](uint32_t &pixel) { pixel = covered[next++]; });
        damageBand();
    }
    band = to;
    covered.clear();
    visitBand([&](uint32_t &pixel) { covered.push_back(pixel); });
    visitBand([](uint32_t &pixel) { pixel = white; });
    damageBand();
    wl_surface_attach(surface, buffer, 0, 0);
    wl_surface_commit(surface);
}

Overlay::~Overlay()
{
    zwlr_screencopy_frame_v1_destroy(frame);
    if (layer) {
        zwlr_layer_surface_v1_destroy(layer);
        wp_viewport_destroy(viewport);
        wl_surface_destroy(surface);
    }
    if (buffer) {
        wl_buffer_destroy(buffer);
        munmap(pixels, size_t(stride * height));
    }
}

class Floor
{
public:
    Floor(Globals &globals, tovek::SwayIpc &sway) : m_globals(globals), m_sway(sway) { }
    void run();

private:
    void listen();
    void takeKeys();
    void open();
    void motion(wl_fixed_t x, wl_fixed_t y);

    Globals &m_globals;
    tovek::SwayIpc &m_sway;
    std::vector<std::unique_ptr<Overlay>> m_overlays;
    Overlay *m_entered = nullptr;
    bool m_isDown = false, m_isDragging = false, m_shouldClose = false;
    int m_x = 0, m_y = 0, m_anchorX = 0, m_anchorY = 0;
};

void Floor::motion(wl_fixed_t x, wl_fixed_t y)
{
    if (!m_entered)
        return;
    const auto pixel = [&](wl_fixed_t at, int limit) {
        return std::clamp(int(wl_fixed_to_double(at) * m_entered->scale), 0, limit - 1);
    };
    m_x = pixel(x, m_entered->width);
    m_y = pixel(y, m_entered->height);
    if (std::exchange(m_isDragging, m_isDown) && m_isDown)
        m_entered->drawBand({std::min(m_x, m_anchorX), std::min(m_y, m_anchorY),
                             std::max(m_x, m_anchorX), std::max(m_y, m_anchorY)});
}

void Floor::listen()
{
    static const wl_keyboard_listener keyboard = [] {
        wl_keyboard_listener made{};
        made.keymap = [](void *, wl_keyboard *, uint32_t, int file, uint32_t) { close(file); };
        ignore(made.enter);
        ignore(made.leave);
        ignore(made.modifiers);
        made.key = [](void *data, wl_keyboard *, uint32_t, uint32_t, uint32_t, uint32_t state) {
            auto &self = *static_cast<Floor *>(data);
            self.m_shouldClose = self.m_shouldClose || state == WL_KEYBOARD_KEY_STATE_PRESSED;
        };
        return made;
    }();
    static const wl_pointer_listener pointer = [] {
        wl_pointer_listener made{};
        made.enter = [](void *data, wl_pointer *, uint32_t, wl_surface *surface, wl_fixed_t x,
                        wl_fixed_t y) {
            auto &self = *static_cast<Floor *>(data);
            for (const auto &overlay : self.m_overlays) {
                if (overlay->surface == surface)
                    self.m_entered = overlay.get();
            }
            self.motion(x, y);
        };
        made.leave = [](void *data, wl_pointer *, uint32_t, wl_surface *) {
            static_cast<Floor *>(data)->m_entered = nullptr;
        };
        made.motion = [](void *data, wl_pointer *, uint32_t, wl_fixed_t x, wl_fixed_t y) {
            static_cast<Floor *>(data)->motion(x, y);
        };
        made.button = [](void *data, wl_pointer *, uint32_t, uint32_t, uint32_t, uint32_t state) {
            auto &self = *static_cast<Floor *>(data);
            self.m_isDown = state == WL_POINTER_BUTTON_STATE_PRESSED;
            self.m_anchorX = self.m_x;
            self.m_anchorY = self.m_y;
        };
        ignore(made.axis);
        return made;
    }();
    wl_keyboard_add_listener(wl_seat_get_keyboard(m_globals.seat), &keyboard, this);
    wl_pointer_add_listener(wl_seat_get_pointer(m_globals.seat), &pointer, this);
}

void Floor::open()
{
    for (wl_output *output : m_globals.outputs) {
        m_overlays.push_back(std::make_unique<Overlay>(m_globals, output));
        m_overlays.back()->begin();
    }
    const auto isWaiting = [](const auto &overlay) { return !overlay->isCopied; };
    while (std::any_of(m_overlays.begin(), m_overlays.end(), isWaiting))
        wl_display_dispatch(m_globals.display);
    for (const auto &overlay : m_overlays)
        overlay->show();
}

void Floor::takeKeys()
{
    for (const auto &message : m_sway.take()) {
        const QJsonObject event = QJsonDocument::fromJson(message.payload).object();
        if (event["binding"].toObject()["command"].toString() == QLatin1String("nop floor up")
            && m_overlays.empty())
            open();
    }
}

void Floor::run()
{
    listen();
    wl_display_roundtrip(m_globals.display);
    std::puts("ready");
    std::fflush(stdout);
    while (m_sway.isConnected()) {
        wl_display_dispatch_pending(m_globals.display);
        if (std::exchange(m_shouldClose, false)) {
            m_entered = nullptr;
            m_overlays.clear();
        }
        wl_display_flush(m_globals.display);
        std::array<pollfd, 2> ready{{{wl_display_get_fd(m_globals.display), POLLIN, 0},
                                     {m_sway.fileDescriptor(), POLLIN, 0}}};
        poll(ready.data(), ready.size(), -1);
        if (ready[0].revents && wl_display_dispatch(m_globals.display) < 0)
            return;
        if (ready[1].revents)
            takeKeys();
    }
}

void bindGlobal(void *data, wl_registry *registry, uint32_t name, const char *interface, uint32_t)
{
    auto &globals = *static_cast<Globals *>(data);
    const auto bind = [&](auto *&global, const wl_interface &wanted, uint32_t version) {
        if (std::strcmp(interface, wanted.name) == 0)
            global = static_cast<std::remove_reference_t<decltype(global)>>(
                wl_registry_bind(registry, name, &wanted, version));
    };
    bind(globals.compositor, wl_compositor_interface, 4);
    bind(globals.shm, wl_shm_interface, 1);
    bind(globals.seat, wl_seat_interface, 1);
    bind(globals.layers, zwlr_layer_shell_v1_interface, 3);
    bind(globals.copies, zwlr_screencopy_manager_v1_interface, 3);
    bind(globals.viewporter, wp_viewporter_interface, 1);
    wl_output *output = nullptr;
    bind(output, wl_output_interface, 1);
    if (output)
        globals.outputs.push_back(output);
}

} // namespace

int main(int argc, char **argv)
{
    Globals globals;
    globals.display = wl_display_connect(nullptr);
    const auto commands = tovek::SwayIpc::create(QString::fromLocal8Bit(argc > 1 ? argv[1] : ""));
    const auto events = tovek::SwayIpc::create(QString::fromLocal8Bit(argc > 1 ? argv[1] : ""));
    if (!globals.display || !commands || !events) {
        std::fputs("usage: floor_layer SWAYSOCK\n", stderr);
        return 1;
    }
    static constexpr wl_registry_listener listener{&bindGlobal,
                                                   [](void *, wl_registry *, uint32_t) {}};
    wl_registry *registry = wl_display_get_registry(globals.display);
    wl_registry_add_listener(registry, &listener, &globals);
    wl_display_roundtrip(globals.display);
    if (!commands->run(QStringLiteral("bindsym F8 nop floor down"))
        || !commands->run(QStringLiteral("bindsym --release F8 nop floor up"))
        || !events->ask(tovek::SwayIpc::Type::subscribe, R"(["binding"])"))
        return 1;
    Floor(globals, *events).run();
    return 1;
}
