// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/ImageCrop.h"

#include <cmath>

namespace tovek {

namespace {

/// The nearest pixel boundary inside 0 to limit.
int wholeEdge(double position, int limit)
{
    return int(std::lround(std::clamp(position, 0.0, double(limit))));
}

QImage cutOut(const QImage &bitmap, const QRect &rect)
{
    if (rect == bitmap.rect())
        return bitmap;
    const qint64 pixels = qint64(rect.width()) * rect.height();
    const bool isLargePart = 2 * pixels >= qint64(bitmap.width()) * bitmap.height();
    if (!isLargePart || bitmap.depth() != 32)
        return bitmap.copy(rect);
    // Owned by the view: it is deleted with the last image that shows these pixels.
    auto *const owner = new QImage(bitmap);
    const uchar *const first = owner->constScanLine(rect.y()) + 4 * qsizetype(rect.x());
    return QImage(
        first, rect.width(), rect.height(), owner->bytesPerLine(), owner->format(),
        [](void *image) { delete static_cast<QImage *>(image); }, owner);
}

} // namespace

QRect cropRect(const PixelRect &rect, QSize imageSize)
{
    for (const double value : {rect.x, rect.y, rect.width, rect.height}) {
        if (!std::isfinite(value))
            return {};
    }
    const int left = wholeEdge(rect.x, imageSize.width());
    const int right = wholeEdge(rect.x + rect.width, imageSize.width());
    const int top = wholeEdge(imageSize.height() - rect.y - rect.height, imageSize.height());
    const int bottom = wholeEdge(imageSize.height() - rect.y, imageSize.height());
    if (right <= left || bottom <= top)
        return {};
    return {left, top, right - left, bottom - top};
}

std::optional<Image> crop(const Image &screenshot, const PixelRect &rect,
                          std::optional<Size> points)
{
    if (screenshot.isEmpty())
        return std::nullopt;
    const QRect source = cropRect(rect, screenshot.bitmap.size());
    if (source.isEmpty())
        return std::nullopt;
    const QImage part = cutOut(screenshot.bitmap, source);
    if (part.isNull()) // for want of memory
        return std::nullopt;
    return Image{part, points.value_or(Size{rect.width, rect.height})};
}

} // namespace tovek
