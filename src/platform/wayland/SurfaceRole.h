// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QSize>

#include <functional>

class QScreen;
class QWindow;
struct wl_output;
struct wl_surface;

namespace tovek {

/// What a window of the toolkit is to the compositor, where we say so and not the toolkit. The
/// window must have been created with Qt::BypassWindowManagerHint and not been shown; it must be
/// shown only once it has its role, and hidden after that has gone. Main thread only.
///
/// It works because the toolkit (Qt 6.4 to 6.11) gives such windows a surface without a role, where
/// QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT is in the environment from its start on.
class SurfaceRole
{
public:
    virtual ~SurfaceRole() = default;
    wl_surface *surface() const { return m_surface; }
    /// In points, as the compositor wants it.
    QSize configuredSize() const { return m_configured; }
    enum class Keyboard { none, exclusive };
    virtual void setKeyboard(Keyboard keyboard) = 0;
    /// False where the compositor decides by itself whether the window gets the keyboard.
    virtual bool canTakeKeyboard() const = 0;

    /// The compositor took it away.
    std::function<void()> onClosed;
    std::function<void(QSize)> onConfigured;

protected:
    explicit SurfaceRole(wl_surface *surface) : m_surface(surface) { }
    void setConfiguredSize(QSize size)
    {
        m_configured = size;
        if (onConfigured)
            onConfigured(size);
    }

private:
    wl_surface *m_surface;
    QSize m_configured;
};

/// The surface of a window of the toolkit; null before it is created.
wl_surface *surfaceOf(QWindow &window);
/// The output that the toolkit has for one of its screens; null for no screen.
wl_output *outputOf(QScreen *screen);

} // namespace tovek
