// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "text/TextRegionPicture.h"

namespace tovek {

class UserDefaults;

/// The transparent layer of recognised words over a selection. No widget: the overlay's view, which
/// knows everything else that the pointer can mean, tells it what is its own, and puts `items` into
/// its picture. Points are that view's, with y up.
class TextRegionOverlayView
{
public:
    /// `frame`: the selection. The settings must outlive the layer.
    TextRegionOverlayView(const UserDefaults &defaults, const Rect &frame);

    /// See TextSelection.
    void add(const std::vector<TextRegion> &regions);
    void settle(std::vector<TextRegion> regions);

    void press(Point at);
    void pressElsewhere();
    /// Between a press on a word and the release.
    bool isDragging() const { return m_selection.isDragging; }
    void drag(Point at);
    void release();
    /// The pointer is over the words, or somewhere else.
    void hover(std::optional<Point> at);

    /// The selected words in reading order.
    std::vector<TextRegion> selectedRegions() { return m_selection.selectedRegions(); }
    /// In points of the selection.
    const TextSelection &selection() const { return m_selection; }
    /// See textRegionItems.
    std::vector<DisplayList::Item> items(const ViewSpace &space) const;

    /// `items` have changed.
    std::function<void()> onNeedsDisplay;

private:
    Point inside(Point at) const { return {at.x - m_frame.x, at.y - m_frame.y}; }
    void redrawIf(bool isChanged) const;

    const UserDefaults &m_defaults;
    const Rect m_frame;
    TextSelection m_selection;
};

} // namespace tovek
