// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/OverlayAnimations.h"
#include "overlay/OverlayCallbacks.h"
#include "overlay/OverlayKeys.h"
#include "overlay/OverlayPicture.h"
#include "overlay/SelectionState.h"

#include <QWidget>

namespace tovek {

class KeyboardLayout;

/// What an overlay view is made from.
struct OverlayContext
{
    Screen screen;
    std::shared_ptr<FrozenDisplay> screenshot;
    CaptureMode captureMode = CaptureMode::normal;
    Clock &clock;
    const KeyboardLayout *keyboardLayout = nullptr;
};

/// The content of an overlay: the frozen screen, the selection on it, and what the user does with
/// both. Translates events into the rules' values, and the rules' state into a picture. Points are
/// the view's, with y up.
class SelectionOverlayView : public QWidget
{
public:
    SelectionOverlayView(const OverlayContext &context, QWidget *parent);
    ~SelectionOverlayView() override;

    /// Draws from now on; without a surface, or on one that cannot draw, the widget paints itself.
    void setSurface(OverlaySurface *surface);
    /// The cursor of a screen on which nothing is selected yet.
    void setCaptureCursor();

    const std::optional<Rect> &selectionRect() const { return m_state.selectionRect; }
    bool isSelectionFinalized() const { return m_state.isSelectionFinalized; }
    CaptureMode captureMode() const { return m_context.captureMode; }

    /// True when the key was ours.
    bool handleKey(const KeyPress &key);

    OverlayCallbacks callbacks;

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    // Focus changes nothing in the picture; the base class would repaint all of it.
    void focusInEvent(QFocusEvent *) override {}
    void focusOutEvent(QFocusEvent *) override {}

private:
    Point pointOf(const QMouseEvent &event) const;
    void updateCursor(Point at);
    void showCursor(Qt::CursorShape shape);
    void finalise();
    void copy();
    void save();
    /// Shows the present state.
    void redraw();
    OverlayPicture picture() const;

    OverlayContext m_context;
    ViewSpace m_space;
    OverlaySurface *m_surface = nullptr;
    SelectionState m_state;
    OverlayAnimations m_animations;
    OverlayArtist m_artist;
    DisplayList m_list; ///< what is shown
    std::optional<Qt::CursorShape> m_cursorShape;
};

} // namespace tovek
