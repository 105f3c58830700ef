// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "text/TextRegionOverlayView.h"

#include "foundation/Settings.h"

namespace tovek {

TextRegionOverlayView::TextRegionOverlayView(const UserDefaults &defaults, const Rect &frame)
    : m_defaults(defaults)
    , m_frame(frame)
{
    m_selection.selectionBounds = {0, 0, frame.width, frame.height};
}

void TextRegionOverlayView::add(const std::vector<TextRegion> &regions)
{
    m_selection.add(regions);
    redrawIf(true);
}

void TextRegionOverlayView::settle(std::vector<TextRegion> regions)
{
    m_selection.settle(std::move(regions));
    redrawIf(true);
}

void TextRegionOverlayView::press(Point at)
{
    redrawIf(m_selection.mouseDown(inside(at)));
}

void TextRegionOverlayView::pressElsewhere()
{
    redrawIf(m_selection.selectNone());
}

void TextRegionOverlayView::drag(Point at)
{
    redrawIf(m_selection.mouseDragged(inside(at)));
}

void TextRegionOverlayView::release()
{
    m_selection.mouseUp();
}

void TextRegionOverlayView::hover(std::optional<Point> at)
{
    redrawIf(at ? m_selection.mouseMoved(inside(*at)) : m_selection.mouseExited());
}

std::vector<DisplayList::Item> TextRegionOverlayView::items(const ViewSpace &space) const
{
    const bool highlightsText = Settings::highlightText.in(m_defaults);
    return textRegionItems(m_selection, highlightsText, space, {m_frame.x, m_frame.y});
}

void TextRegionOverlayView::redrawIf(bool isChanged) const
{
    if (isChanged && onNeedsDisplay)
        onNeedsDisplay();
}

} // namespace tovek
