// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/X11Requests.h"

#include "platform/x11/X11Reply.h"

#include <QImage>

#include <algorithm>

namespace tovek {

namespace {

constexpr qsizetype requestHeaderBytes = 64;

} // namespace

void x11PutImage(xcb_connection_t *connection, xcb_drawable_t drawable, xcb_gcontext_t gc,
                 int depth, const QImage &image)
{
    const qsizetype bytesPerLine = image.bytesPerLine();
    const qsizetype limit =
        qsizetype(xcb_get_maximum_request_length(connection)) * 4 - requestHeaderBytes;
    const int rows = int(std::max<qsizetype>(1, limit / std::max<qsizetype>(1, bytesPerLine)));
    for (int y = 0; y < image.height(); y += rows) {
        const int count = std::min(rows, image.height() - y);
        xcb_put_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, gc, uint16_t(image.width()),
                      uint16_t(count), 0, int16_t(y), 0, uint8_t(depth),
                      uint32_t(bytesPerLine * count), image.constScanLine(y));
    }
}

bool x11IsDown(const xcb_query_keymap_reply_t &keymap, int keycode)
{
    return keymap.keys[keycode / 8] >> (keycode % 8) & 1;
}

bool x11IsKeyDown(xcb_connection_t *connection, int keycode)
{
    const X11Reply<xcb_query_keymap_reply_t> keymap(
        xcb_query_keymap_reply(connection, xcb_query_keymap(connection), nullptr));
    return keymap && x11IsDown(*keymap, keycode);
}

} // namespace tovek
