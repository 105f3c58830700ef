// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/SelectionOverlayView.h"

#include "overlay/AnnotationKeys.h"
#include "overlay/InputFromQt.h"
#include "overlay/OverlayCursor.h"
#include "overlay/SelectionResult.h"
#include "overlay/SizeLabel.h"

#include <QMouseEvent>

#include <algorithm>
#include <iterator>
#include <utility>

namespace tovek {

SelectionOverlayView::SelectionOverlayView(const OverlayContext &context, QWidget *parent)
    : QWidget(parent)
    , m_context(context)
    , m_space(context.screen.space())
    , m_state(m_space)
    , m_animations(context.clock)
    , m_shown(font(), context)
    , m_cursor(*this, m_space.scale, context.screen.cursorScale)
    , m_toolbar(*this, m_editor, [this](QRect native) { return m_shown.part(native); })
    , m_textInput(*this, m_editor)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setAccessibleName(tr("Frozen screen %1").arg(context.screen.name));
    m_animations.onFrame = [this] { redraw(); };
    wireToolbar();
    m_textInput.onCoverChanged = [this] { coverChanged(); };
    setCaptureCursor();
}

void SelectionOverlayView::setCaptureCursor()
{
    m_cursor.showAgain(Qt::CrossCursor); // somebody else may have changed it
}

std::optional<OverlayDrawing> SelectionOverlayView::takeDrawing()
{
    if (m_textInput.isOpen())
        commitText();
    m_editor.release();
    m_editor.deselect();
    const auto selection = m_state.selectionOnScreen();
    if (!m_state.isSelectionFinalized() || !selection || m_editor.annotations().empty())
        return std::nullopt;
    return OverlayDrawing{*selection, m_editor};
}

void SelectionOverlayView::resume(const OverlayDrawing &drawing)
{
    if (m_state.selectionRect())
        return;
    m_state.accept(drawing.selection);
    m_editor = drawing.editor;
    m_animations.startDimming();
    finalise();
    follow({.isHandled = true, .needsRedraw = true});
}

void SelectionOverlayView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        press(pointFrom(*event, m_space), 1);
}

void SelectionOverlayView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        press(pointFrom(*event, m_space), 2);
}

void SelectionOverlayView::press(Point at, int clickCount)
{
    m_pointer.reset(); // until the button is released
    if (m_textInput.isOpen())
        return commitText();
    switch (m_state.press(at)) {
    case SelectionState::Press::startedSelection:
        m_animations.startDimming();
        redraw();
        break;
    case SelectionState::Press::startedResize:
        startResize();
        break;
    case SelectionState::Press::insideSelection:
    case SelectionState::Press::outsideSelection:
        pressInside(at, clickCount);
        break;
    }
}

void SelectionOverlayView::pressInside(Point at, int clickCount)
{
    const bool isOnWord = pointerOwner(at) == PointerOwner::words;
    if (isOnWord) {
        m_textRegionOverlay->press(at);
        return follow(m_editor.deselect());
    }
    const bool isPointing = m_editor.currentTool() == AnnotationTool::none;
    if (m_textRegionOverlay && isPointing && m_state.selectionRect()->contains(at))
        m_textRegionOverlay->pressElsewhere();
    follow(m_editor.press(at, clickCount, *m_state.selectionRect()));
}

void SelectionOverlayView::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton)
        dragTo(pointFrom(*event, m_space));
    else
        pointAt(pointFrom(*event, m_space));
}

void SelectionOverlayView::dragTo(Point at)
{
    if (m_textRegionOverlay && m_textRegionOverlay->isDragging())
        return m_textRegionOverlay->drag(at);
    if (const auto selection = m_state.selectionOnScreen()) {
        const auto effect = m_editor.moveTo(at, *selection);
        if (effect.isHandled)
            return follow(effect);
    }
    if (m_state.moveTo(at))
        redraw();
}

void SelectionOverlayView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    if (m_textRegionOverlay && m_textRegionOverlay->isDragging())
        return m_textRegionOverlay->release();
    const auto effect = m_editor.release();
    if (effect.isHandled)
        return follow(effect);
    switch (m_state.release()) {
    case SelectionState::Release::finalised:
        finalise();
        break;
    case SelectionState::Release::discarded:
        redraw();
        break;
    case SelectionState::Release::nothing:
        break;
    }
    pointAt(pointFrom(*event, m_space));
}

void SelectionOverlayView::leaveEvent(QEvent *)
{
    pointAt(std::nullopt);
}

void SelectionOverlayView::childEvent(QChildEvent *event)
{
    if (event->added())
        event->child()->installEventFilter(this);
    QWidget::childEvent(event);
}

bool SelectionOverlayView::eventFilter(QObject *watched, QEvent *event)
{
    // Going on to a child, the pointer does not leave the parent.
    if (event->type() == QEvent::Enter)
        pointAt(std::nullopt);
    return QWidget::eventFilter(watched, event);
}

void SelectionOverlayView::keyPressEvent(QKeyEvent *event)
{
    if (!handleKey(keyPressFrom(*event, m_context.keyboardLayout)))
        QWidget::keyPressEvent(event);
}

bool SelectionOverlayView::handleKey(const KeyPress &key)
{
    const bool isTyping = m_textInput.isOpen();
    const OverlayKeyAction action =
        overlayActionFor(key, m_state.isSelectionFinalized() && !isTyping);
    if (action == OverlayKeyAction::none)
        return false;
    if (action == OverlayKeyAction::cancel && toolbar() && toolbar()->isColorPickerOpen()) {
        toolbar()->closeColorPicker();
        return true;
    }
    if (isTyping) {
        // What was typed is not thrown away: Escape only leaves the box, saving takes it along.
        commitText();
        if (action == OverlayKeyAction::cancel)
            return true;
    }
    handleCommand(action, key);
    return true;
}

void SelectionOverlayView::handleCommand(OverlayKeyAction action, const KeyPress &key)
{
    switch (action) {
    case OverlayKeyAction::cancel:
        return cancel();
    case OverlayKeyAction::save:
        return save();
    case OverlayKeyAction::copy:
        return copy();
    default:
        return follow(editWithKey(m_editor, action, key));
    }
}

void SelectionOverlayView::paintEvent(QPaintEvent *event)
{
    m_shown.paint(*this, *event);
}

PointerOwner SelectionOverlayView::pointerOwner(Point at) const
{
    return pointerOwnerAt(at, m_state, m_editor,
                          m_textRegionOverlay ? &m_textRegionOverlay->selection() : nullptr);
}

void SelectionOverlayView::pointAt(std::optional<Point> at)
{
    m_pointer = at;
    const auto previous = m_state.hoveredHandle();
    if (m_state.hover(at)) {
        m_animations.setHovered(previous, false);
        m_animations.setHovered(m_state.hoveredHandle(), true);
    }
    const bool isOnWord = at && pointerOwner(*at) == PointerOwner::words;
    if (m_textRegionOverlay)
        m_textRegionOverlay->hover(isOnWord ? at : std::nullopt);
    if (at)
        m_cursor.show(overlayCursorAt(*at, pointerOwner(*at), m_state, m_editor.currentTool()));
}

void SelectionOverlayView::startResize()
{
    removeToolbar();
    removeTextRegions();
}

void SelectionOverlayView::finalise()
{
    setAccessibleDescription(
        describedSelection(m_space.pixelsFromRect(*m_state.selectionRect()).toRect()));
    // From now on, there are things to point at.
    if (m_shown.surface())
        m_shown.surface()->setFollowsPointer(false);
    if (m_context.captureMode == CaptureMode::normal)
        showToolbar();
    if (callbacks.onSelectionComplete)
        callbacks.onSelectionComplete(*m_state.selectionRect());
}

void SelectionOverlayView::cancel()
{
    if (callbacks.onCancel)
        callbacks.onCancel();
}

void SelectionOverlayView::copy()
{
    if (m_textRegionOverlay) {
        const auto regions = m_textRegionOverlay->selectedRegions();
        if (!regions.empty()) {
            if (callbacks.onCopySelectedText)
                callbacks.onCopySelectedText(regions);
            return;
        }
    }
    deliver(callbacks.onCopyImage, callbacks.onCopyAnnotatedImage);
}

void SelectionOverlayView::save()
{
    deliver(callbacks.onSaveImage, callbacks.onSaveAnnotatedImage);
}

void SelectionOverlayView::deliver(const std::function<void(const Rect &)> &plain,
                                   const std::function<void(const Image &)> &drawn)
{
    if (const auto selection = m_state.selectionOnScreen())
        tovek::deliver(
            {m_context.screenshot->pixels(), m_space.size, *selection, m_editor.annotations()},
            this, plain, drawn);
}

void SelectionOverlayView::follow(const AnnotationEditor::Effect &effect)
{
    if (effect.closesTextBox)
        m_textInput.close();
    if (toolbar())
        toolbar()->setActiveTool(m_editor.currentTool());
    if (effect.needsRedraw)
        redraw();
    if (m_pointer)
        pointAt(m_pointer); // another tool, another cursor
    if (effect.opensTextBox) {
        m_textInput.open(*effect.opensTextBox, m_space);
        m_toolbar.raise();
    }
}

void SelectionOverlayView::commitText()
{
    follow(m_editor.commitText());
}

void SelectionOverlayView::wireToolbar()
{
    m_toolbar.onEdited = [this](const auto &effect) { follow(effect); };
    m_toolbar.onCopy = [this] {
        commitText();
        copy();
    };
    m_toolbar.onClose = [this] { cancel(); };
    m_toolbar.onCoverChanged = [this] { coverChanged(); };
}

void SelectionOverlayView::showToolbar()
{
    m_toolbar.build(*m_state.selectionRect(), m_space);
    redraw();
    coverChanged();
    toolbar()->show();
}

void SelectionOverlayView::removeToolbar()
{
    if (!toolbar())
        return;
    m_toolbar.remove();
    coverChanged();
    redraw();
}

void SelectionOverlayView::showTextRegions(const std::vector<TextRegion> &regions, TextShare share)
{
    if (!m_state.selectionRect() || m_state.isResizing())
        return;
    if (!m_textRegionOverlay) {
        m_textRegionOverlay =
            std::make_unique<TextRegionOverlayView>(m_context.defaults, *m_state.selectionRect());
        m_textRegionOverlay->onNeedsDisplay = [this] { redraw(); };
    }
    share == TextShare::all ? m_textRegionOverlay->settle(regions)
                            : m_textRegionOverlay->add(regions);
    pointAt(m_pointer); // which may rest where a word is now
}

void SelectionOverlayView::removeTextRegions()
{
    if (std::exchange(m_textRegionOverlay, nullptr))
        redraw();
}

void SelectionOverlayView::coverChanged()
{
    m_shown.setCovered(m_toolbar.coveredRegion() + m_textInput.coveredRegion());
}

void SelectionOverlayView::redraw()
{
    const QRegion below = toolbar() ? QRegion(toolbar()->geometry()) : QRegion();
    const ShownPicture::Change change = m_shown.show(picture(), scaled(below, m_space.scale));
    if (!change.isOnScreen)
        return update();
    m_textInput.backdropChanged();
    if (change.touchesWatched)
        toolbar()->backdropChanged();
}

OverlayPicture SelectionOverlayView::picture()
{
    OverlayPicture picture;
    picture.space = m_space;
    picture.captureMode = m_context.captureMode;
    picture.dimmingOpacity = m_animations.dimmingOpacity();
    picture.selection = m_state.selectionOnScreen();
    picture.handleOpacities = m_animations.handleOpacities();
    picture.isToolbarAtTop = isToolbarAtTop();
    const auto annotations = m_editor.drawnAnnotations();
    if (!annotations.empty() && picture.selection)
        picture.content = m_annotationLayer.items(annotations, m_space, *picture.selection);
    if (m_textRegionOverlay)
        std::ranges::move(m_textRegionOverlay->items(m_space), std::back_inserter(picture.content));
    return picture;
}

} // namespace tovek
