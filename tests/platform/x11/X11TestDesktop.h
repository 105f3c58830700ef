// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>
#include <QProcess>

#include <xcb/xcb.h>

namespace tovek {

/// A private X server with a desktop that no black rectangle could be mistaken for: noise and a
/// grid on the root window, and a window of another client on top of it.
class X11TestDesktop
{
public:
    ~X11TestDesktop();
    /// False when there is no Xvfb. `depth`: 16, 24 or 30.
    bool start(QSize size, int depth);
    QByteArray displayName() const { return m_displayName; }
    /// The other client's connection.
    xcb_connection_t *client() const { return m_client; }
    const xcb_screen_t &screen() const { return *m_screen; }
    xcb_window_t window() const { return m_window; }
    /// Adds a monitor; the geometry is one of `xrandr --setmonitor`. With the output "screen" it
    /// takes the place of the monitor that is the whole screen.
    bool setMonitor(const QString &name, const QString &geometry,
                    const QString &output = QStringLiteral("none"));
    bool removeMonitor(const QString &name);

    /// What is on the screen now, as RGB32 decoded here, independently of the program.
    QImage look(QRect rect) const;
    QImage look() const;
    void fill(xcb_window_t window, QRect rect, quint32 pixel);
    /// Maps an unmanaged window of the other client, of this number if one is given.
    xcb_window_t openWindow(QRect rect, quint32 pixel, xcb_window_t number = 0);
    void sync() const;
    /// Resident bytes of the server's process.
    qint64 serverMemory() const;

private:
    void paint();
    bool xrandr(const QStringList &arguments);

    QProcess m_server;
    QByteArray m_displayName;
    xcb_connection_t *m_client = nullptr;
    const xcb_screen_t *m_screen = nullptr;
    xcb_window_t m_window = 0;
    QSize m_size;
};

} // namespace tovek
