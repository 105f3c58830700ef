// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/keys/WaylandKeyboardLayout.h"

#include "platform/linux/KeyCodes.h"

#include <algorithm>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace tovek {

namespace {

/// From which on keyboards can be let go.
constexpr uint32_t seatVersion = 3;

} // namespace

struct WaylandKeyboardLayout::Events
{
    static WaylandKeyboardLayout &layout(void *data)
    {
        return *static_cast<WaylandKeyboardLayout *>(data);
    }

    static void added(void *data, wl_registry *registry, uint32_t name, const char *interface,
                      uint32_t version)
    {
        WaylandKeyboardLayout &self = layout(data);
        if (self.m_seat || std::strcmp(interface, wl_seat_interface.name) != 0)
            return;
        self.m_seat = static_cast<wl_seat *>(
            wl_registry_bind(registry, name, &wl_seat_interface, std::min(version, seatVersion)));
        wl_seat_add_listener(self.m_seat, &seatListener, data);
    }
    static void removed(void *, wl_registry *, uint32_t) { }
    static constexpr wl_registry_listener registryListener{&added, &removed};

    static void capabilities(void *data, wl_seat *seat, uint32_t capabilities)
    {
        WaylandKeyboardLayout &self = layout(data);
        const bool hasKeyboard = capabilities & WL_SEAT_CAPABILITY_KEYBOARD;
        if (hasKeyboard && !self.m_keyboard) {
            self.m_keyboard = wl_seat_get_keyboard(seat);
            wl_keyboard_add_listener(self.m_keyboard, &keyboardListener, data);
        } else if (!hasKeyboard && self.m_keyboard) {
            wl_keyboard_destroy(std::exchange(self.m_keyboard, nullptr));
        }
    }
    static void name(void *, wl_seat *, const char *) { }
    static constexpr wl_seat_listener seatListener{&capabilities, &name};

    static void keymap(void *data, wl_keyboard *, uint32_t format, int descriptor, uint32_t size)
    {
        layout(data).takeKeymap(format, descriptor, size);
    }
    // Keys come to windows only, and this connection has none.
    static void enter(void *, wl_keyboard *, uint32_t, wl_surface *, wl_array *) { }
    static void leave(void *, wl_keyboard *, uint32_t, wl_surface *) { }
    static void key(void *, wl_keyboard *, uint32_t, uint32_t, uint32_t, uint32_t) { }
    static void modifiers(void *data, wl_keyboard *, uint32_t, uint32_t, uint32_t, uint32_t,
                          uint32_t group)
    {
        if (layout(data).m_keymap.activate(group))
            layout(data).tellChange();
    }
    static void repeatInfo(void *, wl_keyboard *, int32_t, int32_t) { }
    static constexpr wl_keyboard_listener keyboardListener{&keymap, &enter,     &leave,
                                                           &key,    &modifiers, &repeatInfo};
};

std::unique_ptr<WaylandKeyboardLayout> WaylandKeyboardLayout::create()
{
    wl_display *display = wl_display_connect(nullptr);
    if (!display)
        return nullptr;
    // The constructor is private.
    std::unique_ptr<WaylandKeyboardLayout> layout(new WaylandKeyboardLayout(display));
    return layout->readKeymap() ? std::move(layout) : nullptr;
}

WaylandKeyboardLayout::WaylandKeyboardLayout(wl_display *display) : m_display(display)
{
    m_keymap.setAmerican();
}

WaylandKeyboardLayout::~WaylandKeyboardLayout()
{
    m_notifier.reset();
    if (m_keyboard)
        wl_keyboard_destroy(m_keyboard);
    if (m_seat)
        wl_seat_destroy(m_seat);
    if (m_registry)
        wl_registry_destroy(m_registry);
}

bool WaylandKeyboardLayout::readKeymap()
{
    m_registry = wl_display_get_registry(m_display.get());
    wl_registry_add_listener(m_registry, &Events::registryListener, this);
    // One for the seat, one for what it can do, one for the map.
    for (int round = 0; round < 3; ++round) {
        if (wl_display_roundtrip(m_display.get()) < 0)
            return false;
    }
    return true;
}

std::optional<QString> WaylandKeyboardLayout::character(int keyCode) const
{
    const auto keycode = keycodeOf(keyCode);
    return keycode ? m_keymap.character(*keycode) : std::nullopt;
}

std::optional<QString> WaylandKeyboardLayout::shiftedCharacter(int keyCode) const
{
    const auto keycode = keycodeOf(keyCode);
    return keycode ? m_keymap.character(*keycode, XkbKeymap::Level::shifted) : std::nullopt;
}

std::optional<QString> WaylandKeyboardLayout::characterOfScanCode(quint32 nativeScanCode) const
{
    return m_keymap.character(nativeScanCode);
}

int WaylandKeyboardLayout::keyCodeOfScanCode(quint32 nativeScanCode) const
{
    return hardwareKeyCode(int(nativeScanCode) - windowSystemKeyOffset);
}

void WaylandKeyboardLayout::startDispatching()
{
    if (m_notifier)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(wl_display_get_fd(m_display.get()),
                                                   QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [this] { dispatch(); });
}

void WaylandKeyboardLayout::dispatch()
{
    // Readable, so that nothing is waited for.
    if (wl_display_dispatch(m_display.get()) < 0)
        m_notifier->setEnabled(false); // the connection that matters tells of its end
    else
        wl_display_flush(m_display.get());
}

void WaylandKeyboardLayout::takeKeymap(uint32_t format, int descriptor, uint32_t size)
{
    void *memory = format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1 && size > 0
        ? mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0)
        : MAP_FAILED;
    close(descriptor);
    if (memory == MAP_FAILED)
        return;
    const QByteArray text(static_cast<const char *>(memory), qsizetype(size));
    munmap(memory, size);
    if (m_keymap.setText(text.constData(), 0))
        tellChange();
}

void WaylandKeyboardLayout::tellChange()
{
    if (onChanged)
        onChanged();
}

} // namespace tovek
