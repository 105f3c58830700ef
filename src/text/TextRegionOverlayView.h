// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "text/TextRegionPicture.h"

#include <QWidget>

namespace tovek {

class UserDefaults;

/// The transparent layer of recognised words over a selection, a child of the view whose selection
/// it covers. Its frame is the selection's. It paints nothing: the parent puts `items` into its own
/// picture. Mouse events beside the words, moves without a button, and all events while they are
/// passed through go on to the parent.
class TextRegionOverlayView : public QWidget
{
    Q_OBJECT

public:
    TextRegionOverlayView(const UserDefaults &defaults, QWidget *parent);

    void setTextRegions(std::vector<TextRegion> regions);
    /// In this view's own points.
    void setSelectionBounds(const Rect &bounds);
    void setPassMouseEventsThrough(bool passThrough);
    /// The selected words in reading order.
    std::vector<TextRegion> selectedRegions() { return m_selection.selectedRegions(); }
    const TextSelection &selection() const { return m_selection; }
    /// See textRegionItems.
    std::vector<DisplayList::Item> items(const ViewSpace &space, Point origin) const;

    std::function<void(const std::vector<TextRegion> &)> onSelectionChanged;
    /// `items` have changed.
    std::function<void()> onNeedsDisplay;

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    bool highlightsText() const;
    Point pointOf(QPointF at) const;
    void follow(const TextSelectionResponse &response, QEvent *event);
    void redraw();

    const UserDefaults &m_defaults;
    TextSelection m_selection;
};

} // namespace tovek
