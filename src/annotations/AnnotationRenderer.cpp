// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "annotations/AnnotationRenderer.h"

#include "annotations/AnnotationDrawing.h"
#include "foundation/DrawingContext.h"

#include <QPainter>

namespace tovek {

namespace {

/// The largest side of a picture that painting reaches.
constexpr double mostPixels = 32767;

/// The pixels of the selection within the image. The size is cut to whole pixels, but a selection
/// whose edges lie on pixels does not lose one to a rounding error.
QRect pixelsOf(const Rect &selection, const ViewSpace &space)
{
    const QRectF pixels = space.pixelsFromRect(selection);
    return {qRound(pixels.x()), qRound(pixels.y()), int(pixels.width() + 1e-6),
            int(pixels.height() + 1e-6)};
}

/// The pixels of the image inside `part`, transparent beside the image.
QImage cut(const QImage &bitmap, const QRect &part)
{
    if (bitmap.rect().contains(part)) {
        // A copy of its own: the annotations must not be drawn into the frozen screen.
        return bitmap.copy(part);
    }
    QImage result(part.size(), QImage::Format_ARGB32_Premultiplied);
    if (result.isNull())
        return result;
    result.fill(Qt::transparent);
    if (!bitmap.isNull()) {
        QPainter painter(&result);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.drawImage(-part.topLeft(), bitmap);
    }
    return result;
}

} // namespace

std::optional<Image> AnnotationRenderer::render(const std::vector<Annotation> &annotations,
                                                const Image &image, const Rect &selection)
{
    if (!(selection.width > 0 && selection.height > 0))
        return std::nullopt;
    const Size viewSize = image.size.height > 0 ? image.size : selection.size();
    const ViewSpace space{viewSize, image.scale()};
    if (std::max(selection.width, selection.height) * space.scale > mostPixels)
        return std::nullopt;
    const QRect part = pixelsOf(selection, space);
    QImage picture = cut(image.bitmap, part);
    if (picture.isNull())
        return std::nullopt;

    QPainter painter(&picture);
    DrawingContext context(painter, space, part.topLeft());
    for (Annotation copy : annotations) {
        fieldsOf(copy).isSelected = false;
        draw(copy, context);
    }
    return Image{picture, selection.size()};
}

} // namespace tovek
