// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/SurfaceRole.h"
#include "platform/wayland/WaylandConnection.h"

struct xdg_surface;
struct xdg_toplevel;
struct xdg_wm_base;

namespace tovek {

/// What ordinary windows need of the compositor, on the toolkit's connection.
class WindowShell
{
public:
    /// Null where the toolkit runs on something else.
    static std::shared_ptr<WindowShell> create();
    ~WindowShell();
    WindowShell(const WindowShell &) = delete;
    WindowShell &operator=(const WindowShell &) = delete;

    WaylandConnection &connection() const { return *m_connection; }
    xdg_wm_base *handle() const { return m_handle; }

private:
    explicit WindowShell(std::shared_ptr<WaylandConnection> connection);

    std::shared_ptr<WaylandConnection> m_connection;
    xdg_wm_base *m_handle;
};

/// A window that fills an output, above its panels, as any program may have one: for compositors
/// that let nobody lie above all others. They give it the keyboard or not, and may show it with an
/// animation.
class FullScreenSurface : public SurfaceRole
{
public:
    /// `points` is how large the window should be on this screen. Null, with one log line, when the
    /// compositor does not answer for long.
    static std::unique_ptr<FullScreenSurface>
    create(std::shared_ptr<WindowShell> shell, QWindow &window, QScreen *screen, QSize points);
    ~FullScreenSurface() override;

    void setKeyboard(Keyboard) override { }
    bool canTakeKeyboard() const override { return false; }

private:
    FullScreenSurface(std::shared_ptr<WindowShell> shell, wl_surface *surface);
    void open(const QWindow &window, QScreen *screen);
    void bringOver(QScreen *screen, QSize points);
    void showNothing();
    bool isSizeKnown() const { return !configuredSize().isEmpty(); }

    std::shared_ptr<WindowShell> m_shell;
    xdg_surface *m_handle = nullptr;
    xdg_toplevel *m_window = nullptr;
    QSize m_announced; ///< until the end of what is announced together
    bool m_hasAnswered = false;
    WaylandPtr<wl_buffer, wl_buffer_destroy> m_nothing;
};

} // namespace tovek
