// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/SelectionState.h"

namespace tovek {

SelectionState::Press SelectionState::press(Point pointer)
{
    const Point at = edgeOf(pointer);
    if (!m_isSelectionFinalized || !m_selectionRect) {
        m_selectionStart = at;
        m_selectionRect = Rect{at.x, at.y, 0, 0};
        return Press::startedSelection;
    }
    if (const auto handle = handleUnder(pointer)) {
        m_resize = Resize{*handle, *m_selectionRect};
        m_selectionStart = at;
        return Press::startedResize;
    }
    return m_selectionRect->contains(pointer) ? Press::insideSelection : Press::outsideSelection;
}

bool SelectionState::moveTo(Point pointer)
{
    if (!m_selectionStart)
        return false;
    Q_ASSERT(m_selectionRect && (!m_resize || m_isSelectionFinalized));
    const Point at = edgeOf(pointer);
    Rect moved;
    if (isResizing()) {
        moved = resized(m_resize->startRect, m_resize->handle, at.x - m_selectionStart->x,
                        at.y - m_selectionStart->y);
        if (m_screen)
            moved = pushedToEdges(moved, m_resize->handle, at, m_screen->size);
    } else if (!m_isSelectionFinalized) {
        moved = Rect::spanning(*m_selectionStart, at);
    } else {
        return false;
    }
    if (moved == m_selectionRect)
        return false;
    m_selectionRect = moved;
    return true;
}

SelectionState::Release SelectionState::release()
{
    const std::optional<Rect> part = selectionOnScreen();
    const bool isLarge =
        part && part->width > acceptedSelectionSide && part->height > acceptedSelectionSide;
    if (isLarge && (m_resize || !m_isSelectionFinalized))
        m_selectionRect = part;
    if (m_resize) {
        m_resize.reset();
        m_selectionStart.reset();
        return isLarge ? Release::finalised : Release::nothing;
    }
    if (m_isSelectionFinalized)
        return Release::nothing;
    m_selectionStart.reset();
    if (isLarge) {
        m_isSelectionFinalized = true;
        return Release::finalised;
    }
    const bool hadAttempt = m_selectionRect.has_value();
    m_selectionRect.reset();
    return hadAttempt ? Release::discarded : Release::nothing;
}

void SelectionState::accept(const Rect &selection)
{
    Q_ASSERT(!m_selectionStart && !m_selectionRect);
    m_selectionRect = selection;
    m_isSelectionFinalized = true;
}

bool SelectionState::hover(std::optional<Point> pointer)
{
    const auto handle = pointer ? handleUnder(*pointer) : std::nullopt;
    if (handle == m_hoveredHandle)
        return false;
    m_hoveredHandle = handle;
    return true;
}

std::optional<ResizeHandle> SelectionState::handleUnder(Point pointer) const
{
    return m_isSelectionFinalized && m_selectionRect ? handleAt(edgeOf(pointer), *m_selectionRect)
                                                     : std::nullopt;
}

std::optional<Rect> SelectionState::selectionOnScreen() const
{
    return m_selectionRect && m_screen ? partOnScreen(*m_selectionRect, m_screen->size)
                                       : m_selectionRect;
}

Point SelectionState::edgeOf(Point pointer) const
{
    return m_screen ? edgeAt(pointer, *m_screen) : pointer;
}

} // namespace tovek
