// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/KeyboardLayout.h"
#include "platform/linux/XkbKeymap.h"

#include <QSocketNotifier>

#include <memory>
#include <wayland-client.h>

namespace tovek {

/// The keyboard map of the compositor's first seat, on a connection of its own: it is needed before
/// the toolkit has one, for the shortcuts. While the seat has no keyboard, an American one.
class WaylandKeyboardLayout : public KeyboardLayout
{
public:
    /// Null without a compositor. Needs no application.
    static std::unique_ptr<WaylandKeyboardLayout> create();
    ~WaylandKeyboardLayout() override;

    std::optional<QString> character(int keyCode) const override;
    std::optional<QString> shiftedCharacter(int keyCode) const override;
    std::optional<QString> characterOfScanCode(quint32 nativeScanCode) const override;
    int keyCodeOfScanCode(quint32 nativeScanCode) const override;

    /// Changes are noticed from now on. Needs the application.
    void startDispatching();

private:
    struct Disconnect
    {
        void operator()(wl_display *display) const { wl_display_disconnect(display); }
    };
    struct Events; // what the compositor calls

    explicit WaylandKeyboardLayout(wl_display *display);
    bool readKeymap();
    void dispatch();
    void takeKeymap(uint32_t format, int descriptor, uint32_t size);
    void tellChange();

    std::unique_ptr<wl_display, Disconnect> m_display;
    wl_registry *m_registry = nullptr;
    wl_seat *m_seat = nullptr;
    wl_keyboard *m_keyboard = nullptr;
    XkbKeymap m_keymap;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace tovek
