// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/OverlayCursor.h"

#include "foundation/Symbol.h"

#include <QPixmap>

#include <cmath>
#include <map>

namespace tovek {

namespace {

Qt::CursorShape cursorOf(ResizeHandle handle)
{
    switch (handle) {
    case ResizeHandle::left:
    case ResizeHandle::right:
        return Qt::SizeHorCursor;
    case ResizeHandle::top:
    case ResizeHandle::bottom:
        return Qt::SizeVerCursor;
    case ResizeHandle::topLeft:
    case ResizeHandle::bottomRight:
        return Qt::SizeFDiagCursor;
    case ResizeHandle::topRight:
    case ResizeHandle::bottomLeft:
        return Qt::SizeBDiagCursor;
    }
    Q_UNREACHABLE();
}

QCursor makeCross(double scale)
{
    const auto symbol = Symbol::fromFile(QStringLiteral(":/cross-cursor.svg"));
    if (!symbol)
        return Qt::CrossCursor;
    // In native pixels with a ratio of 1: the toolkit (Qt 6.4, xcb) neither scales a cursor nor
    // its hot spot.
    const double side = std::round(symbol->size().width() * scale);
    const QImage image = symbol->image(side, 1, Qt::black);
    return QCursor(QPixmap::fromImage(image), image.width() / 2, image.height() / 2);
}

} // namespace

Qt::CursorShape overlayCursorAt(Point at, PointerOwner owner, const SelectionState &state,
                                AnnotationTool tool)
{
    if (owner == PointerOwner::words)
        return Qt::IBeamCursor;
    if (!state.isSelectionFinalized || !state.selectionRect)
        return Qt::CrossCursor;
    if (state.hoveredHandle)
        return cursorOf(*state.hoveredHandle);
    const bool draws = tool != AnnotationTool::none && state.selectionRect->contains(at);
    return draws ? Qt::CrossCursor : Qt::ArrowCursor;
}

QCursor overlayCursor(Qt::CursorShape shape, double scale)
{
    if (shape != Qt::CrossCursor)
        return shape;
    // Kept: an overlay that opens has no time to draw it.
    static std::map<double, QCursor> crosses;
    const auto known = crosses.find(scale);
    return known != crosses.end() ? known->second
                                  : crosses.emplace(scale, makeCross(scale)).first->second;
}

} // namespace tovek
