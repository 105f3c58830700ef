// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/SelectionOverlayView.h"

#include "annotations/AnnotationRenderer.h"
#include "foundation/WhenReady.h"
#include "overlay/AnnotationKeys.h"
#include "overlay/DisplayListPainter.h"
#include "overlay/KeyPressFromQt.h"
#include "overlay/OverlayCursor.h"

#include <QMouseEvent>
#include <QPainter>

namespace tovek {

SelectionOverlayView::SelectionOverlayView(const OverlayContext &context, QWidget *parent)
    : QWidget(parent)
    , m_context(context)
    , m_space(context.screen.space())
    , m_animations(context.clock)
    , m_artist(font())
    , m_toolbar(*this, m_editor, [this](QRect native) { return backdrop(native); })
    , m_textInput(*this, m_editor)
{
    m_state.screen = m_space;
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

SelectionOverlayView::~SelectionOverlayView() = default;

void SelectionOverlayView::setSurface(OverlaySurface *surface)
{
    m_surface = surface;
}

void SelectionOverlayView::setCaptureCursor()
{
    m_cursorShape.reset(); // somebody else may have changed it
    showCursor(Qt::CrossCursor);
}

void SelectionOverlayView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        press(pointOf(*event), 1);
}

void SelectionOverlayView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        press(pointOf(*event), 2);
}

void SelectionOverlayView::press(Point at, int clickCount)
{
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
        follow(m_editor.press(at, clickCount, *m_state.selectionRect));
        break;
    }
}

void SelectionOverlayView::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton)
        dragTo(pointOf(*event));
    else
        updateCursor(pointOf(*event));
}

void SelectionOverlayView::dragTo(Point at)
{
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
    updateCursor(pointOf(*event));
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
        overlayActionFor(key, m_state.isSelectionFinalized && !isTyping);
    if (action == OverlayKeyAction::none)
        return false;
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
        if (callbacks.onCancel)
            callbacks.onCancel();
        break;
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
    QPainter painter(this);
    // Only a platform that cannot draw the list itself gets here before the pixels are there.
    paintDisplayList(painter, m_list, m_context.screenshot->pixels().result(), m_space.scale,
                     event->region());
}

Point SelectionOverlayView::pointOf(const QMouseEvent &event) const
{
    // The toolkit rounds the positions inside a widget and on the screen to whole points, which
    // misses pixels at scales above 1. It keeps that in the window, which this view fills.
    return m_space.pointFromWidget(event.scenePosition());
}

void SelectionOverlayView::updateCursor(Point at)
{
    const auto previous = m_state.hoveredHandle;
    if (m_state.hover(at)) {
        m_animations.setHovered(previous, false);
        m_animations.setHovered(m_state.hoveredHandle, true);
    }
    showCursor(overlayCursorAt(at, m_state, m_editor.currentTool));
}

void SelectionOverlayView::showCursor(Qt::CursorShape shape)
{
    // Each change of the cursor is a request to the display server: not one a motion event.
    if (m_cursorShape == shape)
        return;
    m_cursorShape = shape;
    setCursor(overlayCursor(shape, m_space.scale));
}

void SelectionOverlayView::startResize()
{
    removeToolbar();
    removeTextRegions();
}

void SelectionOverlayView::finalise()
{
    // From now on, there are things to point at.
    if (m_surface)
        m_surface->setFollowsPointer(false);
    if (m_context.captureMode == CaptureMode::normal)
        showToolbar();
    if (callbacks.onSelectionComplete)
        callbacks.onSelectionComplete(*m_state.selectionRect);
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
    const auto selection = m_state.selectionOnScreen();
    if (!selection || withAnnotatedImage(callbacks.onCopyAnnotatedImage, callbacks.onCopyImage))
        return;
    if (callbacks.onCopyImage)
        callbacks.onCopyImage(*selection);
}

void SelectionOverlayView::save()
{
    const auto selection = m_state.selectionOnScreen();
    if (!selection || withAnnotatedImage(callbacks.onSaveAnnotatedImage, callbacks.onSaveImage))
        return;
    if (callbacks.onSaveImage)
        callbacks.onSaveImage(*selection);
}

bool SelectionOverlayView::withAnnotatedImage(
    const std::function<void(const Image &)> &use,
    const std::function<void(const Rect &)> &withoutPixels)
{
    if (m_editor.annotations.empty())
        return false;
    whenReady(
        m_context.screenshot->pixels(), this,
        [=, annotations = m_editor.annotations, size = m_space.size,
         selection = *m_state.selectionOnScreen()](const QImage &pixels) {
            const auto image = AnnotationRenderer::render(annotations, {pixels, size}, selection);
            if (pixels.isNull() && withoutPixels)
                withoutPixels(selection);
            else if (image && use)
                use(*image);
        });
    return true;
}

void SelectionOverlayView::follow(const AnnotationEditor::Effect &effect)
{
    if (effect.closesTextBox)
        m_textInput.close();
    if (m_textRegionOverlay)
        m_textRegionOverlay->setPassMouseEventsThrough(m_editor.doesTextLetMouseThrough);
    if (toolbar())
        toolbar()->setActiveTool(m_editor.currentTool);
    if (effect.needsRedraw)
        redraw();
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
    m_toolbar.onClose = [this] {
        if (callbacks.onCancel)
            callbacks.onCancel();
    };
    m_toolbar.onCoverChanged = [this] { coverChanged(); };
}

void SelectionOverlayView::showToolbar()
{
    m_toolbar.build(*m_state.selectionRect, m_space);
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

void SelectionOverlayView::showTextRegions(const std::vector<TextRegion> &regions)
{
    if (!m_state.selectionRect || m_state.isResizing())
        return;
    removeTextRegions();
    m_isTextSelectionMode = true;
    const Rect &selection = *m_state.selectionRect;
    m_textRegionOverlay = new TextRegionOverlayView(m_context.defaults, this);
    m_textRegionOverlay->setGeometry(m_space.widgetFromRect(selection).toAlignedRect());
    m_textRegionOverlay->setTextRegions(regions);
    m_textRegionOverlay->setSelectionBounds({0, 0, selection.width, selection.height});
    m_textRegionOverlay->setPassMouseEventsThrough(m_editor.doesTextLetMouseThrough);
    m_textRegionOverlay->onNeedsDisplay = [this] { redraw(); };
    m_textRegionOverlay->show();
    m_textInput.raise();
    m_toolbar.raise();
    redraw();
}

void SelectionOverlayView::removeTextRegions()
{
    m_isTextSelectionMode = false;
    if (!m_textRegionOverlay)
        return;
    // The toolkit would paint all that lay below it.
    setAttribute(Qt::WA_UpdatesDisabled);
    delete m_textRegionOverlay;
    setAttribute(Qt::WA_UpdatesDisabled, false);
    redraw();
}

QImage SelectionOverlayView::backdrop(const QRect &native) const
{
    return renderDisplayList(m_list, m_context.screenshot->pixels().result(), native);
}

void SelectionOverlayView::coverChanged()
{
    if (!m_surface)
        return;
    const QRegion covered = m_toolbar.coveredRegion() + m_textInput.coveredRegion();
    m_surface->setCovered(scaled(covered, m_space.scale));
}

void SelectionOverlayView::redraw()
{
    DisplayList list = m_artist.draw(picture());
    const bool isShown = m_surface && m_surface->present(list);
    const bool isUnderToolbar = toolbar()
        && damageBetween(m_list, list).intersects(scaled(toolbar()->geometry(), m_space.scale));
    m_list = std::move(list);
    if (!isShown)
        return update();
    m_textInput.backdropChanged();
    if (isUnderToolbar)
        toolbar()->backdropChanged();
}

OverlayPicture SelectionOverlayView::picture()
{
    OverlayPicture picture;
    picture.space = m_space;
    picture.captureMode = m_context.captureMode;
    picture.dimmingOpacity = m_animations.dimmingOpacity();
    picture.selection = m_state.selectionOnScreen();
    picture.handleOpacities = {m_animations.handleOpacity(ResizeHandle::bottomLeft),
                               m_animations.handleOpacity(ResizeHandle::bottomRight),
                               m_animations.handleOpacity(ResizeHandle::topLeft),
                               m_animations.handleOpacity(ResizeHandle::topRight)};
    picture.isToolbarAtTop = isToolbarAtTop();
    const auto annotations = m_editor.drawnAnnotations();
    if (!annotations.empty() && picture.selection)
        picture.content = m_annotationLayer.items(annotations, m_space, *picture.selection);
    if (m_textRegionOverlay) {
        const Rect &selection = *m_state.selectionRect;
        auto items = m_textRegionOverlay->items(m_space, {selection.x, selection.y});
        picture.content.insert(picture.content.end(), std::make_move_iterator(items.begin()),
                               std::make_move_iterator(items.end()));
    }
    return picture;
}

} // namespace tovek
