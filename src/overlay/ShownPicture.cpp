// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/ShownPicture.h"

#include "overlay/DisplayListPainter.h"

#include <QPaintEvent>
#include <QPainter>
#include <QWidget>

namespace tovek {

ShownPicture::ShownPicture(const QFont &font, const OverlayContext &context)
    : m_frozen(context.screenshot)
    , m_scale(context.screen.scale)
    , m_artist(font)
{
}

ShownPicture::Change ShownPicture::show(const OverlayPicture &picture, const QRegion &watched)
{
    DisplayList list = m_artist.draw(picture);
    const bool isOnScreen = m_surface && m_surface->present(list);
    const bool touches = !watched.isEmpty() && damageBetween(m_list, list).intersects(watched);
    m_list = std::move(list);
    return {isOnScreen, touches};
}

QImage ShownPicture::part(const QRect &native) const
{
    return renderDisplayList(m_list, m_frozen->pixels().result(), native);
}

void ShownPicture::paint(QWidget &widget, const QPaintEvent &event) const
{
    QPainter painter(&widget);
    if (m_surface && m_surface->liesBelow()) {
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(event.rect(), Qt::transparent);
        return;
    }
    // Only a platform that cannot draw the list itself gets here before the pixels are there.
    paintDisplayList(painter, m_list, m_frozen->pixels().result(), m_scale, event.region());
}

void ShownPicture::setCovered(const QRegion &region)
{
    if (m_surface)
        m_surface->setCovered(scaled(region, m_scale));
}

} // namespace tovek
