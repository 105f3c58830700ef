// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/OverlaySurface.h"
#include "text/TextSelection.h"

#include <QColor>

namespace tovek {

/// How one word's box is drawn; nothing is drawn without a stroke.
struct TextRegionLook
{
    double fillAlpha = 0; ///< of the system's blue
    double strokeAlpha = 0;
    double strokeWidth = 0; ///< points, half of it on either side of the edge

    bool isVisible() const { return strokeWidth > 0; }
    bool operator==(const TextRegionLook &) const = default;
};

/// Selected wins over hovered; the others show only while text is highlighted.
TextRegionLook lookOf(const TextSelection &selection, int index, bool highlightText);

/// The boxes as fills in native pixels of the display, edges between pixels blended by what they
/// cover. `space` is the overlay's, `origin` the place of the text view's bottom left corner in it.
std::vector<DisplayList::Item> textRegionItems(const TextSelection &selection, bool highlightText,
                                               const ViewSpace &space, Point origin);

} // namespace tovek
