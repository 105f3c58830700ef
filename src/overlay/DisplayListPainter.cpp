// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/DisplayListPainter.h"

#include <QPainter>

namespace tovek {

namespace {

/// Paints what of the item lies inside a rectangle.
struct ItemPainter
{
    QPainter &painter;
    const QRect &native;

    void operator()(const DisplayList::Fill &fill) const { paint(fill.rect, fill.color); }
    void operator()(const DisplayList::Fills &fills) const
    {
        Q_ASSERT(fills.rects);
        for (const QRect &rect : *fills.rects)
            paint(rect, fills.color);
    }
    void operator()(const DisplayList::Decal &decal) const
    {
        const QRect bounds = boundsOf(decal);
        if (bounds.intersects(native))
            painter.drawImage(bounds.topLeft(), decal.image, bounds.translated(-decal.at));
    }
    void paint(const QRect &rect, QRgb color) const
    {
        if (rect.intersects(native))
            painter.fillRect(rect, QColor::fromRgba(qUnpremultiply(color)));
    }
};

} // namespace

QImage renderDisplayList(const DisplayList &list, const QImage &frozen, const QRect &native)
{
    QImage image(native.size(), QImage::Format_RGB32);
    if (!frozen.rect().contains(native))
        image.fill(Qt::black);
    QPainter painter(&image);
    painter.translate(-native.topLeft());
    painter.drawImage(native.topLeft(), frozen, native);
    if (list.veil > 0) {
        const QColor veil = QColor::fromRgbF(0, 0, 0, float(list.veil));
        for (const QRect &rect : QRegion(native) - QRegion(list.clear))
            painter.fillRect(rect, veil);
    }
    for (const DisplayList::Item &item : list.items)
        std::visit(ItemPainter{painter, native}, item);
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
