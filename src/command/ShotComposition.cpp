// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "command/ShotComposition.h"

#include <cstring>

namespace tovek {

QRect areaOnDesktop(const QRect &area, const std::vector<QRect> &screens)
{
    QRect desktop;
    for (const QRect &screen : screens)
        desktop |= screen;
    return area & desktop;
}

QImage composeArea(const QRect &area, const std::vector<ScreenPixels> &screens)
{
    for (const ScreenPixels &screen : screens) {
        if (screen.native.contains(area))
            return screen.native == area
                ? screen.pixels
                : screen.pixels.copy(area.translated(-screen.native.topLeft()));
    }
    QImage image(area.size(), QImage::Format_RGB32);
    image.fill(Qt::black);
    if (image.isNull())
        return image;
    for (const ScreenPixels &screen : screens) {
        const QRect part = screen.native & area;
        const QPoint from = part.topLeft() - screen.native.topLeft();
        const QPoint to = part.topLeft() - area.topLeft();
        for (int row = 0; row < part.height(); ++row)
            std::memcpy(image.scanLine(to.y() + row) + to.x() * qsizetype(sizeof(QRgb)),
                        screen.pixels.constScanLine(from.y() + row)
                            + from.x() * qsizetype(sizeof(QRgb)),
                        size_t(part.width()) * sizeof(QRgb));
    }
    return image;
}

} // namespace tovek
