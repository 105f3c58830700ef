// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "text/TextRegionOverlayView.h"

#include "foundation/UserDefaults.h"

#include <QMouseEvent>

namespace tovek {

TextRegionOverlayView::TextRegionOverlayView(const UserDefaults &defaults, QWidget *parent)
    : QWidget(parent)
    , m_defaults(defaults)
{
    // Nothing of it shows. The toolkit would paint the whole selection below it anew all the same.
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_UpdatesDisabled);
    setMouseTracking(true);
    m_selection.onSelectionChanged = [this](const std::vector<TextRegion> &regions) {
        if (onSelectionChanged)
            onSelectionChanged(regions);
    };
}

void TextRegionOverlayView::setTextRegions(std::vector<TextRegion> regions)
{
    m_selection.textRegions = std::move(regions);
    redraw();
}

void TextRegionOverlayView::setSelectionBounds(const Rect &bounds)
{
    m_selection.selectionBounds = bounds;
    redraw();
}

void TextRegionOverlayView::setPassMouseEventsThrough(bool passThrough)
{
    m_selection.passMouseEventsThrough = passThrough;
    if (passThrough)
        unsetCursor();
}

std::vector<DisplayList::Item> TextRegionOverlayView::items(const ViewSpace &space,
                                                            Point origin) const
{
    return textRegionItems(m_selection, highlightsText(), space, origin);
}

void TextRegionOverlayView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return event->ignore();
    follow(m_selection.mouseDown(pointOf(event->position())), event);
}

void TextRegionOverlayView::mouseMoveEvent(QMouseEvent *event)
{
    const Point at = pointOf(event->position());
    const bool isDrag = event->buttons() & Qt::LeftButton;
    follow(isDrag ? m_selection.mouseDragged(at) : m_selection.mouseMoved(at), event);
    // The parent is not told when the pointer comes here from one of its handles.
    if (!isDrag)
        event->ignore();
}

void TextRegionOverlayView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return event->ignore();
    follow(m_selection.mouseUp(), event);
}

void TextRegionOverlayView::enterEvent(QEnterEvent *event)
{
    follow(m_selection.cursorUpdate(pointOf(event->position())), event);
}

void TextRegionOverlayView::leaveEvent(QEvent *event)
{
    follow(m_selection.mouseExited(), event);
}

bool TextRegionOverlayView::highlightsText() const
{
    return m_defaults.boolean(QStringLiteral("highlightText")).value_or(false);
}

Point TextRegionOverlayView::pointOf(QPointF at) const
{
    return ViewSpace{{double(width()), double(height())}, 1}.pointFromWidget(at);
}

void TextRegionOverlayView::follow(const TextSelectionResponse &response, QEvent *event)
{
    event->setAccepted(!response.isPassedOn);
    if (response.cursor)
        setCursor(*response.cursor == TextSelectionResponse::Cursor::iBeam ? Qt::IBeamCursor
                                                                           : Qt::ArrowCursor);
    if (response.needsDisplay)
        redraw();
}

void TextRegionOverlayView::redraw()
{
    if (onNeedsDisplay)
        onNeedsDisplay();
}

} // namespace tovek
