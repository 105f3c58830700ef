// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/OverlayWindow.h"

#include <QBackingStore>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QEvent>
#include <QMouseEvent>
#include <QWindow>

namespace tovek {

OverlayWindow::OverlayWindow(const OverlayContext &context, OverlayShell &shell)
    : QWidget(nullptr,
              Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint
                  | Qt::BypassWindowManagerHint)
    , m_targetScreen(context.screen)
    , m_selectionView(new SelectionOverlayView(context, this))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    // The view's from the first instant on: an arrow would flash up, and where the toolkit has to
    // load its pictures first (Qt 6.4, Wayland), the pointer would stand still for that.
    setCursor(m_selectionView->cursor());
    setWindowTitle(QStringLiteral("Tovek"));
    resize(qRound(m_targetScreen.frame.width), qRound(m_targetScreen.frame.height));
    setAttribute(Qt::WA_TranslucentBackground, shell.presentsBelow());
    winId(); // the surface needs the native window, before anything is shown
    m_surface = shell.create(*windowHandle(), m_targetScreen, context.screenshot);
    m_surface->onScreenGone = [this] {
        if (onScreenGone)
            onScreenGone();
    };
    m_surface->onKeyboardDenied = [this] {
        if (onKeyboardDenied)
            onKeyboardDenied();
    };
    m_surface->onDragged = [this, space = context.screen.space()](QPointF at) {
        m_selectionView->dragTo(space.pointFromWidget(at));
    };
    m_selectionView->setSurface(m_surface.get());
    m_selectionView->installEventFilter(this);
    // Where the keyboard stays on another screen's window, keys come here by way of that one.
    m_selectionView->setFocus();
    // What words, toolbar and text box make of a press never reaches the view.
    windowHandle()->installEventFilter(this);
}

OverlayWindow::~OverlayWindow()
{
    m_selectionView->setSurface(nullptr);
}

void OverlayWindow::orderFrontRegardless()
{
    // The surface shows the frozen screen by itself. Left alone, the toolkit would paint all of it
    // once more, which takes longer than everything else at opening.
    for (QWidget *widget : {static_cast<QWidget *>(this), static_cast<QWidget *>(m_selectionView)})
        widget->setAttribute(Qt::WA_UpdatesDisabled);
    m_surface->orderFrontRegardless();
    for (QWidget *widget :
         {static_cast<QWidget *>(this), static_cast<QWidget *>(m_selectionView)}) {
        QCoreApplication::removePostedEvents(widget, QEvent::UpdateLater);
        widget->setAttribute(Qt::WA_UpdatesDisabled, false);
    }
    if (backingStore())
        backingStore()->resize(size());
    // The drag that makes the selection has to keep up with the hand.
    m_surface->setFollowsPointer(true);
}

void OverlayWindow::makeKey()
{
    m_surface->makeKey();
    m_selectionView->setFocus();
}

void OverlayWindow::orderOut()
{
    m_surface->orderOut();
}

void OverlayWindow::activeSpaceDidChange()
{
    if (!m_surface->isVisible() || m_surface->isKey())
        return;
    makeKey();
    m_selectionView->setCaptureCursor();
}

void OverlayWindow::resizeEvent(QResizeEvent *)
{
    m_selectionView->setGeometry(rect());
}

void OverlayWindow::closeEvent(QCloseEvent *event)
{
    // Any program may ask; the session is what ends it.
    event->ignore();
}

bool OverlayWindow::eventFilter(QObject *watched, QEvent *event)
{
    // A press on another screen's overlay brings the keyboard there and acts there at once.
    if (event->type() == QEvent::MouseButtonPress && !m_surface->isKey())
        makeKey();
    return QWidget::eventFilter(watched, event);
}

} // namespace tovek
