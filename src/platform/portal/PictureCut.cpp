// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PictureCut.h"

#include <cmath>

namespace tovek {

namespace {

/// Layouts in fractions of pixels are rounded, here and there.
constexpr double roundedAway = 2;

QImage sharedPart(const QImage &picture, QRect part)
{
    Q_ASSERT(picture.depth() == 32);
    // Plain pointers, because the toolkit calls a function with one when the last copy goes.
    auto *owner = new QImage(picture);
    const uchar *pixels = owner->constScanLine(part.y()) + part.x() * 4;
    return QImage(
        pixels, part.width(), part.height(), owner->bytesPerLine(), owner->format(),
        [](void *kept) { delete static_cast<QImage *>(kept); }, owner);
}

} // namespace

std::vector<QRect> partsOfPicture(QSize picture, const std::vector<PortalDisplay> &displays)
{
    QRect bounds;
    for (const PortalDisplay &display : displays)
        bounds |= display.layout;
    if (picture.isEmpty() || bounds.isEmpty())
        return {};
    const double scale = double(picture.width()) / bounds.width();
    if (std::abs(bounds.height() * scale - picture.height()) > roundedAway * std::max(1.0, scale))
        return {};
    const QRect all(QPoint(), picture);
    std::vector<QRect> parts;
    for (const PortalDisplay &display : displays) {
        const QRect place = display.layout.translated(-bounds.topLeft());
        const QPoint from(int(std::lround(place.x() * scale)), int(std::lround(place.y() * scale)));
        const QPoint to(int(std::lround((place.x() + place.width()) * scale)),
                        int(std::lround((place.y() + place.height()) * scale)));
        parts.push_back(QRect(from, to - QPoint(1, 1)) & all);
        if (parts.back().isEmpty())
            return {};
    }
    return parts;
}

QImage cutOut(const QImage &picture, QRect part, QSize native)
{
    const QImage image = part == picture.rect() ? picture : sharedPart(picture, part);
    return image.size() == native
        ? image
        : image.scaled(native, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace tovek
