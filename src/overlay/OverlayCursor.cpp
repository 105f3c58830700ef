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

QCursor makeCross(double scale, int cursorScale)
{
    const auto symbol = Symbol::fromFile(QStringLiteral(":/cross-cursor.svg"));
    if (!symbol)
        return Qt::CrossCursor;
    // Neither the picture nor its hot spot is scaled by the toolkit (Qt 6.4, xcb); on Wayland the
    // compositor takes a picture of whole pixels per point.
    const double side = std::round(symbol->size().width() * std::max(scale, double(cursorScale)));
    const QImage image = symbol->image(side, 1, Qt::black);
    QPixmap pixmap = QPixmap::fromImage(image);
    pixmap.setDevicePixelRatio(cursorScale);
    return QCursor(pixmap, image.width() / 2 / cursorScale, image.height() / 2 / cursorScale);
}

} // namespace

Qt::CursorShape overlayCursorAt(Point at, PointerOwner owner, const SelectionState &state,
                                AnnotationTool tool)
{
    if (owner == PointerOwner::words)
        return Qt::IBeamCursor;
    if (!state.isSelectionFinalized() || !state.selectionRect())
        return Qt::CrossCursor;
    if (state.hoveredHandle())
        return cursorOf(*state.hoveredHandle());
    const bool draws = tool != AnnotationTool::none && state.selectionRect()->contains(at);
    return draws ? Qt::CrossCursor : Qt::ArrowCursor;
}

QCursor overlayCursor(Qt::CursorShape shape, double scale, int cursorScale)
{
    if (shape != Qt::CrossCursor)
        return shape;
    // Kept: an overlay that opens has no time to draw it.
    static std::map<std::pair<double, int>, QCursor> crosses;
    const auto known = crosses.find({scale, cursorScale});
    if (known != crosses.end())
        return known->second;
    return crosses.emplace(std::pair(scale, cursorScale), makeCross(scale, cursorScale))
        .first->second;
}

} // namespace tovek
