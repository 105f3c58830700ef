// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/overlay/LayerOverlayShell.h"

#include "platform/Screens.h"
#include "platform/wayland/FullScreenSurface.h"
#include "platform/wayland/LayerSurface.h"
#include "platform/wayland/capture/WaylandFrozenDisplay.h"
#include "viewporter-client.h"

#include <QCoreApplication>
#include <QCursor>
#include <QExposeEvent>
#include <QGuiApplication>
#include <QLibraryInfo>
#include <QScreen>
#include <QTimer>
#include <QWindow>

namespace tovek {

namespace {

using namespace std::chrono_literals;

/// Divisible by every whole scale that the toolkit may have given the surface.
constexpr QSize blankSize(12, 12);

/// After which the overlay is there, and before which nobody has begun to drag.
constexpr auto cursorDelay = 100ms;

/// How long the keyboard may be on its way, also from one screen to another.
constexpr auto keyboardLimit = 1000ms;

/// From 6.5 on the toolkit has a viewport of its own for each surface, where scales can be
/// fractions; a surface takes only one.
bool toolkitHasViewports(const WaylandConnection &connection)
{
    return QLibraryInfo::version() >= QVersionNumber(6, 5)
        && connection.offers("wp_fractional_scale_manager_v1");
}

} // namespace

LayerOverlaySurface::LayerOverlaySurface(std::shared_ptr<LayerOverlayServices> services,
                                         QWindow &window, const Screen &screen,
                                         std::shared_ptr<FrozenDisplay> frozen)
    : m_services(std::move(services))
    , m_window(window)
    , m_screen(screen)
    , m_frozen(std::move(frozen))
    , m_drag(m_services->canvas->connection, frameIntervalOf(toolkitScreen(screen.name)))
{
    m_drag.canShow = [this] { return m_canvas && m_canvas->isReady(); };
    m_drag.onMoved = [this](QPointF at) {
        if (onDragged)
            onDragged(at);
    };
    setUpWindow();
    m_window.installEventFilter(this);
    connect(m_services->outputs.get(), &WaylandOutputs::changed, this, [this] {
        const std::vector<WaylandOutput> now = m_services->outputs->list();
        const bool isSame = std::any_of(now.begin(), now.end(), [this](const WaylandOutput &o) {
            return o.id == m_screen.displayId && o.native == m_screen.native.size()
                && o.scale == m_screen.scale;
        });
        if (!isSame)
            leaveWithTheScreen();
    });
}

LayerOverlaySurface::~LayerOverlaySurface()
{
    orderOut();
}

void LayerOverlaySurface::setUpWindow()
{
    const QRect before = m_window.geometry();
    m_window.setFlags(m_window.flags() | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    const QSizeF points(m_screen.frame.width, m_screen.frame.height);
    m_role = m_services->makeRole(m_window, toolkitScreen(m_screen.name), points.toSize());
    if (!m_role)
        return;
    m_role->onClosed = [this] { leaveWithTheScreen(); };
    // Whoever lays out the window needs its size now.
    QResizeEvent resize(m_role->configuredSize(), before.size());
    QCoreApplication::sendEvent(&m_window, &resize);
}

void LayerOverlaySurface::orderFrontRegardless()
{
    if (m_isVisible)
        return;
    if (!m_role) {
        // Queued: who orders it front still holds it.
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (onScreenGone)
                    onScreenGone();
            },
            Qt::QueuedConnection);
        return;
    }
    m_isVisible = true;
    m_window.setVisible(true);
    map();
    if (std::exchange(m_wantsKey, false))
        makeKey();
}

void LayerOverlaySurface::map()
{
    auto display = std::dynamic_pointer_cast<WaylandFrozenDisplay>(m_frozen);
    if (!display) // pixels from elsewhere
        display = std::make_shared<WaylandFrozenDisplay>(
            SharedPixels::fromImage(m_frozen->pixels().result()));
    const CanvasGlobals &globals = *m_services->canvas;
    wl_surface *surface = surfaceOf(m_window);
    m_canvas = std::make_unique<LayerCanvas>(m_services->canvas, surface, display->shared(),
                                             m_screen.scale);
    m_canvas->onReady = [this] { m_drag.catchUpSoon(); };
    // A window without a picture is not shown at all, and the toolkit's would have to be painted.
    const auto blank = SharedPixels::create(blankSize);
    if (!blank)
        return;
    m_blank = blank->makeBuffer(globals.shm, WL_SHM_FORMAT_ARGB8888);
    if (!toolkitHasViewports(*globals.connection)) {
        m_viewport = wp_viewporter_get_viewport(globals.viewporter, surface);
        wp_viewport_set_destination(m_viewport, m_role->configuredSize().width(),
                                    m_role->configuredSize().height());
    }
    wl_surface_attach(surface, m_blank, 0, 0);
    wl_surface_damage(surface, 0, 0, INT32_MAX, INT32_MAX);
    wl_surface_commit(surface);
    m_canvas->becomeIndependent();
    globals.connection->flush();
}

void LayerOverlaySurface::orderOut()
{
    if (m_services->key == this) {
        m_services->key = nullptr;
        m_services->knowsStart = false;
    }
    m_window.removeEventFilter(this);
    m_drag.setOn(false);
    const bool wasVisible = std::exchange(m_isVisible, false);
    m_canvas.reset();
    if (m_viewport && qApp)
        wp_viewport_destroy(std::exchange(m_viewport, nullptr));
    // The role before the surface, which the toolkit takes along when it hides the window.
    m_role.reset();
    if (wasVisible)
        m_window.setVisible(false);
    if (m_blank && qApp)
        wl_buffer_destroy(std::exchange(m_blank, nullptr));
    m_frozen.reset();
    m_services->canvas->connection->flush();
}

void LayerOverlaySurface::makeKey()
{
    if (!m_isVisible) {
        m_wantsKey = true;
        return;
    }
    LayerOverlaySurface *before = std::exchange(m_services->key, this);
    if (before == this || !m_role)
        return;
    // Of two that want the keyboard, compositors differ in which gets it.
    if (before && before->m_role)
        before->m_role->setKeyboard(SurfaceRole::Keyboard::none);
    m_role->setKeyboard(SurfaceRole::Keyboard::exclusive);
    if (!m_role->canTakeKeyboard())
        checkKeyboardSoon();
}

/// A compositor that gives the keyboard as it likes may keep it for the window below, which would
/// then get what is typed, or take it away for its own purposes. A frozen screen that does not hear
/// Escape must not stay.
void LayerOverlaySurface::checkKeyboardSoon()
{
    QTimer::singleShot(keyboardLimit, this, [this] {
        if (!isKey())
            return;
        if (QGuiApplication::focusWindow())
            checkKeyboardSoon();
        else if (onKeyboardDenied)
            onKeyboardDenied();
    });
}

/// With the first cursor that is not our own, the toolkit loads all of the user's, which takes
/// 50 ms and more. That would be when the button comes up over a handle, and the toolbar is due.
void LayerOverlaySurface::loadCursorsSoon()
{
    if (std::exchange(m_services->hasCursors, true))
        return;
    QTimer::singleShot(cursorDelay, this, [this] {
        m_services->hasCursors = m_isVisible && QGuiApplication::mouseButtons() == Qt::NoButton;
        if (!m_services->hasCursors)
            return;
        // The compositor hears of both at once: nobody sees the arrow.
        const QCursor shown = m_window.cursor();
        m_window.setCursor(Qt::ArrowCursor);
        m_window.setCursor(shown);
    });
}

bool LayerOverlaySurface::present(const DisplayList &list)
{
    if (!m_canvas)
        return false;
    m_canvas->present(list);
    return true;
}

bool LayerOverlaySurface::eventFilter(QObject *watched, QEvent *event)
{
    if (m_drag.take(*event))
        return true;
    switch (event->type()) {
    case QEvent::Enter:
        // Nobody could tell before where the pointer is. From there on only a press brings the keys
        // to another screen.
        if (m_screen.displayId && m_services->pointerSeenOn)
            m_services->pointerSeenOn(*m_screen.displayId);
        if (m_isVisible && QGuiApplication::mouseButtons() == Qt::NoButton
            && !std::exchange(m_services->knowsStart, true))
            makeKey();
        loadCursorsSoon();
        return false;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        // The compositor may send a few more here after the keyboard was given to another one.
        if (isKey() || !m_services->key)
            return false;
        QCoreApplication::sendEvent(&m_services->key->m_window, event);
        return true;
    case QEvent::Expose: {
        if (m_isForwarding)
            return false;
        m_mayMissPaint = m_mayMissPaint || (m_hasChildren && !m_window.isExposed());
        // Tells the widget that it is on the screen, and nothing to paint: all of it is clear. Only
        // where something was to be painted meanwhile, it is told so, and paints no more than that.
        m_isForwarding = true;
        const bool isMissing = m_window.isExposed() && std::exchange(m_mayMissPaint, false);
        QExposeEvent exposed(isMissing ? QRegion(QRect(QPoint(), m_window.size())) : QRegion());
        QCoreApplication::sendEvent(watched, &exposed);
        m_isForwarding = false;
        return true;
    }
    case QEvent::Paint:
        event->accept();
        return true;
    default:
        return false;
    }
}

void LayerOverlaySurface::leaveWithTheScreen()
{
    const bool wasVisible = m_isVisible;
    orderOut();
    if (wasVisible && onScreenGone)
        onScreenGone();
}

std::unique_ptr<LayerOverlayShell>
LayerOverlayShell::create(std::shared_ptr<WaylandOutputs> outputs, PointerSeenOn pointerSeenOn)
{
    auto shell = LayerShell::create();
    if (!shell)
        return nullptr;
    return createWith(
        [shell = std::move(shell)](QWindow &window, QScreen *screen, QSize) {
            return LayerSurface::create(shell, window, screen, {});
        },
        std::move(outputs), std::move(pointerSeenOn));
}

std::unique_ptr<LayerOverlayShell>
LayerOverlayShell::createOfWindows(std::shared_ptr<WaylandOutputs> outputs,
                                   PointerSeenOn pointerSeenOn)
{
    auto shell = WindowShell::create();
    if (!shell)
        return nullptr;
    return createWith(
        [shell = std::move(shell)](QWindow &window, QScreen *screen, QSize points) {
            return FullScreenSurface::create(shell, window, screen, points);
        },
        std::move(outputs), std::move(pointerSeenOn));
}

std::unique_ptr<LayerOverlayShell>
LayerOverlayShell::createWith(LayerOverlayServices::MakeRole makeRole,
                              std::shared_ptr<WaylandOutputs> outputs, PointerSeenOn pointerSeenOn)
{
    auto canvas = std::make_shared<CanvasGlobals>(WaylandConnection::ofToolkit());
    if (!canvas->isComplete())
        return nullptr;
    return std::unique_ptr<LayerOverlayShell>(
        new LayerOverlayShell(std::make_shared<LayerOverlayServices>(
            LayerOverlayServices{std::move(makeRole), std::move(canvas), std::move(outputs),
                                 std::move(pointerSeenOn)})));
}

std::unique_ptr<OverlaySurface> LayerOverlayShell::create(QWindow &window, const Screen &screen,
                                                          std::shared_ptr<FrozenDisplay> frozen)
{
    return std::make_unique<LayerOverlaySurface>(m_services, window, screen, std::move(frozen));
}

} // namespace tovek
