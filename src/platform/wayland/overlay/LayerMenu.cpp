// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/overlay/LayerMenu.h"

#include "wlr-layer-shell-unstable-v1-client.h"
#include "xdg-shell-client.h"

#include <QGuiApplication>
#include <QWindow>
#include <qpa/qplatformnativeinterface.h>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto menuAnswerLimit = 1s;
constexpr int gap = 5; // points between the surface and its menu

/// Of the press or release that the menu is opened by.
uint32_t lastSerial()
{
    return uint32_t(quintptr(
        QGuiApplication::platformNativeInterface()->nativeResourceForIntegration("serial")));
}

xdg_positioner *placeBelow(xdg_wm_base *windows, QSize parent, QSize menu)
{
    xdg_positioner *place = xdg_wm_base_create_positioner(windows);
    xdg_positioner_set_size(place, menu.width(), menu.height());
    xdg_positioner_set_anchor_rect(place, 0, 0, parent.width(), parent.height() + gap);
    xdg_positioner_set_anchor(place, XDG_POSITIONER_ANCHOR_BOTTOM_RIGHT);
    xdg_positioner_set_gravity(place, XDG_POSITIONER_GRAVITY_BOTTOM_LEFT);
    xdg_positioner_set_constraint_adjustment(place,
                                             XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_SLIDE_X
                                                 | XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_FLIP_Y
                                                 | XDG_POSITIONER_CONSTRAINT_ADJUSTMENT_SLIDE_Y);
    return place;
}

} // namespace

MenuGlobals::MenuGlobals(std::shared_ptr<LayerShell> layerShell)
    : shell(std::move(layerShell))
    , windows(WindowShell::create())
    , seat(shell->connection().bind<wl_seat>(wl_seat_interface, 1))
{
    if (seat)
        shell->connection().adopt(seat);
}

MenuGlobals::~MenuGlobals()
{
    if (seat && qApp) // else the toolkit has closed the connection
        wl_seat_destroy(seat);
}

std::unique_ptr<LayerMenu> LayerMenu::create(std::shared_ptr<MenuGlobals> globals,
                                             const LayerSurface &parent, QWindow &menu,
                                             QSize points)
{
    menu.create();
    wl_surface *surface = surfaceOf(menu);
    if (!surface || !globals->windows || !globals->seat)
        return nullptr;
    std::unique_ptr<LayerMenu> opened(new LayerMenu(std::move(globals)));
    opened->open(parent, surface, points);
    opened->m_globals->shell->connection().waitFor(
        [&] { return opened->m_isConfigured || opened->m_isDismissed; }, menuAnswerLimit);
    if (!opened->m_isConfigured || opened->m_isDismissed)
        return nullptr;
    opened->m_globals->shell->connection().adopt(opened->m_surface);
    opened->m_globals->shell->connection().adopt(opened->m_popup);
    return opened;
}

void LayerMenu::open(const LayerSurface &parent, wl_surface *surface, QSize points)
{
    // What is made of a wrapper is handled while its answer is waited for.
    WaylandConnection &connection = m_globals->shell->connection();
    auto *windows = connection.waitable(m_globals->windows->handle());
    m_surface = xdg_wm_base_get_xdg_surface(windows, surface);
    xdg_positioner *place = placeBelow(windows, parent.configuredSize(), points);
    wl_proxy_wrapper_destroy(windows);
    static constexpr xdg_surface_listener surfaceListener{
        [](void *data, xdg_surface *configured, uint32_t serial) {
            xdg_surface_ack_configure(configured, serial);
            static_cast<LayerMenu *>(data)->m_isConfigured = true;
        }};
    xdg_surface_add_listener(m_surface, &surfaceListener, this);
    m_popup = xdg_surface_get_popup(m_surface, nullptr, place);
    xdg_positioner_destroy(place);
    static constexpr xdg_popup_listener popupListener{
        [](void *, xdg_popup *, int32_t, int32_t, int32_t, int32_t) {},
        [](void *data, xdg_popup *) {
            auto &self = *static_cast<LayerMenu *>(data);
            self.m_isDismissed = true;
            if (self.onDismissed)
                self.onDismissed();
        }};
    xdg_popup_add_listener(m_popup, &popupListener, this);
    zwlr_layer_surface_v1_get_popup(parent.handle(), m_popup);
    xdg_popup_grab(m_popup, m_globals->seat, lastSerial());
    wl_surface_commit(surface);
}

LayerMenu::~LayerMenu()
{
    if (!qApp)
        return;
    if (m_popup)
        xdg_popup_destroy(m_popup);
    if (m_surface)
        xdg_surface_destroy(m_surface);
    m_globals->shell->connection().flush();
}

} // namespace tovek
