// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/OverlaySurface.h"

#include <QPainter>

namespace tovek {

/// The list over a display's pixels as a painter draws it, one operation an item: what is drawn in
/// other ways is measured against this.
inline QImage painted(QImage display, const DisplayList &list)
{
    QPainter painter(&display);
    const auto fill = [&painter](const QRect &rect, QRgb color) {
        painter.fillRect(rect, QColor::fromRgba(qUnpremultiply(color)));
    };
    for (const QRect &rect : QRegion(display.rect()) - list.clear)
        painter.fillRect(rect, QColor(0, 0, 0, qRound(list.veil * 255)));
    for (const DisplayList::Item &item : list.items) {
        if (const auto *one = std::get_if<DisplayList::Fill>(&item)) {
            fill(one->rect, one->color);
        } else if (const auto *many = std::get_if<DisplayList::Fills>(&item)) {
            for (const QRect &rect : *many->rects)
                fill(rect, many->color);
        } else {
            const auto &decal = std::get<DisplayList::Decal>(item);
            painter.setClipRect(decal.clip, decal.clip.isNull() ? Qt::NoClip : Qt::ReplaceClip);
            painter.drawImage(decal.at, decal.image);
            painter.setClipping(false);
        }
    }
    return display;
}

/// Rectangles that are filled together.
inline DisplayList::Fills fillsOf(QRgb color, std::vector<QRect> rects)
{
    return {color, std::make_shared<const std::vector<QRect>>(std::move(rects))};
}

} // namespace tovek
