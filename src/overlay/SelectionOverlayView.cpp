// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/SelectionOverlayView.h"

#include "overlay/DisplayListPainter.h"
#include "overlay/KeyPressFromQt.h"

#include <QMouseEvent>
#include <QPainter>

namespace tovek {

SelectionOverlayView::SelectionOverlayView(const OverlayContext &context, QWidget *parent)
    : QWidget(parent)
    , m_context(context)
    , m_space(context.screen.space())
    , m_animations(context.clock)
    , m_artist(font())
{
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setAccessibleName(tr("Frozen screen %1").arg(context.screen.name));
    m_animations.onFrame = [this] { redraw(); };
    setCaptureCursor();
}

SelectionOverlayView::~SelectionOverlayView() = default;

void SelectionOverlayView::setSurface(OverlaySurface *surface)
{
    m_surface = surface;
}

void SelectionOverlayView::setCaptureCursor()
{
    showCursor(Qt::CrossCursor);
}

void SelectionOverlayView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    switch (m_state.press(pointOf(*event))) {
    case SelectionState::Press::startedSelection:
        m_animations.startDimming();
        redraw();
        break;
    case SelectionState::Press::startedResize:
    case SelectionState::Press::insideSelection:
    case SelectionState::Press::outsideSelection:
        break;
    }
}

void SelectionOverlayView::mouseMoveEvent(QMouseEvent *event)
{
    const Point at = pointOf(*event);
    if (event->buttons() & Qt::LeftButton) {
        if (m_state.moveTo(at))
            redraw();
        return;
    }
    updateCursor(at);
}

void SelectionOverlayView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
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
    updateCursor(pointOf(*event));
}

void SelectionOverlayView::keyPressEvent(QKeyEvent *event)
{
    if (!handleKey(keyPressFrom(*event, m_context.keyboardLayout)))
        QWidget::keyPressEvent(event);
}

bool SelectionOverlayView::handleKey(const KeyPress &key)
{
    switch (overlayActionFor(key, m_state.isSelectionFinalized)) {
    case OverlayKeyAction::cancel:
        if (callbacks.onCancel)
            callbacks.onCancel();
        return true;
    case OverlayKeyAction::save:
        save();
        return true;
    case OverlayKeyAction::copy:
        copy();
        return true;
    default:
        return false;
    }
}

void SelectionOverlayView::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    // Only a platform that cannot draw the list itself gets here before the pixels are there.
    paintDisplayList(painter, m_list, m_context.screenshot->pixels().result(), m_space.scale,
                     event->region());
}

Point SelectionOverlayView::pointOf(const QMouseEvent &event) const
{
    return m_space.pointFromWidget(event.position());
}

void SelectionOverlayView::updateCursor(Point at)
{
    const auto previous = m_state.hoveredHandle;
    if (m_state.hover(at)) {
        m_animations.setHovered(previous, false);
        m_animations.setHovered(m_state.hoveredHandle, true);
    }
    if (!m_state.isSelectionFinalized || !m_state.selectionRect) {
        setCaptureCursor();
        return;
    }
    if (!m_state.hoveredHandle) {
        showCursor(Qt::ArrowCursor);
        return;
    }
    switch (*m_state.hoveredHandle) {
    case ResizeHandle::left:
    case ResizeHandle::right:
        return showCursor(Qt::SizeHorCursor);
    case ResizeHandle::top:
    case ResizeHandle::bottom:
        return showCursor(Qt::SizeVerCursor);
    case ResizeHandle::topLeft:
    case ResizeHandle::bottomRight:
        return showCursor(Qt::SizeFDiagCursor);
    case ResizeHandle::topRight:
    case ResizeHandle::bottomLeft:
        return showCursor(Qt::SizeBDiagCursor);
    }
}

void SelectionOverlayView::showCursor(Qt::CursorShape shape)
{
    // Each change of the cursor is a request to the display server: not one a motion event.
    if (m_cursorShape == shape)
        return;
    m_cursorShape = shape;
    setCursor(shape);
}

void SelectionOverlayView::finalise()
{
    if (callbacks.onSelectionComplete)
        callbacks.onSelectionComplete(*m_state.selectionRect);
}

void SelectionOverlayView::copy()
{
    if (m_state.selectionRect && callbacks.onCopyImage)
        callbacks.onCopyImage(*m_state.selectionRect);
}

void SelectionOverlayView::save()
{
    if (m_state.selectionRect && callbacks.onSaveImage)
        callbacks.onSaveImage(*m_state.selectionRect);
}

void SelectionOverlayView::redraw()
{
    DisplayList list = m_artist.draw(picture());
    if (!m_surface || !m_surface->present(list))
        update();
    m_list = std::move(list);
}

OverlayPicture SelectionOverlayView::picture() const
{
    OverlayPicture picture;
    picture.space = m_space;
    picture.captureMode = m_context.captureMode;
    picture.dimmingOpacity = m_animations.dimmingOpacity();
    picture.selection = m_state.selectionRect;
    picture.handleOpacities = {m_animations.handleOpacity(ResizeHandle::bottomLeft),
                               m_animations.handleOpacity(ResizeHandle::bottomRight),
                               m_animations.handleOpacity(ResizeHandle::topLeft),
                               m_animations.handleOpacity(ResizeHandle::topRight)};
    return picture;
}

} // namespace tovek
