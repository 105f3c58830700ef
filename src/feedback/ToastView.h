// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Geometry.h"
#include "foundation/SymbolSource.h"

#include <QColor>
#include <QImage>

class QFont;
class QPainter;
class QPainterPath;

namespace tovek {

enum class ToastAppearance { light, dark };

/// What a toast says and whether it is on its way in or out.
struct ToastView
{
    QString message;
    QString icon; ///< name of a system symbol
    bool isVisible = false;

    bool operator==(const ToastView &) const = default;
};

/// Everything a frame of a toast is painted from. Images cover the whole panel, in native pixels.
struct ToastPicture
{
    Size content; ///< points
    double scale = 1; ///< native pixels per point
    QImage label; ///< symbol and message, of the content's size
    QImage material; ///< what lies below, blurred and tinted
    QImage shadow;
    QImage below; ///< what lies below, as it is; null where the window itself lets it shine
    double presence = 0; ///< 0 hidden, 1 shown; the spring takes it above 1 and below 0
};

/// The label's own size with its padding. The font's size is set here, its family is kept.
Size toastIntrinsicSize(const ToastView &view, const QFont &font);

/// Builds the still parts. `below` is what lies below the panel, a null image when unknown.
ToastPicture makeToastPicture(const ToastView &view, Size content, double scale,
                              ToastAppearance appearance, const QFont &font,
                              const SymbolSource &symbols, const QImage &below);

/// Paints one frame. The painter's units are native pixels, its origin the panel's top left.
void paint(QPainter &painter, const ToastPicture &picture);

/// A rectangle whose corners bend gently from the straight edges on: they pass through the middle
/// of a circular corner of this radius, but begin half as far again from the corner.
QPainterPath continuousRoundedRect(const QRectF &rect, double radius);

} // namespace tovek
