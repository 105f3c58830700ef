// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "menubar/ItemPictures.h"

#include "menubar/ThumbnailGeometry.h"

#include <QPainter>

#include <cmath>

namespace tovek {

namespace {

constexpr double iconSize = 18; // points, the room of a symbol of 16 points
constexpr double symbolSize = 16;
constexpr double thumbnailRadius = 3;
constexpr int thumbnailOversampling = 4;

} // namespace

TrayPicture iconPicture(const SymbolSource &symbols)
{
    const auto paintIcon = [symbols](Size size, const QColor &tint, double scale) {
        QImage image((QSizeF(size.width, size.height) * scale).toSize().expandedTo(QSize(1, 1)),
                     QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(scale);
        image.fill(Qt::transparent);
        const QImage symbol = symbols(QStringLiteral("document.viewfinder.fill"), tint,
                                      symbolSize * size.height / iconSize, scale);
        const QSizeF part = symbol.deviceIndependentSize();
        const auto middle = [scale](double all, double inner) {
            return std::floor((all - inner) / 2 * scale) / scale;
        };
        QPainter painter(&image);
        painter.drawImage(
            QPointF(middle(size.width, part.width()), middle(size.height, part.height())), symbol);
        return image;
    };
    return {{iconSize, iconSize}, paintIcon};
}

TrayPicture thumbnailPicture(const Image &image, const TrayPicture &icon)
{
    const Size size = thumbnailSize(image.size);
    // Scaled down once for all the sizes that hosts may ask for.
    const QImage small = image.bitmap.scaled(
        (QSizeF(size.width, size.height) * thumbnailOversampling).toSize().expandedTo(QSize(1, 1)),
        Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const auto paintThumbnail = [small](Size room, const QColor &, double scale) {
        const QSize pixels =
            (QSizeF(room.width, room.height) * scale).toSize().expandedTo(QSize(1, 1));
        QImage result(pixels, QImage::Format_ARGB32_Premultiplied);
        result.fill(Qt::transparent);
        QPainter painter(&result);
        painter.setRenderHint(QPainter::Antialiasing);
        const double radius = thumbnailRadius * scale * room.height / thumbnailHeight;
        painter.setPen(Qt::NoPen);
        painter.setBrush(small.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                             .convertToFormat(QImage::Format_ARGB32_Premultiplied));
        painter.drawRoundedRect(QRectF(QPointF(), pixels), radius, radius);
        painter.end();
        result.setDevicePixelRatio(scale);
        return result;
    };
    return {size, paintThumbnail, std::make_shared<TrayPicture>(icon)};
}

} // namespace tovek
