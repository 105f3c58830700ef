// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "menubar/ThumbnailGeometry.h"

#include <QDateTime>
#include <QSize>

#include <cmath>

namespace tovek {

namespace {

constexpr double dragThreshold = 3;
constexpr int menuGap = 5;

} // namespace

Size thumbnailSize(Size image)
{
    if (image.height <= 0)
        return {};
    return {image.width / image.height * thumbnailHeight, thumbnailHeight};
}

Size dragImageSize(Size image)
{
    if (image.height <= 0 || image.width <= 0)
        return {};
    const double aspect = image.width / image.height;
    return aspect > 1 ? Size{dragImageBox, dragImageBox / aspect}
                      : Size{aspect * dragImageBox, dragImageBox};
}

bool isDrag(QPointF pressed, QPointF now)
{
    return std::hypot(now.x() - pressed.x(), now.y() - pressed.y()) > dragThreshold;
}

QString dragFileName(const QDateTime &localTime)
{
    return QStringLiteral("Screenshot %1.png")
        .arg(localTime.toString(QStringLiteral("yyyy-MM-dd-HHmmss")));
}

QPoint menuOrigin(const QRect &item, QSize menu, const QRect &screen)
{
    const int itemBottom = item.y() + item.height();
    const int screenBottom = screen.y() + screen.height();
    int y = itemBottom + menuGap;
    if (y + menu.height() > screenBottom)
        y = item.y() - menuGap - menu.height();
    const int right = std::max(screen.x(), screen.x() + screen.width() - menu.width());
    return {std::clamp(item.x(), screen.x(), right), std::max(y, screen.y())};
}

} // namespace tovek
