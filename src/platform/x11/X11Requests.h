// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <xcb/xcb.h>

class QImage;

namespace tovek {

/// Puts the picture into the drawable's corner, in pieces that fit into one request. Its pixels are
/// laid out already as the server has them in this depth.
void x11PutImage(xcb_connection_t *connection, xcb_drawable_t drawable, xcb_gcontext_t gc,
                 int depth, const QImage &image);

/// True when the key was held down when the server answered.
bool x11IsDown(const xcb_query_keymap_reply_t &keymap, int keycode);
/// True when it is held down now; one round trip.
bool x11IsKeyDown(xcb_connection_t *connection, int keycode);

} // namespace tovek
