// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

#include <functional>

class QPainter;
class QWidget;

namespace tovek {

/// The pixels that lie under a part of the overlay, given in its native pixels; exactly as large
/// as asked for.
using BackdropProvider = std::function<QImage(QRect nativePixels)>;

/// Translucent material: a rounded plate of the tinted, blurred picture under a widget, with a
/// soft shadow. The whole rectangle of the widget is painted opaquely, so that its parent has
/// nothing to paint below.
class Material
{
public:
    struct Look
    {
        double radius = 12; ///< points; more than half the height makes a capsule
        double margin = 6; ///< around the plate, for the shadow
        double outlineAlpha = 0.18;
        double outlineWidth = 1;
    };

    Material(QWidget &widget, const BackdropProvider &backdrop, Look look);

    /// `opacity` fades the plate over the plain backdrop.
    void paint(QPainter &painter, double opacity = 1);
    /// The picture under the widget has changed.
    void forget() { m_pixels = {}; }

private:
    void refresh(double scale);
    void paintShadow(QPainter &painter, const QRectF &plate) const;

    QWidget &m_widget;
    const BackdropProvider &m_backdrop;
    Look m_look;
    QRect m_pixels; ///< what the pictures below show
    QImage m_plain;
    QImage m_blurred; ///< with the tint
};

/// Colours that are legible on the material whatever lies under it.
namespace MaterialColor {
inline constexpr QRgb primary = 0xffffffff;
inline constexpr QRgb secondary = 0xd0ffffff;
inline constexpr QRgb hover = 0x2effffff;
inline constexpr QRgb active = 0xff0a7bff;
} // namespace MaterialColor

} // namespace tovek
