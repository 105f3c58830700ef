// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/DisplayListPainter.h"

#include <QPainter>

namespace tovek {

namespace {

void paintItem(QPainter &painter, const DisplayList::Fill &fill)
{
    painter.fillRect(fill.rect, QColor::fromRgba(qUnpremultiply(fill.color)));
}

void paintItem(QPainter &painter, const DisplayList::Decal &decal)
{
    const QRect bounds = boundsOf(decal);
    painter.drawImage(bounds.topLeft(), decal.image, bounds.translated(-decal.at));
}

} // namespace

QImage renderDisplayList(const DisplayList &list, const QImage &frozen, const QRect &native)
{
    QImage image(native.size(), QImage::Format_RGB32);
    QPainter painter(&image);
    painter.translate(-native.topLeft());
    painter.drawImage(native.topLeft(), frozen, native);
    if (list.veil > 0) {
        const QColor veil = QColor::fromRgbF(0, 0, 0, float(list.veil));
        for (const QRect &rect : QRegion(native) - QRegion(list.clear))
            painter.fillRect(rect, veil);
    }
    for (const DisplayList::Item &item : list.items) {
        if (boundsOf(item).intersects(native))
            std::visit([&](const auto &it) { paintItem(painter, it); }, item);
    }
    return image;
}

void paintDisplayList(QPainter &painter, const DisplayList &list, const QImage &frozen,
                      double scale, const QRegion &region)
{
    for (const QRect &rect : region) {
        const QRectF exact(rect.x() * scale, rect.y() * scale, rect.width() * scale,
                           rect.height() * scale);
        const QRect native = exact.toAlignedRect() & frozen.rect();
        if (native.isEmpty())
            continue;
        QImage part = renderDisplayList(list, frozen, native);
        part.setDevicePixelRatio(scale);
        painter.drawImage(QPointF(native.topLeft()) / scale, part);
    }
}

} // namespace tovek
