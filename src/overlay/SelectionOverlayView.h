// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/AnnotationLayer.h"
#include "overlay/OverlayAnimations.h"
#include "overlay/OverlayCallbacks.h"
#include "overlay/OverlayContext.h"
#include "overlay/OverlayDrawing.h"
#include "overlay/OverlayKeys.h"
#include "overlay/OverlayTextInput.h"
#include "overlay/OverlayToolbar.h"
#include "overlay/PointerOwner.h"
#include "overlay/ShownCursor.h"
#include "overlay/ShownPicture.h"
#include "text/TextRegionOverlayView.h"

#include <QWidget>

namespace tovek {

/// Of the words of a selection; some: others are still being recognised.
enum class TextShare { some, all };

/// The content of an overlay: the frozen screen, the selection on it, and what the user does with
/// both. Translates events into the rules' values, and the rules' state into a picture. Points are
/// the view's, with y up.
class SelectionOverlayView : public QWidget
{
public:
    SelectionOverlayView(const OverlayContext &context, QWidget *parent);

    /// Draws from now on; without a surface, or on one that cannot draw, the widget paints itself.
    void setSurface(OverlaySurface *surface) { m_shown.setSurface(surface); }
    /// The cursor of a screen on which nothing is selected yet.
    void setCaptureCursor();
    /// The words of the selection, once they are recognised. Without a selection, or while it is
    /// being resized, they come too late.
    void showTextRegions(const std::vector<TextRegion> &regions, TextShare share = TextShare::all);

    const std::optional<Rect> &selectionRect() const { return m_state.selectionRect(); }
    bool isSelectionFinalized() const { return m_state.isSelectionFinalized(); }
    bool isTextSelectionMode() const { return m_textRegionOverlay != nullptr; }
    CaptureMode captureMode() const { return m_context.captureMode; }
    SelectionToolbar *toolbar() const { return m_toolbar.widget(); }
    bool isToolbarAtTop() const { return m_toolbar.isAtTop(); }
    TextRegionOverlayView *textRegionOverlay() const { return m_textRegionOverlay.get(); }
    OverlayTextBox *textInputView() const { return m_textInput.box(); }
    const AnnotationEditor &editor() const { return m_editor; }

    /// Ends what is being typed or dragged. Absent where nothing is drawn.
    std::optional<OverlayDrawing> takeDrawing();
    /// Selects and shows what another view gave, unless the user has begun to select.
    void resume(const OverlayDrawing &drawing);

    /// True when the key was ours.
    bool handleKey(const KeyPress &key);

    OverlayCallbacks callbacks;

    /// The mouse was moved with the left button held: a move event without the toolkit's way to it.
    void dragTo(Point at);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void childEvent(QChildEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    // Focus changes nothing in the picture; the base class would repaint all of it.
    void focusInEvent(QFocusEvent *) override { }
    void focusOutEvent(QFocusEvent *) override { }

private:
    void press(Point at, int clickCount);
    void pressInside(Point at, int clickCount);
    PointerOwner pointerOwner(Point at) const;
    /// The pointer is there now, with no button held, or elsewhere.
    void pointAt(std::optional<Point> at);
    void finalise();
    void startResize();

    void handleCommand(OverlayKeyAction action, const KeyPress &key);
    void cancel();
    void copy();
    void save();
    /// The selection, with what is drawn on it.
    void deliver(const std::function<void(const Rect &)> &plain,
                 const std::function<void(const Image &)> &drawn);

    void follow(const AnnotationEditor::Effect &effect);
    void commitText();

    void wireToolbar();
    void showToolbar();
    void removeToolbar();
    void removeTextRegions();
    /// Tells the surface which part of the picture child widgets paint.
    void coverChanged();

    /// Shows the present state.
    void redraw();
    OverlayPicture picture();

    OverlayContext m_context;
    ViewSpace m_space;
    SelectionState m_state;
    OverlayAnimations m_animations;
    AnnotationEditor m_editor;
    AnnotationLayer m_annotationLayer;
    ShownPicture m_shown;
    ShownCursor m_cursor;
    OverlayToolbar m_toolbar;
    OverlayTextInput m_textInput;
    std::unique_ptr<TextRegionOverlayView> m_textRegionOverlay; ///< null without words
    std::optional<Point> m_pointer; ///< while it is over this and none of the children
};

} // namespace tovek
