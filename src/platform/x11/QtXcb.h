// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

#include <optional>
#include <xcb/xcb.h>

/// The toolkit's own connection to the X server, for windows that take part in its event loop.
/// Main thread only.
namespace tovek::QtXcb {

/// Null where the program does not run on an X server.
xcb_connection_t *connection();
/// The one screen of the X server; only where there is a connection.
xcb_screen_t *screen();
/// 0 when the server has no memory for it.
xcb_atom_t atom(const char *name);
xcb_window_t selectionOwner(xcb_atom_t selection);
/// Where a rectangle of a window lies on the root window; absent when the window has gone.
std::optional<QRect> geometryOnRoot(xcb_window_t window);
/// A part of the picture of a window, with its children, as Format_RGB32; black beyond its edges.
/// Null when the pixels cannot be had.
QImage pixels(xcb_window_t window, QRect rect);
/// A picture for a window of this depth. Absent for a depth that has no counterpart.
std::optional<QImage> inDepth(const QImage &image, int depth);

} // namespace tovek::QtXcb
