// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/X11PixelFormat.h"

#include <QtEndian>

namespace tovek {

namespace {

struct Layout
{
    int bitsPerPixel;
    quint32 redMask, greenMask, blueMask;
    QImage::Format format;
};

// clang-format off
constexpr Layout layouts[] {
    {32, 0x00ff0000, 0x0000ff00, 0x000000ff, QImage::Format_RGB32},
    {32, 0x3ff00000, 0x000ffc00, 0x000003ff, QImage::Format_RGB30},
    {32, 0x000003ff, 0x000ffc00, 0x3ff00000, QImage::Format_BGR30},
    {16, 0x0000f800, 0x000007e0, 0x0000001f, QImage::Format_RGB16},
    {16, 0x00007c00, 0x000003e0, 0x0000001f, QImage::Format_RGB555},
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
    {32, 0x000000ff, 0x0000ff00, 0x00ff0000, QImage::Format_RGBX8888},
    {24, 0x00ff0000, 0x0000ff00, 0x000000ff, QImage::Format_BGR888},
    {24, 0x000000ff, 0x0000ff00, 0x00ff0000, QImage::Format_RGB888},
#endif
};
// clang-format on

constexpr int ownByteOrder =
    Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? XCB_IMAGE_ORDER_LSB_FIRST : XCB_IMAGE_ORDER_MSB_FIRST;

} // namespace

X11PixelFormat x11RootFormat(const xcb_setup_t &setup, const xcb_screen_t &screen)
{
    X11PixelFormat result;
    for (auto format = xcb_setup_pixmap_formats_iterator(&setup); format.rem;
         xcb_format_next(&format)) {
        if (format.data->depth == screen.root_depth) {
            result.bitsPerPixel = format.data->bits_per_pixel;
            result.linePadBits = format.data->scanline_pad;
        }
    }
    if (setup.image_byte_order != ownByteOrder)
        return result;
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem;
         xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem;
             xcb_visualtype_next(&visual)) {
            if (visual.data->visual_id == screen.root_visual)
                result.format = x11ImageFormat(result.bitsPerPixel, visual.data->red_mask,
                                               visual.data->green_mask, visual.data->blue_mask);
        }
    }
    return result;
}

QImage::Format x11ImageFormat(int bitsPerPixel, quint32 redMask, quint32 greenMask,
                              quint32 blueMask)
{
    for (const Layout &layout : layouts) {
        if (layout.bitsPerPixel == bitsPerPixel && layout.redMask == redMask
            && layout.greenMask == greenMask && layout.blueMask == blueMask)
            return layout.format;
    }
    return QImage::Format_Invalid;
}

QImage toRgb32(QImage raw)
{
    // The toolkit's conversions carry unused bits of the source over as well.
    raw.convertTo(QImage::Format_RGB32);
    // Asked once: a call a pixel would cost several times as much as the pixel.
    const int width = raw.width();
    const int height = raw.height();
    for (int y = 0; y < height; ++y) {
        auto *line = reinterpret_cast<quint32 *>(raw.scanLine(y));
        for (int x = 0; x < width; ++x)
            line[x] |= 0xff000000;
    }
    return raw;
}

} // namespace tovek
