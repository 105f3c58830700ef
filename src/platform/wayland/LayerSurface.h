// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/SurfaceRole.h"
#include "platform/wayland/WaylandConnection.h"

struct zwlr_layer_shell_v1;
struct zwlr_layer_surface_v1;

namespace tovek {

/// What windows above all others need of the compositor, on the toolkit's connection.
class LayerShell
{
public:
    /// Null where the compositor offers no such windows.
    static std::shared_ptr<LayerShell> create();
    ~LayerShell();

    WaylandConnection &connection() const { return *m_connection; }
    zwlr_layer_shell_v1 *handle() const { return m_handle; }

private:
    explicit LayerShell(std::shared_ptr<WaylandConnection> connection);

    std::shared_ptr<WaylandConnection> m_connection;
    zwlr_layer_shell_v1 *m_handle;
};

/// A window above all others, which no window manager moves or decorates. It is given its size.
class LayerSurface : public SurfaceRole
{
public:
    enum class Panels { areCovered, areLeftFree };
    struct Place
    {
        uint32_t anchors = 15; ///< zwlr_layer_surface_v1.anchor; all four: fills the output
        QSize size{0, 0}; ///< in points; 0 where two anchors decide
        int top = 0, right = 0, bottom = 0, left = 0; ///< margins, in points
        const char *nameSpace = "tovek-overlay"; ///< under which users know it in their rules
        Panels panels = Panels::areCovered;
    };
    /// Null, with one log line, when the compositor does not want it: without an answer for long,
    /// or where nobody manages such windows.
    static std::unique_ptr<LayerSurface> create(std::shared_ptr<LayerShell> shell, QWindow &window,
                                                QScreen *screen, const Place &place);
    ~LayerSurface() override;

    zwlr_layer_surface_v1 *handle() const { return m_handle; }
    void setKeyboard(Keyboard keyboard) override;
    bool canTakeKeyboard() const override { return true; }

private:
    LayerSurface(std::shared_ptr<LayerShell> shell, wl_surface *surface);
    static void configured(void *data, zwlr_layer_surface_v1 *handle, uint32_t serial,
                           uint32_t width, uint32_t height);
    static void closed(void *data, zwlr_layer_surface_v1 *handle);

    std::shared_ptr<LayerShell> m_shell;
    zwlr_layer_surface_v1 *m_handle = nullptr;
    bool m_isConfigured = false;
    bool m_isClosed = false;
};

} // namespace tovek
