// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

#include <xcb/xcb.h>

namespace tovek {

/// How the server lays out the pixels of an image of one depth.
struct X11PixelFormat
{
    QImage::Format format = QImage::Format_Invalid; ///< invalid: no image format has this layout
    int bitsPerPixel = 0;
    int linePadBits = 32;

    qsizetype bytesPerLine(int width) const
    {
        const qsizetype bits = qsizetype(width) * bitsPerPixel;
        return (bits + linePadBits - 1) / linePadBits * linePadBits / 8;
    }
};

/// The layout of the root window's pixels, from its visual's masks and never from a constant.
X11PixelFormat x11RootFormat(const xcb_setup_t &setup, const xcb_screen_t &screen);

/// The image format of pixels with these masks in the byte order of this machine.
QImage::Format x11ImageFormat(int bitsPerPixel, quint32 redMask, quint32 greenMask,
                              quint32 blueMask);

/// Format_RGB32 whose unused byte is 0xff everywhere: the server leaves anything there, which
/// would become holes in whatever takes the byte for alpha. Works in place where it can.
QImage toRgb32(QImage raw);

} // namespace tovek
