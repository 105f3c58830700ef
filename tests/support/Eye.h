// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/Pixels.h"
#include "support/XConnection.h"

#include <QImage>
#include <QList>
#include <QRect>
#include <QString>

#include <chrono>
#include <memory>
#include <optional>

namespace tovek {

class ScreenMemory;

/// A window on the screen: a child of the root, with the name and class of the client in it.
struct SeenWindow
{
    xcb_window_t id = 0;
    QRect native;
    bool isUnmanaged = false;
    QString title;
    QString windowClass;
};

/// Sees what a person in front of a test desktop sees. Places are native pixels, y down.
class Eye
{
public:
    explicit Eye(const QString &displayName);
    ~Eye();

    /// The pixels of a part of the screen (all of it by default) as Format_RGB32, without the
    /// mouse pointer. Null when the server cannot tell. Depths 24 and 32 only.
    QImage look(QRect native = {}) const;
    QRgb pixel(QPoint at) const;
    /// Waits until two looks 60 ms apart are alike, and gives that picture; null at the deadline.
    QImage lookWhenStill(QRect native = {},
                         std::chrono::milliseconds deadline = std::chrono::seconds(10)) const;

    /// The visible windows, bottom to top.
    QList<SeenWindow> windows() const;
    /// The unmanaged windows of this class (in either case) that lie over all managed ones, bottom
    /// to top.
    QList<SeenWindow> overlays(const QString &windowClass) const;
    xcb_window_t activeWindow() const;
    QString activeTitle() const;
    xcb_window_t inputFocus() const;
    QPoint pointer() const;
    QSize size() const;

private:
    struct Glance;
    std::optional<SeenWindow> see(const Glance &glance) const;
    QList<xcb_window_t> childrenOf(xcb_window_t window) const;
    QString firstOf(const QList<xcb_window_t> &windows, xcb_atom_t property) const;

    XConnection m_connection;
    std::unique_ptr<ScreenMemory> m_memory; ///< null where the server shares no memory
};

} // namespace tovek
