// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/KeyboardLayout.h"
#include "platform/linux/XkbKeymap.h"

#include <QSocketNotifier>

#include <memory>
#include <xcb/xcb.h>

namespace tovek {

/// The keyboard map of the X server, read when it is first asked for and again after a change.
class X11KeyboardLayout : public KeyboardLayout
{
public:
    /// Null where there is no X server or its keyboard has no map. Needs no application.
    static std::unique_ptr<X11KeyboardLayout> create();
    ~X11KeyboardLayout() override;

    std::optional<QString> character(int keyCode) const override;
    std::optional<QString> shiftedCharacter(int keyCode) const override;
    std::optional<QString> characterOfScanCode(quint32 nativeScanCode) const override;
    int keyCodeOfScanCode(quint32 nativeScanCode) const override;

    /// Changes are noticed from now on. Needs the application.
    void startDispatching();

private:
    struct Free
    {
        void operator()(xcb_connection_t *connection) const;
    };

    explicit X11KeyboardLayout(std::unique_ptr<xcb_connection_t, Free> connection);
    bool setUp();
    void selectEvents();
    void readEvents();
    /// Empty when the server does not give it.
    const XkbKeymap &keymap() const;
    quint32 activeGroup() const;

    std::unique_ptr<xcb_connection_t, Free> m_connection;
    quint8 m_firstEvent = 0;
    mutable XkbKeymap m_keymap; ///< empty while it is to be read
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace tovek
