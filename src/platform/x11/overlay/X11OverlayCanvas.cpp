// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/overlay/X11OverlayCanvas.h"

namespace tovek {

namespace {

/// Rectangles in one request; they need no more than the smallest server takes.
constexpr size_t mostFills = 4096;

/// 16 bits from 8, so that 255 becomes the whole.
uint16_t wide(int value)
{
    return uint16_t(value * 257);
}

xcb_rectangle_t rectangle(QRect rect)
{
    return {int16_t(rect.x()), int16_t(rect.y()), uint16_t(rect.width()), uint16_t(rect.height())};
}

} // namespace

X11OverlayCanvas::X11OverlayCanvas(std::shared_ptr<X11Connection> toolkit,
                                   std::shared_ptr<X11Connection> drawing, xcb_window_t window,
                                   std::shared_ptr<X11Pixmap> frozen)
    : m_toolkit(std::move(toolkit))
    , m_connection(std::move(drawing))
    , m_window(window)
    , m_frozen(std::move(frozen))
    , m_decals(m_connection)
{
}

X11OverlayCanvas::~X11OverlayCanvas()
{
    xcb_connection_t *xcb = m_connection->xcb();
    if (!xcb)
        return;
    if (m_composedPicture)
        xcb_render_free_picture(xcb, m_composedPicture);
}

void X11OverlayCanvas::setComposed(std::shared_ptr<X11Pixmap> pixmap)
{
    if (!m_composed)
        m_composed = std::move(pixmap);
}

bool X11OverlayCanvas::present(const DisplayList &list)
{
    if (!m_connection->xcb())
        return false;
    // Many times a second: a region is not cut where nothing would be cut off.
    const QRect bounds(QPoint(), m_frozen->size());
    QRegion damage = damageBetween(m_shown, list);
    if (!bounds.contains(damage.boundingRect()))
        damage &= bounds;
    m_shown = list;
    if (damage.isEmpty())
        return false;
    compose(list, damage);
    copy(m_composed, m_window, m_covered.isEmpty() ? damage : damage - m_covered);
    return true;
}

void X11OverlayCanvas::setCovered(const QRegion &region)
{
    // The last frame must not come after what a child paints there next, nor what a child painted
    // last after the repair.
    if (!(region - m_covered).isEmpty())
        m_connection->settle();
    const QRegion uncovered = m_covered - region;
    if (!uncovered.isEmpty())
        m_toolkit->settle();
    m_covered = region;
    repair(uncovered);
}

void X11OverlayCanvas::repair(const QRegion &region)
{
    const QRegion lost = (region & QRect(QPoint(), m_frozen->size())) - m_covered;
    if (lost.isEmpty() || !m_connection->xcb())
        return;
    copy(m_isComposed ? m_composed : m_frozen, m_window, lost);
    m_connection->flush();
}

void X11OverlayCanvas::compose(const DisplayList &list, const QRegion &damage)
{
    xcb_connection_t *xcb = m_connection->xcb();
    const QRect bounds(QPoint(), m_frozen->size());
    if (!m_isComposed) {
        m_isComposed = true;
        if (!m_composed)
            m_composed = std::make_shared<X11Pixmap>(m_toolkit, m_frozen->size());
        m_toolkit->settle(); // it has made the pixmaps
        m_composedPicture = createPicture(m_composed->id());
        copy(m_frozen, m_composed->id(), QRegion(bounds) - damage);
        const uint32_t background = m_composed->id();
        xcb_change_window_attributes(xcb, m_window, XCB_CW_BACK_PIXMAP, &background);
    }
    composeBackdrop(list, damage);

    std::vector<xcb_rectangle_t> clip;
    for (const QRect &rect : damage)
        clip.push_back(rectangle(rect));
    xcb_render_set_picture_clip_rectangles(xcb, m_composedPicture, 0, 0, uint32_t(clip.size()),
                                           clip.data());
    for (const DisplayList::Item &item : list.items)
        composeItem(item, damage);
    composePendingFills();
    const xcb_rectangle_t everything = rectangle(bounds);
    xcb_render_set_picture_clip_rectangles(xcb, m_composedPicture, 0, 0, 1, &everything);
}

void X11OverlayCanvas::composeBackdrop(const DisplayList &list, const QRegion &damage)
{
    copy(m_frozen, m_composed->id(), damage);
    if (list.veil <= 0)
        return;
    std::vector<xcb_rectangle_t> veiled;
    for (const QRect &rect : damage - list.clear)
        veiled.push_back(rectangle(rect));
    // Not the frozen picture through a mask, in one operation: servers that draw in software have
    // no fast way for that and take four times as long, for the same pixels.
    const int alpha = qBound(0, qRound(list.veil * 255), 255);
    xcb_render_fill_rectangles(m_connection->xcb(), XCB_RENDER_PICT_OP_OVER, m_composedPicture,
                               {0, 0, 0, wide(alpha)}, uint32_t(veiled.size()), veiled.data());
}

void X11OverlayCanvas::composeItem(const DisplayList::Item &item, const QRegion &damage)
{
    const QRect reach = QRect(QPoint(), m_frozen->size()) & damage.boundingRect();
    const auto visible = [&](const QRect &rect) {
        const QRect part = rect & reach;
        return !part.isEmpty() && damage.intersects(part) ? part : QRect();
    };
    if (const auto *fills = std::get_if<DisplayList::Fills>(&item)) {
        Q_ASSERT(fills->rects);
        for (const QRect &rect : *fills->rects) {
            if (const QRect part = visible(rect); !part.isNull())
                composeFill(fills->color, part);
        }
        return;
    }
    const QRect part = visible(boundsOf(item));
    if (part.isNull())
        return;
    if (const auto *fill = std::get_if<DisplayList::Fill>(&item)) {
        composeFill(fill->color, part);
    } else {
        composePendingFills();
        composeDecal(std::get<DisplayList::Decal>(item), part);
    }
}

void X11OverlayCanvas::composeFill(QRgb color, QRect bounds)
{
    if (color != m_fillColor || m_fills.size() == mostFills)
        composePendingFills();
    m_fillColor = color;
    m_fills.push_back(rectangle(bounds));
}

void X11OverlayCanvas::composePendingFills()
{
    if (m_fills.empty())
        return;
    const xcb_render_color_t color{wide(qRed(m_fillColor)), wide(qGreen(m_fillColor)),
                                   wide(qBlue(m_fillColor)), wide(qAlpha(m_fillColor))};
    xcb_render_fill_rectangles(m_connection->xcb(), XCB_RENDER_PICT_OP_OVER, m_composedPicture,
                               color, uint32_t(m_fills.size()), m_fills.data());
    m_fills.clear();
}

void X11OverlayCanvas::composeDecal(const DisplayList::Decal &decal, QRect bounds)
{
    const QPoint source = bounds.topLeft() - decal.at;
    xcb_render_composite(m_connection->xcb(), XCB_RENDER_PICT_OP_OVER, m_decals.picture(decal),
                         XCB_RENDER_PICTURE_NONE, m_composedPicture, int16_t(source.x()),
                         int16_t(source.y()), 0, 0, int16_t(bounds.x()), int16_t(bounds.y()),
                         uint16_t(bounds.width()), uint16_t(bounds.height()));
}

void X11OverlayCanvas::copy(const std::shared_ptr<X11Pixmap> &from, xcb_drawable_t to,
                            const QRegion &region)
{
    for (const QRect &rect : region) {
        const auto x = int16_t(rect.x());
        const auto y = int16_t(rect.y());
        xcb_copy_area(m_connection->xcb(), from->id(), to, m_connection->copyGc(), x, y, x, y,
                      uint16_t(rect.width()), uint16_t(rect.height()));
    }
}

xcb_render_picture_t X11OverlayCanvas::createPicture(xcb_drawable_t drawable)
{
    xcb_connection_t *xcb = m_connection->xcb();
    const xcb_render_picture_t picture = xcb_generate_id(xcb);
    xcb_render_create_picture(xcb, picture, drawable, m_connection->renderFormats()->root, 0,
                              nullptr);
    return picture;
}

} // namespace tovek
