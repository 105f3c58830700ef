// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "text/TextRegionOverlayView.h"

#include "foundation/DrawingContext.h"
#include "foundation/SystemColors.h"
#include "foundation/UserDefaults.h"

#include <QMouseEvent>
#include <QPainter>

namespace tovek {

namespace {

QColor blueWith(double alpha)
{
    QColor color = SystemColors::blue;
    color.setAlphaF(float(alpha));
    return color;
}

} // namespace

TextRegionOverlayView::TextRegionOverlayView(const UserDefaults &defaults, QWidget *parent,
                                             Drawing drawing)
    : QWidget(parent)
    , m_defaults(defaults)
    , m_drawing(drawing)
{
    setAttribute(Qt::WA_NoSystemBackground);
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

void TextRegionOverlayView::paintEvent(QPaintEvent *)
{
    if (m_drawing == Drawing::byOwner)
        return;
    const bool highlightText = highlightsText();
    QPainter painter(this);
    // The painter's units are logical pixels here, which are points.
    DrawingContext context(painter, {{double(width()), double(height())}, 1});
    for (int i = 0; i < int(m_selection.textRegions.size()); ++i) {
        const TextRegionLook look = lookOf(m_selection, i, highlightText);
        if (!look.isVisible())
            continue;
        const QColor strokeColor = blueWith(look.strokeAlpha);
        context.fillRect(m_selection.rectOf(i), blueWith(look.fillAlpha));
        context.strokeRect(m_selection.rectOf(i),
                           {strokeColor, look.strokeWidth, Stroke::Join::sharp});
    }
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
    if (m_drawing == Drawing::own)
        update();
    if (onNeedsDisplay)
        onNeedsDisplay();
}

} // namespace tovek
