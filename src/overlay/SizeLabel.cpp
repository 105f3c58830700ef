// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/SizeLabel.h"

#include <QCoreApplication>

namespace tovek {

namespace {

/// Whole native pixels. A selection's edges lie on native pixels, so that the product is whole but
/// for rounding errors of the division before, which must not cost a pixel.
int pixels(double points, double scale)
{
    return int(points * scale + 1e-6);
}

} // namespace

QString sizeLabelText(const Rect &selection, double scale)
{
    return QStringLiteral("%1 \u00d7 %2")
        .arg(pixels(selection.width, scale))
        .arg(pixels(selection.height, scale));
}

Rect sizeLabelFrame(const Rect &sel, Size bounds, Size box, bool isToolbarAtTop)
{
    const double w = box.width;
    const double h = box.height;
    const Rect inside{sel.minX() + 4, sel.maxY() - h - 4, w, h};
    if (isToolbarAtTop) {
        if (w + 8 < sel.minX())
            return {sel.minX() - w - 8, sel.maxY() - h, w, h};
        if (w + 8 < bounds.width - sel.maxX())
            return {sel.maxX() + 8, sel.maxY() - h, w, h};
        return inside;
    }
    if (sel.maxY() + 8 + h < bounds.height)
        return {sel.minX(), sel.maxY() + 12, w, h};
    if (sel.minY() - 8 - h > 0)
        return {sel.minX(), sel.minY() - h - 8, w, h};
    return inside;
}

QString describedSelection(const QRect &pixels)
{
    return QCoreApplication::translate("SelectionOverlayView",
                                       "Selection of %1 by %2 pixels at %3, %4")
        .arg(pixels.width())
        .arg(pixels.height())
        .arg(pixels.x())
        .arg(pixels.y());
}

} // namespace tovek
