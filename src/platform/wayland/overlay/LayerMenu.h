// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/FullScreenSurface.h"
#include "platform/wayland/LayerSurface.h"

struct xdg_popup;
struct xdg_surface;

namespace tovek {

/// What menus need of the compositor, on the toolkit's connection.
struct MenuGlobals
{
    explicit MenuGlobals(std::shared_ptr<LayerShell> shell);
    ~MenuGlobals();

    std::shared_ptr<LayerShell> shell;
    std::shared_ptr<WindowShell> windows; ///< null where there is none
    wl_seat *seat;
};

/// Makes a window of the toolkit, made with Qt::BypassWindowManagerHint and not shown, a menu that
/// opens from a surface of the layer shell, and closes when the user clicks elsewhere. The toolkit
/// itself knows menus of its own kinds of windows only. Must go before the window is hidden.
class LayerMenu
{
public:
    /// Null when the compositor does not want it.
    static std::unique_ptr<LayerMenu> create(std::shared_ptr<MenuGlobals> globals,
                                             const LayerSurface &parent, QWindow &menu,
                                             QSize points);
    ~LayerMenu();

    std::function<void()> onDismissed;

private:
    explicit LayerMenu(std::shared_ptr<MenuGlobals> globals) : m_globals(std::move(globals)) { }
    void open(const LayerSurface &parent, wl_surface *surface, QSize points);

    std::shared_ptr<MenuGlobals> m_globals;
    xdg_surface *m_surface = nullptr;
    xdg_popup *m_popup = nullptr;
    bool m_isConfigured = false;
    bool m_isDismissed = false;
};

} // namespace tovek
