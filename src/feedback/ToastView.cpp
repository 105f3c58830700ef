// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "feedback/ToastView.h"

#include "feedback/ToastGeometry.h"
#include "foundation/Blur.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace tovek {

namespace {

constexpr double horizontalPadding = 16;
constexpr double verticalPadding = 10;
constexpr double fontSize = 14;
constexpr double gap = 7;
constexpr double symbolWidth = 17; // the symbols are drawn as wide as this at the label's font size
constexpr double cornerRadius = 15;
constexpr double shadowRadius = 12;
constexpr double shadowOffset = 6;
constexpr double shadowOpacity = 0.15;
constexpr double hiddenScale = 0.5;
constexpr double materialDeviation = 14;

struct Material
{
    QRgb text;
    int tint; ///< the grey that is laid over the blurred backdrop
    double strength; ///< how much of it, over a backdrop that suits
    double most; ///< how much at most, over one on which the text could not be read
};

constexpr Material materials[]{
    {qRgba(0, 0, 0, 222), 247, 0.52, 0.86}, // light
    {qRgba(255, 255, 255, 235), 56, 0.46, 0.84}, // dark
};

const Material &materialFor(ToastAppearance appearance)
{
    return materials[appearance == ToastAppearance::dark ? 1 : 0];
}

QFont labelFont(QFont font)
{
    font.setPixelSize(qRound(fontSize));
    font.setWeight(QFont::DemiBold);
    return font;
}

QRectF contentRect(const ToastPicture &picture)
{
    return {ToastGeometry::margin, ToastGeometry::margin, picture.content.width,
            picture.content.height};
}

QImage panelImage(QSize pixels)
{
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QImage makeLabel(const ToastView &view, Size content, double scale, ToastAppearance appearance,
                 const QFont &font, const SymbolSource &symbols)
{
    QImage image = panelImage((QSizeF(content.width, content.height) * scale).toSize());
    image.setDevicePixelRatio(scale);
    QPainter painter(&image);
    const QFont sized = labelFont(font);
    const QFontMetricsF metrics(sized);
    const QColor color = QColor::fromRgba(materialFor(appearance).text);
    const Size natural = toastIntrinsicSize(view, font);
    double x = (content.width - std::min(natural.width, content.width)) / 2 + horizontalPadding;
    const QImage symbol = symbols ? symbols(view.icon, color, fontSize, scale) : QImage();
    if (!symbol.isNull()) {
        const QSizeF size = symbol.deviceIndependentSize();
        // On a whole native pixel, or its edges blur.
        const auto snap = [scale](double value) { return std::round(value * scale) / scale; };
        painter.drawImage(QPointF(snap(x + (symbolWidth - size.width()) / 2),
                                  snap((content.height - size.height()) / 2)),
                          symbol);
    }
    x += symbolWidth + gap;
    painter.setFont(sized);
    painter.setPen(color);
    const double width = content.width - horizontalPadding - x;
    // The middle of the capitals, not of the line with its descenders, faces the symbol's.
    const double baseline =
        std::round(((content.height + metrics.capHeight()) / 2) * scale) / scale;
    painter.drawText(QPointF(x, baseline),
                     metrics.elidedText(view.message, Qt::ElideMiddle, std::ceil(width)));
    return image;
}

QImage makeShadow(const ToastPicture &picture, QSize pixels)
{
    QImage image = panelImage(pixels);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(picture.scale, picture.scale);
        painter.fillPath(
            continuousRoundedRect(contentRect(picture).translated(0, shadowOffset), cornerRadius),
            QColor::fromRgbF(0, 0, 0, shadowOpacity));
    }
    // A blur radius is two deviations.
    return blurred(image, shadowRadius / 2 * picture.scale);
}

double luminance(const QColor &color)
{
    return (0.2126 * color.redF() + 0.7152 * color.greenF() + 0.0722 * color.blueF()) * 255;
}

/// How much tint the backdrop needs so that the text can be read: the more, the farther its mean
/// is from the tint.
double tintStrength(const QImage &below, const Material &material)
{
    const QImage mean = below.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const double distance = std::abs(luminance(mean.pixelColor(0, 0)) - material.tint) / 255;
    return std::lerp(material.strength, material.most, std::min(1.0, distance));
}

/// Colours below a veil look dull; the material keeps them lively.
void saturate(QImage &image, double factor)
{
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = line[x];
            const double grey = luminance(QColor(pixel));
            const auto part = [&](int value) {
                return std::clamp(int(std::lround(grey + (value - grey) * factor)), 0, 255);
            };
            line[x] = qRgb(part(qRed(pixel)), part(qGreen(pixel)), part(qBlue(pixel)));
        }
    }
}

QImage makeMaterial(const QImage &below, QSize panelPixels, double scale,
                    ToastAppearance appearance)
{
    const Material &material = materialFor(appearance);
    QImage image = panelImage(panelPixels);
    if (below.isNull()) {
        image.fill(QColor(material.tint, material.tint, material.tint));
        return image;
    }
    // Nothing finer than the blur survives it: a quarter of the pixels each way does.
    const int shrink = std::max(1, int(3 * scale));
    QImage small = below.scaled((panelPixels / shrink).expandedTo(QSize(1, 1)),
                                Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    small =
        blurred(small.convertToFormat(QImage::Format_RGB32), materialDeviation * scale / shrink);
    saturate(small, 1.6);
    const double strength = tintStrength(small, material);
    QPainter painter(&image);
    painter.drawImage(image.rect(),
                      small.scaled(panelPixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    painter.fillRect(image.rect(),
                     QColor(material.tint, material.tint, material.tint, qRound(255 * strength)));
    return image;
}

} // namespace

Size toastIntrinsicSize(const ToastView &view, const QFont &font)
{
    const QFontMetricsF metrics(labelFont(font));
    return {std::ceil(2 * horizontalPadding + symbolWidth + gap
                      + metrics.horizontalAdvance(view.message)),
            std::ceil(2 * verticalPadding + std::max(metrics.height(), symbolWidth))};
}

ToastPicture makeToastPicture(const ToastView &view, Size content, double scale,
                              ToastAppearance appearance, const QFont &font,
                              const SymbolSource &symbols, const QImage &below)
{
    const Size panel = ToastGeometry::panelSize(content);
    const QSize pixels = (QSizeF(panel.width, panel.height) * scale).toSize();
    ToastPicture picture;
    picture.content = content;
    picture.scale = scale;
    picture.label = makeLabel(view, content, scale, appearance, font, symbols);
    picture.material = makeMaterial(below, pixels, scale, appearance);
    picture.shadow = makeShadow(picture, pixels);
    return picture;
}

void paint(QPainter &painter, const ToastPicture &picture)
{
    if (!picture.below.isNull())
        painter.drawImage(0, 0, picture.below);
    const double opacity = std::clamp(picture.presence, 0.0, 1.0);
    if (opacity == 0)
        return;
    // The card is put together first, so that its parts fade as one.
    QImage card = panelImage(picture.shadow.size());
    {
        const double size = hiddenScale + (1 - hiddenScale) * picture.presence;
        const QRectF rect = contentRect(picture);
        const QPointF anchor(rect.center().x(), rect.bottom());
        QTransform grow;
        grow.scale(picture.scale, picture.scale);
        grow.translate(anchor.x(), anchor.y());
        grow.scale(size, size);
        grow.translate(-anchor.x(), -anchor.y());

        QPainter layer(&card);
        layer.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        layer.setTransform(grow);
        const Size panel = ToastGeometry::panelSize(picture.content);
        layer.drawImage(QRectF(0, 0, panel.width, panel.height), picture.shadow);
        const QPainterPath shape = continuousRoundedRect(rect, cornerRadius);
        // The material stays where it is on the screen while the card moves over it.
        layer.resetTransform();
        layer.fillPath(grow.map(shape), QBrush(picture.material));
        layer.setTransform(grow);
        layer.strokePath(shape, QPen(QColor::fromRgbF(1, 1, 1, 0.4F), 0.5));
        layer.drawImage(rect.topLeft(), picture.label);
    }
    painter.setOpacity(opacity);
    painter.drawImage(0, 0, card);
}

QPainterPath continuousRoundedRect(const QRectF &rect, double radius)
{
    // Each corner is a quarter of a superellipse. Its exponent follows from the point halfway,
    // which it shares with the circle: there, both distances from the edges are (1 - 1/sqrt 2) r.
    constexpr int steps = 24;
    const double extent = std::min({1.5 * radius, rect.width() / 2, rect.height() / 2});
    if (extent <= 0 || radius <= 0) {
        QPainterPath plain;
        plain.addRect(rect);
        return plain;
    }
    const double halfway = 1 - std::min(radius, extent) * (1 - M_SQRT1_2) / extent;
    const double exponent = std::log(0.5) / std::log(halfway);
    QPolygonF outline;
    const QPointF centers[]{{rect.right() - extent, rect.bottom() - extent},
                            {rect.left() + extent, rect.bottom() - extent},
                            {rect.left() + extent, rect.top() + extent},
                            {rect.right() - extent, rect.top() + extent}};
    for (int corner = 0; corner < 4; ++corner) {
        for (int i = 0; i <= steps; ++i) {
            const double angle = M_PI_2 * (corner + double(i) / steps);
            const auto bend = [&](double part) {
                return std::copysign(std::pow(std::abs(part), 2 / exponent), part) * extent;
            };
            outline << centers[corner] + QPointF(bend(std::cos(angle)), bend(std::sin(angle)));
        }
    }
    QPainterPath path;
    path.addPolygon(outline);
    path.closeSubpath();
    return path;
}

} // namespace tovek
