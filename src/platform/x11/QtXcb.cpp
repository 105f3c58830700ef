// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/QtXcb.h"

#include "platform/x11/X11PixelFormat.h"
#include "platform/x11/X11Reply.h"

#include <QGuiApplication>
#include <QHash>

#include <cstring>

namespace tovek::QtXcb {

namespace {

/// The format of pixels as the server keeps them for a depth: of windows with alpha, of the root
/// window, or of windows of a panel that chose something else.
QImage::Format formatForDepth(int depth)
{
    if (depth == 32)
        return QImage::Format_ARGB32_Premultiplied;
    if (depth == screen()->root_depth)
        return x11RootFormat(*xcb_get_setup(connection()), *screen()).format;
    return depth == 24 ? QImage::Format_RGB32 : QImage::Format_Invalid;
}

} // namespace

xcb_connection_t *connection()
{
    const auto *x11 =
        qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

xcb_screen_t *screen()
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection())).data;
}

xcb_atom_t atom(const char *name)
{
    static QHash<QByteArray, xcb_atom_t> known;
    const QByteArray key(name);
    if (const auto found = known.constFind(key); found != known.constEnd())
        return *found;
    xcb_connection_t *c = connection();
    const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        c, xcb_intern_atom(c, false, uint16_t(std::strlen(name)), name), nullptr));
    return reply ? known.insert(key, reply->atom).value() : xcb_atom_t(XCB_ATOM_NONE);
}

xcb_window_t selectionOwner(xcb_atom_t selection)
{
    xcb_connection_t *c = connection();
    const X11Reply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, selection), nullptr));
    return reply ? reply->owner : xcb_window_t(XCB_WINDOW_NONE);
}

std::optional<QRect> geometryOnRoot(xcb_window_t window)
{
    xcb_connection_t *c = connection();
    const auto sizeCookie = xcb_get_geometry(c, window);
    const auto placeCookie = xcb_translate_coordinates(c, window, screen()->root, 0, 0);
    const X11Reply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(c, sizeCookie, nullptr));
    const X11Reply<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(c, placeCookie, nullptr));
    if (!size || !place)
        return std::nullopt;
    return QRect(place->dst_x, place->dst_y, size->width, size->height);
}

QImage pixels(xcb_window_t window, QRect rect)
{
    xcb_connection_t *c = connection();
    const X11Reply<xcb_get_geometry_reply_t> whole(
        xcb_get_geometry_reply(c, xcb_get_geometry(c, window), nullptr));
    if (!whole)
        return {};
    QImage image(rect.size(), QImage::Format_RGB32);
    if (image.isNull())
        return {};
    image.fill(Qt::black);
    const QRect inside = rect & QRect(0, 0, whole->width, whole->height);
    if (inside.isEmpty())
        return image;
    const X11Reply<xcb_get_image_reply_t> reply(
        xcb_get_image_reply(c,
                            xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, window, int16_t(inside.x()),
                                          int16_t(inside.y()), uint16_t(inside.width()),
                                          uint16_t(inside.height()), ~0U),
                            nullptr));
    // The unused byte of a pixel is not alpha, whatever the depth of the window.
    if (!reply)
        return {};
    const QImage::Format format =
        reply->depth == 32 ? QImage::Format_RGB32 : formatForDepth(reply->depth);
    if (format == QImage::Format_Invalid)
        return {};
    const int bytes = QImage::toPixelFormat(format).bitsPerPixel() / 8;
    const int stride = (inside.width() * bytes + 3) / 4 * 4;
    if (xcb_get_image_data_length(reply.get()) < stride * inside.height())
        return {};
    // The conversion sets the unused byte, which would otherwise make the pixels transparent where
    // they are painted into an image with alpha.
    const QImage part =
        QImage(xcb_get_image_data(reply.get()), inside.width(), inside.height(), stride, format)
            .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (part.isNull())
        return {};
    const QPoint at = inside.topLeft() - rect.topLeft();
    for (int y = 0; y < part.height(); ++y) {
        std::memcpy(image.scanLine(at.y() + y) + size_t(at.x()) * 4, part.constScanLine(y),
                    size_t(part.width()) * 4);
    }
    return image;
}

std::optional<QImage> inDepth(const QImage &image, int depth)
{
    const QImage::Format format = formatForDepth(depth);
    if (format == QImage::Format_Invalid)
        return std::nullopt;
    return image.convertToFormat(format);
}

} // namespace tovek::QtXcb
