// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <mutex>
#include <xcb/xcb.h>

namespace tovek {

/// As xcb_connect, from any thread: the library that looks up the server's authority keeps the name
/// of its file in one buffer for all of them (libXau 1.0.9).
inline xcb_connection_t *x11Connect(const char *displayName = nullptr, int *screen = nullptr)
{
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    return xcb_connect(displayName, screen);
}

struct X11Disconnect
{
    void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
};

} // namespace tovek
