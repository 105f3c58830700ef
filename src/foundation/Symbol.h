// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QImage>
#include <QPainterPath>

#include <optional>
#include <vector>

class QIODevice;
class QPainter;

namespace tovek {

/// A picture of our own drawing, made of paths. Read from the plain part of SVG that our files
/// use: path, circle, rect, line, polyline and g, with fill, stroke, their opacities, stroke-width
/// and fill-rule; `currentColor` is the colour it is painted in. Painted as paths, so that it is
/// crisp at every size and scale, and nothing is kept in memory between uses.
class Symbol
{
public:
    /// The symbol `resources/symbols/<name>.svg`. Nothing, and a log line, when there is none.
    static std::optional<Symbol> named(const QString &name);
    /// A compiled-in file, such as ":/cross-cursor.svg".
    static std::optional<Symbol> fromFile(const QString &path);
    static std::optional<Symbol> read(QIODevice &device);

    /// In the file's own units.
    QSizeF size() const { return m_size; }
    /// Fits the symbol into the rectangle, centred, proportions kept.
    void paint(QPainter &painter, const QRectF &into, const QColor &color) const;
    /// A transparent picture of `side` points with the symbol fitted into it; its device pixel
    /// ratio is `scale`.
    QImage image(double side, double scale, const QColor &color) const;

private:
    /// A colour of its own, or the colour that the symbol is painted in; with an opacity.
    struct Ink
    {
        bool isNone = true;
        QColor fixed; ///< invalid: the current colour
        double opacity = 1;

        QColor mixed(const QColor &current) const;
    };
    struct Style
    {
        Ink fill{false, {}, 1};
        Ink stroke;
        double strokeWidth = 1;
        Qt::FillRule fillRule = Qt::WindingFill;
    };
    struct Shape
    {
        QPainterPath path;
        Style style;
    };
    class Parser;

    QSizeF m_size;
    std::vector<Shape> m_shapes;
};

/// The named symbol as large as text of the font size. A name that nobody drew gives a null image.
QImage symbolImage(const QString &name, const QColor &color, double points,
                   double devicePixelRatio);

} // namespace tovek
