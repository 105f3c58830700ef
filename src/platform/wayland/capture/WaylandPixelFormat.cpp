// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/capture/WaylandPixelFormat.h"

#include "foundation/MirroredImage.h"

#include <QTransform>

#include <wayland-client-protocol.h>

namespace tovek {

QImage::Format imageFormat(uint32_t shmFormat)
{
    switch (shmFormat) {
    case WL_SHM_FORMAT_XRGB8888:
    case WL_SHM_FORMAT_ARGB8888:
        return QImage::Format_RGB32;
    case WL_SHM_FORMAT_XBGR8888:
    case WL_SHM_FORMAT_ABGR8888:
        return QImage::Format_RGBX8888;
    case WL_SHM_FORMAT_XRGB2101010:
    case WL_SHM_FORMAT_ARGB2101010:
        return QImage::Format_RGB30;
    case WL_SHM_FORMAT_XBGR2101010:
    case WL_SHM_FORMAT_ABGR2101010:
        return QImage::Format_BGR30;
    case WL_SHM_FORMAT_BGR888:
        return QImage::Format_RGB888;
    case WL_SHM_FORMAT_RGB888:
        return QImage::Format_BGR888;
    default:
        return QImage::Format_Invalid;
    }
}

QImage upright(const QImage &image, int32_t transform, bool isUpsideDown)
{
    QImage turned = isUpsideDown ? mirroredImage(image, Qt::Vertical) : image;
    if (transform == WL_OUTPUT_TRANSFORM_NORMAL)
        return turned;
    // The numbers count quarter turns of the picture against the clock, after a flip to the side.
    const int quarters = transform & 3;
    if (quarters)
        turned = turned.transformed(QTransform().rotate(90.0 * quarters));
    if (transform & 4)
        turned = mirroredImage(turned, Qt::Horizontal);
    return turned;
}

} // namespace tovek
