// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/overlay/X11OverlaySurface.h"

#include "platform/Screens.h"
#include "platform/x11/capture/XWayland.h"

#include <QExposeEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QWindow>

#include <algorithm>

namespace tovek {

X11OverlaySurface::X11OverlaySurface(std::shared_ptr<X11OverlayServices> services, QWindow &window,
                                     const Screen &screen, std::shared_ptr<X11FrozenDisplay> frozen)
    : m_services(std::move(services))
    , m_window(window)
    , m_screen(screen)
    , m_frozen(std::move(frozen))
    , m_gate(m_services->drawing, frameIntervalOf(toolkitScreen(screen.name)))
    , m_pointer(m_services->connection, m_services->drawing, m_gate.interval())
{
    m_pointer.onMoved = [this](QPoint at) {
        if (onDragged)
            onDragged(QPointF(at) / m_screen.scale);
    };
    m_nextFrame.setSingleShot(true);
    m_nextFrame.setTimerType(Qt::PreciseTimer);
    connect(&m_nextFrame, &QTimer::timeout, this, &X11OverlaySurface::showWaitingFrame);
    setUpWindow();
    if (isBackedByTheServer() && m_services->drawing->renderFormats())
        m_canvas = std::make_unique<X11OverlayCanvas>(m_services->connection, m_services->drawing,
                                                      id(), m_frozen->pixmap());
    m_window.installEventFilter(this);
    connect(m_services->monitors.get(), &X11Monitors::changed, this, [this] {
        const std::vector<X11Monitor> &now = m_services->monitors->list();
        const auto same = std::find_if(now.begin(), now.end(), [this](const X11Monitor &monitor) {
            return monitor.id == m_screen.displayId && monitor.native == m_screen.native;
        });
        if (same == now.end())
            leaveWithTheScreen();
    });
}

X11OverlaySurface::~X11OverlaySurface()
{
    orderOut();
}

bool X11OverlaySurface::isBackedByTheServer() const
{
    return m_window.requestedFormat().alphaBufferSize() <= 0
        && m_frozen->pixmap()->error().isEmpty();
}

void X11OverlaySurface::setUpWindow()
{
    const QRect before = m_window.geometry();
    // Nothing that would make the toolkit exchange the native window for another one at showing:
    // whether a managed window stays on top does not matter to an unmanaged one.
    m_window.setFlags(m_window.flags() | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    if (QScreen *screen = toolkitScreen(m_screen.name)) {
        m_window.setScreen(screen);
        m_window.setGeometry(screen->geometry());
    }
    m_window.create();
    // The answer of the server would come too late: whoever lays out the window needs its size.
    const QRect after = m_window.geometry();
    QMoveEvent move(after.topLeft(), before.topLeft());
    QCoreApplication::sendEvent(&m_window, &move);
    QResizeEvent resize(after.size(), before.size());
    QCoreApplication::sendEvent(&m_window, &resize);

    const X11Connection &connection = *m_services->connection;
    const uint32_t none = 0;
    xcb_change_property(connection.xcb(), XCB_PROP_MODE_REPLACE, id(),
                        connection.atom(X11Atom::comptonShadow), XCB_ATOM_CARDINAL, 32, 1, &none);
    const uint32_t yes = 1;
    xcb_change_property(connection.xcb(), XCB_PROP_MODE_REPLACE, id(),
                        connection.atom(X11Atom::kdeSkipCloseAnimation), XCB_ATOM_CARDINAL, 32, 1,
                        &yes);
    if (isBackedByTheServer()) {
        const uint32_t background = m_frozen->pixmap()->id();
        xcb_change_window_attributes(connection.xcb(), id(), XCB_CW_BACK_PIXMAP, &background);
    }
    forceNativeGeometry(0);
}

void X11OverlaySurface::forceNativeGeometry(uint16_t alsoRaise)
{
    // The toolkit's logical size does not always multiply to the monitor's pixels.
    const QRect &native = m_screen.native;
    const uint32_t values[]{uint32_t(native.x()), uint32_t(native.y()), uint32_t(native.width()),
                            uint32_t(native.height()), XCB_STACK_MODE_ABOVE};
    xcb_configure_window(m_services->connection->xcb(), id(),
                         uint16_t(XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y
                                  | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT | alsoRaise),
                         values);
}

void X11OverlaySurface::sendToFront()
{
    const X11Connection &connection = *m_services->connection;
    if (m_isVisible || !connection.xcb())
        return;
    forceNativeGeometry(XCB_CONFIG_WINDOW_STACK_MODE);
    xcb_map_window(connection.xcb(), id());
    connection.flush();
    m_isVisible = m_isSent = true;
    if (std::exchange(m_wantsKey, false)) {
        // A guest answers once it has copied the picture into the window, which the desktop shows
        // still later: the overlays of the other screens go first.
        if (m_services->keyboard.takesFocus())
            QMetaObject::invokeMethod(
                this, [this] { makeKey(); }, Qt::QueuedConnection);
        else
            makeKey();
    }
}

void X11OverlaySurface::orderFrontRegardless()
{
    const X11Connection &connection = *m_services->connection;
    sendToFront();
    if (!std::exchange(m_isSent, false) || !connection.xcb())
        return;
    // The screen is right already; this tells the toolkit.
    m_window.setVisible(true);
    forceNativeGeometry(0);
    m_services->stacking.add(id(), m_screen.native);
    if (m_canvas)
        m_canvas->setComposed(m_services->pool.take(m_screen.native.size()));
    connection.flush();
}

void X11OverlaySurface::orderOut()
{
    const X11Connection &connection = *m_services->connection;
    if (!m_isVisible || !connection.xcb())
        return;
    m_isVisible = m_isSent = false;
    m_services->keyboard.release(m_window);
    m_services->stacking.remove(id());
    m_pointer.stop();
    unveil();
    xcb_unmap_window(connection.xcb(), id());
    const uint32_t none = XCB_BACK_PIXMAP_NONE;
    xcb_change_window_attributes(connection.xcb(), id(), XCB_CW_BACK_PIXMAP, &none);
    connection.flush();
    m_window.removeEventFilter(this);
    m_nextFrame.stop();
    m_canvas.reset();
    m_frozen.reset();
    m_window.setVisible(false);
    connection.flush();
}

/// A compositing manager that lets windows go softly (picom) shows for a third of a second what
/// lay over the screen at last, to whoever photographs it next as well.
void X11OverlaySurface::unveil()
{
    if (!m_canvas)
        return;
    setCovered({});
    if (m_canvas->present({}))
        m_services->drawing->settle();
}

void X11OverlaySurface::makeKey()
{
    if (!m_isVisible) {
        m_wantsKey = true;
        return;
    }
    const QPointer<X11OverlaySurface> surface(this);
    m_services->keyboard.take(m_window, [surface] {
        if (surface && surface->onKeyboardDenied)
            surface->onKeyboardDenied();
    });
}

bool X11OverlaySurface::isKey() const
{
    return m_services->keyboard.holds(m_window);
}

bool X11OverlaySurface::present(const DisplayList &list)
{
    if (!m_canvas)
        return false;
    if (m_gate.isOpen()) {
        showFrame(list);
    } else {
        m_waiting = list;
        if (!m_nextFrame.isActive())
            m_nextFrame.start(m_gate.untilNext());
    }
    return true;
}

void X11OverlaySurface::showFrame(const DisplayList &list)
{
    m_waiting.reset();
    m_nextFrame.stop();
    if (!m_canvas->present(list))
        return;
    // In a drag, the server is asked for the pointer before each frame.
    m_gate.framePassed(m_pointer.isPressed() ? X11FrameGate::Waiting::byCaller
                                             : X11FrameGate::Waiting::here);
    m_services->drawing->flush();
}

void X11OverlaySurface::showWaitingFrame()
{
    if (!m_waiting || !m_canvas)
        return;
    if (!m_gate.isOpen())
        return m_nextFrame.start(m_gate.untilNext());
    showFrame(DisplayList(std::move(*m_waiting)));
}

void X11OverlaySurface::setCovered(const QRegion &region)
{
    m_covered = region;
    if (m_canvas)
        m_canvas->setCovered(region);
}

void X11OverlaySurface::setFollowsPointer(bool isOn)
{
    if (isOn) {
        if (m_isVisible)
            m_pointer.start(id());
        return;
    }
    const auto missed = m_pointer.giveBack();
    if (!missed || !QRect(QPoint(), m_screen.native.size()).contains(*missed))
        return; // the toolkit always hears that it left
    // After the event that is being handled, and before what the toolkit hears from now on.
    const QPointF at = QPointF(*missed) / m_screen.scale;
    QCoreApplication::postEvent(&m_window,
                                new QMouseEvent(QEvent::MouseMove, at, m_window.mapToGlobal(at),
                                                Qt::NoButton, Qt::NoButton,
                                                QGuiApplication::keyboardModifiers()));
}

void X11OverlaySurface::followMouse(const QEvent &event)
{
    if (event.type() == QEvent::KeyPress)
        return m_pointer.catchUp(); // a key acts on what the mouse made before it
    if (event.type() != QEvent::MouseButtonPress && event.type() != QEvent::MouseButtonRelease)
        return;
    const auto &mouse = static_cast<const QMouseEvent &>(event);
    if (mouse.button() != Qt::LeftButton)
        return;
    if (event.type() == QEvent::MouseButtonPress)
        return m_pointer.pressed();
    if (m_pointer.released() && onDragged)
        onDragged(mouse.scenePosition());
}

bool X11OverlaySurface::eventFilter(QObject *watched, QEvent *event)
{
    followMouse(*event);
    if (m_isForwarding || !m_canvas)
        return false;
    if (event->type() == QEvent::Expose) {
        // Tells the widget that it is on the screen, and nothing to paint.
        m_isForwarding = true;
        QExposeEvent exposed{QRegion()};
        QCoreApplication::sendEvent(watched, &exposed);
        m_isForwarding = false;
        return true;
    }
    if (event->type() == QEvent::Paint) {
        const QRegion region = static_cast<QPaintEvent *>(event)->region();
        m_canvas->repair(toNative(region));
        const QRegion covered = toLogical(m_covered & toNative(region));
        // The widget's window does nothing with a paint event (Qt 6.4): it flushes what the
        // children painted when it is exposed.
        m_isForwarding = true;
        QExposeEvent exposed{covered};
        if (!covered.isEmpty())
            QCoreApplication::sendEvent(watched, &exposed);
        m_isForwarding = false;
        event->accept();
        return true;
    }
    return false;
}

xcb_window_t X11OverlaySurface::id() const
{
    return xcb_window_t(m_window.winId());
}

void X11OverlaySurface::leaveWithTheScreen()
{
    const bool wasVisible = m_isVisible;
    orderOut();
    if (wasVisible && onScreenGone)
        onScreenGone();
}

QRegion X11OverlaySurface::toNative(const QRegion &logical) const
{
    return scaled(logical, m_screen.scale);
}

QRegion X11OverlaySurface::toLogical(const QRegion &native) const
{
    return scaled(native, 1 / m_screen.scale);
}

X11OverlayShell::X11OverlayShell(const std::shared_ptr<X11Connection> &connection,
                                 std::shared_ptr<X11Monitors> monitors)
    : m_services(new X11OverlayServices{connection, nullptr, std::move(monitors),
                                        X11KeyboardHold(connection), X11Stacking(connection),
                                        X11PixmapPool(connection)})
{
    if (isXWayland(*m_services->connection, *m_services->monitors)) {
        m_services->keyboard.setTakesFocus(true);
        m_services->stacking.ignoreFocus();
    }
    m_services->stacking.onLocker = [this] {
        if (onLocker)
            onLocker();
    };
    m_services->keyboard.onMouseHeld = [this] {
        if (onMouseHeld)
            onMouseHeld();
    };
}

X11OverlayShell::~X11OverlayShell()
{
    // Surfaces may outlive it.
    m_services->stacking.onLocker = nullptr;
    m_services->keyboard.onMouseHeld = nullptr;
}

void X11OverlayShell::prepareDrawing()
{
    if (!m_services->drawing)
        m_services->drawing = X11Connection::open();
    if (!m_services->drawing)
        m_services->drawing = m_services->connection;
    m_services->drawing->renderFormats();
}

void X11OverlayShell::prepare()
{
    if (!m_services->connection->xcb())
        return;
    prepareDrawing();
    std::vector<QSize> sizes;
    for (const X11Monitor &monitor : m_services->monitors->list())
        sizes.push_back(monitor.native.size());
    m_services->pool.prepare(sizes);
}

std::unique_ptr<OverlaySurface> X11OverlayShell::create(QWindow &window, const Screen &screen,
                                                        std::shared_ptr<FrozenDisplay> frozen)
{
    auto display = std::dynamic_pointer_cast<X11FrozenDisplay>(frozen);
    if (!display) {
        // Pixels from elsewhere have no pixmap yet.
        const QImage image = frozen->pixels().result();
        display = X11FrozenDisplay::fromImage(m_services->connection, image);
    }
    prepareDrawing();
    return std::make_unique<X11OverlaySurface>(m_services, window, screen, display);
}

} // namespace tovek
