// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/WaylandHand.h"

#include "virtual-keyboard-unstable-v1-client.h"
#include "wlr-virtual-pointer-unstable-v1-client.h"

#include <QElapsedTimer>
#include <QFile>
#include <QStringList>

#include <algorithm>
#include <cstring>
#include <optional>
#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>
#include <xkbcommon/xkbcommon.h>

namespace tovek {

namespace {

constexpr uint32_t leftButton = 0x110; // of the kernel
constexpr int windowSystemKeyOffset = 8;
constexpr uint32_t subpixels = 64; // the place is told in whole parts of the extent

} // namespace

struct WaylandHand::Devices
{
    wl_display *display = nullptr;
    wl_seat *seat = nullptr;
    zwlr_virtual_pointer_manager_v1 *pointers = nullptr;
    zwp_virtual_keyboard_manager_v1 *keyboards = nullptr;
    zwlr_virtual_pointer_v1 *pointer = nullptr;
    zwp_virtual_keyboard_v1 *keyboard = nullptr;
    xkb_context *context = nullptr;
    xkb_keymap *keymap = nullptr;
    xkb_state *state = nullptr;
    QSize extent;
    QElapsedTimer clock;

    uint32_t now() const { return uint32_t(clock.elapsed()); }
    void connect(const QString &socket);
    void makeKeyboard();
    std::optional<uint32_t> keyCode(const QString &name) const;
    static void global(void *data, wl_registry *registry, uint32_t name, const char *interface,
                       uint32_t version);
    static void globalGone(void *, wl_registry *, uint32_t) { }
};

void WaylandHand::Devices::global(void *data, wl_registry *registry, uint32_t name,
                                  const char *interface, uint32_t)
{
    auto &self = *static_cast<Devices *>(data);
    const auto bind = [&](const wl_interface &wanted) -> void * {
        return std::strcmp(interface, wanted.name) == 0
            ? wl_registry_bind(registry, name, &wanted, 1)
            : nullptr;
    };
    if (void *seat = bind(wl_seat_interface))
        self.seat = static_cast<wl_seat *>(seat);
    else if (void *pointers = bind(zwlr_virtual_pointer_manager_v1_interface))
        self.pointers = static_cast<zwlr_virtual_pointer_manager_v1 *>(pointers);
    else if (void *keyboards = bind(zwp_virtual_keyboard_manager_v1_interface))
        self.keyboards = static_cast<zwp_virtual_keyboard_manager_v1 *>(keyboards);
}

void WaylandHand::Devices::connect(const QString &socket)
{
    display = wl_display_connect(QFile::encodeName(socket).constData());
    if (!display)
        return;
    static constexpr wl_registry_listener listener{&global, &globalGone};
    wl_registry *registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &listener, this);
    wl_display_roundtrip(display);
    wl_registry_destroy(registry);
    if (!seat || !pointers || !keyboards)
        return;
    pointer = zwlr_virtual_pointer_manager_v1_create_virtual_pointer(pointers, seat);
    keyboard = zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(keyboards, seat);
    makeKeyboard();
    wl_display_roundtrip(display);
}

void WaylandHand::Devices::makeKeyboard()
{
    context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    xkb_rule_names names{};
    names.layout = "us";
    keymap = xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
    state = xkb_state_new(keymap);
    char *text = xkb_keymap_get_as_string(keymap, XKB_KEYMAP_FORMAT_TEXT_V1);
    const size_t size = std::strlen(text) + 1;
    const int file = memfd_create("keymap", MFD_CLOEXEC);
    if (write(file, text, size) == ssize_t(size))
        zwp_virtual_keyboard_v1_keymap(keyboard, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file,
                                       uint32_t(size));
    close(file);
    std::free(text);
}

std::optional<uint32_t> WaylandHand::Devices::keyCode(const QString &name) const
{
    const xkb_keysym_t wanted =
        xkb_keysym_from_name(name.toUtf8().constData(), XKB_KEYSYM_NO_FLAGS);
    for (xkb_keycode_t code = xkb_keymap_min_keycode(keymap);
         wanted != XKB_KEY_NoSymbol && code <= xkb_keymap_max_keycode(keymap); ++code) {
        const xkb_keysym_t *symbols = nullptr;
        if (xkb_keymap_key_get_syms_by_level(keymap, code, 0, 0, &symbols) > 0
            && symbols[0] == wanted)
            return code;
    }
    return std::nullopt;
}

WaylandHand::WaylandHand(const QString &socket, QSize extent)
    : m_devices(std::make_unique<Devices>())
{
    m_devices->extent = extent;
    m_devices->clock.start();
    m_devices->connect(socket);
}

WaylandHand::~WaylandHand()
{
    xkb_state_unref(m_devices->state);
    xkb_keymap_unref(m_devices->keymap);
    xkb_context_unref(m_devices->context);
    if (m_devices->display)
        wl_display_disconnect(m_devices->display);
}

bool WaylandHand::isWorking() const
{
    return m_devices->keymap && wl_display_get_error(m_devices->display) == 0;
}

void WaylandHand::move(QPointF to)
{
    const QSize &extent = m_devices->extent;
    zwlr_virtual_pointer_v1_motion_absolute(
        m_devices->pointer, m_devices->now(), uint32_t(qRound(to.x() * subpixels)),
        uint32_t(qRound(to.y() * subpixels)), uint32_t(extent.width()) * subpixels,
        uint32_t(extent.height()) * subpixels);
    zwlr_virtual_pointer_v1_frame(m_devices->pointer);
    wl_display_roundtrip(m_devices->display);
}

void WaylandHand::press()
{
    zwlr_virtual_pointer_v1_button(m_devices->pointer, m_devices->now(), leftButton, 1);
    zwlr_virtual_pointer_v1_frame(m_devices->pointer);
    wl_display_roundtrip(m_devices->display);
}

void WaylandHand::release()
{
    zwlr_virtual_pointer_v1_button(m_devices->pointer, m_devices->now(), leftButton, 0);
    zwlr_virtual_pointer_v1_frame(m_devices->pointer);
    wl_display_roundtrip(m_devices->display);
}

void WaylandHand::click(QPointF at)
{
    move(at);
    press();
    release();
}

void WaylandHand::dragAndHold(QPointF from, QPointF to)
{
    constexpr int steps = 15;
    move(from);
    press();
    for (int step = 1; step <= steps; ++step)
        move(from + (to - from) * step / steps);
}

void WaylandHand::drag(QPointF from, QPointF to)
{
    dragAndHold(from, to);
    release();
}

bool WaylandHand::tap(const QString &chord)
{
    return hold(chord) && letGo(chord);
}

bool WaylandHand::hold(const QString &chord)
{
    return send(chord, true);
}

bool WaylandHand::letGo(const QString &chord)
{
    return send(chord, false);
}

bool WaylandHand::send(const QString &chord, bool isDown)
{
    std::vector<uint32_t> codes;
    for (const QString &name : chord.split(QLatin1Char('+'))) {
        const auto code = m_devices->keyCode(name);
        if (!code)
            return false;
        codes.push_back(*code);
    }
    if (!isDown)
        std::reverse(codes.begin(), codes.end());
    for (const uint32_t code : codes) {
        zwp_virtual_keyboard_v1_key(m_devices->keyboard, m_devices->now(),
                                    code - windowSystemKeyOffset, isDown ? 1 : 0);
        // Who types with it tells the modifiers too.
        xkb_state_update_key(m_devices->state, code, isDown ? XKB_KEY_DOWN : XKB_KEY_UP);
        const auto mods = [this](xkb_state_component component) {
            return xkb_state_serialize_mods(m_devices->state, component);
        };
        zwp_virtual_keyboard_v1_modifiers(m_devices->keyboard, mods(XKB_STATE_MODS_DEPRESSED),
                                          mods(XKB_STATE_MODS_LATCHED), mods(XKB_STATE_MODS_LOCKED),
                                          0);
        wl_display_roundtrip(m_devices->display);
    }
    return true;
}

} // namespace tovek
