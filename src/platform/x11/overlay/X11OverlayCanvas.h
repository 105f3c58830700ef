// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/capture/X11Pixmap.h"
#include "platform/x11/overlay/X11DecalCache.h"

#include <QRegion>

namespace tovek {

/// Draws display lists over a frozen display into a window, inside the server: no pixel and no
/// answer passes between the processes, so the cost here does not depend on the resolution.
///
/// What the window shows is composed in a pixmap first and copied from there, which keeps
/// half-drawn states off the screen. That pixmap is the window's background too, so that the
/// server repairs whatever becomes uncovered by itself.
class X11OverlayCanvas
{
public:
    /// `frozen` is the window's background so far. It and the window belong to `toolkit`, which
    /// also brings what child widgets paint; the drawing goes by the other connection.
    X11OverlayCanvas(std::shared_ptr<X11Connection> toolkit, std::shared_ptr<X11Connection> drawing,
                     xcb_window_t window, std::shared_ptr<X11Pixmap> frozen);
    ~X11OverlayCanvas();
    X11OverlayCanvas(const X11OverlayCanvas &) = delete;
    X11OverlayCanvas &operator=(const X11OverlayCanvas &) = delete;

    /// Where the composed picture goes; without it a pixmap is made when it is needed first.
    void setComposed(std::shared_ptr<X11Pixmap> pixmap);
    /// False when the window shows the same already. The requests are not sent yet, so that
    /// what follows a frame goes with it.
    bool present(const DisplayList &list);
    /// The window's pixels in here are somebody else's.
    void setCovered(const QRegion &region);
    /// Copies what was presented last into the window again.
    void repair(const QRegion &region);

private:
    void compose(const DisplayList &list, const QRegion &damage);
    void composeBackdrop(const DisplayList &list, const QRegion &damage);
    void composeItem(const DisplayList::Item &item, const QRegion &damage);
    /// Fills of one colour that follow each other go as one request.
    void composeFill(QRgb color, QRect bounds);
    void composePendingFills();
    void composeDecal(const DisplayList::Decal &decal, QRect bounds);
    void copy(const std::shared_ptr<X11Pixmap> &from, xcb_drawable_t to, const QRegion &region);
    xcb_render_picture_t createPicture(xcb_drawable_t drawable);

    std::shared_ptr<X11Connection> m_toolkit;
    std::shared_ptr<X11Connection> m_connection; ///< for the drawing
    xcb_window_t m_window;
    std::shared_ptr<X11Pixmap> m_frozen;
    std::shared_ptr<X11Pixmap> m_composed;
    xcb_render_picture_t m_composedPicture = 0;
    bool m_isComposed = false; ///< the composed pixmap holds what was presented
    X11DecalCache m_decals;
    std::vector<xcb_rectangle_t> m_fills; ///< to be composed, in `m_fillColor`
    QRgb m_fillColor = 0;
    DisplayList m_shown;
    QRegion m_covered;
};

} // namespace tovek
