// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/overlay/LayerOverlayShell.h"

#include "platform/Screens.h"
#include "platform/wayland/capture/WaylandFrozenDisplay.h"
#include "viewporter-client.h"

#include <QCoreApplication>
#include <QExposeEvent>
#include <QGuiApplication>
#include <QLibraryInfo>
#include <QWindow>

namespace tovek {

namespace {

/// Divisible by every whole scale that the toolkit may have given the surface.
constexpr QSize blankSize(12, 12);

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
{
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
    m_layer = LayerSurface::create(m_services->shell, m_window, toolkitScreen(m_screen.name), {});
    if (!m_layer)
        return;
    m_layer->onClosed = [this] { leaveWithTheScreen(); };
    // Whoever lays out the window needs its size now.
    QResizeEvent resize(m_layer->configuredSize(), before.size());
    QCoreApplication::sendEvent(&m_window, &resize);
}

void LayerOverlaySurface::orderFrontRegardless()
{
    if (m_isVisible)
        return;
    if (!m_layer) {
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
    // A window without a picture is not shown at all, and the toolkit's would have to be painted.
    const auto blank = SharedPixels::create(blankSize);
    if (!blank)
        return;
    m_blank = blank->makeBuffer(globals.shm, WL_SHM_FORMAT_ARGB8888);
    if (!toolkitHasViewports(*globals.connection)) {
        m_viewport = wp_viewporter_get_viewport(globals.viewporter, surface);
        wp_viewport_set_destination(m_viewport, m_layer->configuredSize().width(),
                                    m_layer->configuredSize().height());
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
    const bool wasVisible = std::exchange(m_isVisible, false);
    m_canvas.reset();
    if (m_viewport && qApp)
        wp_viewport_destroy(std::exchange(m_viewport, nullptr));
    // The role before the surface, which the toolkit takes along when it hides the window.
    m_layer.reset();
    if (wasVisible)
        m_window.setVisible(false);
    if (m_blank && qApp)
        wl_buffer_destroy(std::exchange(m_blank, nullptr));
    m_frozen.reset();
    m_services->shell->connection().flush();
}

void LayerOverlaySurface::makeKey()
{
    if (!m_isVisible) {
        m_wantsKey = true;
        return;
    }
    LayerOverlaySurface *before = std::exchange(m_services->key, this);
    if (before == this || !m_layer)
        return;
    // Of two that want the keyboard, compositors differ in which gets it.
    if (before && before->m_layer)
        before->m_layer->setKeyboard(LayerSurface::Keyboard::none);
    m_layer->setKeyboard(LayerSurface::Keyboard::exclusive);
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
    switch (event->type()) {
    case QEvent::Enter:
        // Nobody could tell before where the pointer is. From there on only a press brings the keys
        // to another screen.
        if (m_screen.displayId && m_services->pointerSeenOn)
            m_services->pointerSeenOn(*m_screen.displayId);
        if (m_isVisible && QGuiApplication::mouseButtons() == Qt::NoButton
            && !std::exchange(m_services->knowsStart, true))
            makeKey();
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
        // Tells the widget that it is on the screen, and nothing to paint: all of it is clear.
        m_isForwarding = true;
        QExposeEvent exposed{QRegion()};
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
LayerOverlayShell::create(std::shared_ptr<WaylandOutputs> outputs,
                          std::function<void(uint32_t displayId)> pointerSeenOn)
{
    auto shell = LayerShell::create();
    if (!shell)
        return nullptr;
    auto canvas = std::make_shared<CanvasGlobals>(WaylandConnection::ofToolkit());
    if (!canvas->isComplete())
        return nullptr;
    return std::unique_ptr<LayerOverlayShell>(
        new LayerOverlayShell(std::make_shared<LayerOverlayServices>(LayerOverlayServices{
            std::move(shell), std::move(canvas), std::move(outputs), std::move(pointerSeenOn)})));
}

std::unique_ptr<OverlaySurface> LayerOverlayShell::create(QWindow &window, const Screen &screen,
                                                          std::shared_ptr<FrozenDisplay> frozen)
{
    return std::make_unique<LayerOverlaySurface>(m_services, window, screen, std::move(frozen));
}

} // namespace tovek
