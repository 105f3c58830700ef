// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/X11Reply.h"

#include <QString>

#include <array>
#include <memory>
#include <optional>
#include <xcb/render.h>
#include <xcb/xcb.h>

namespace tovek {

enum class X11Atom {
    activate, ///< this, `lock` and `suspend` are xscreensaver's
    activeWindow,
    clientList,
    comptonShadow,
    kdeSkipCloseAnimation,
    lock,
    currentDesktop,
    gtkFrameExtents,
    screenSaver,
    screenSaverVersion,
    supportingWmCheck,
    suspend,
    utf8String,
    wmDesktop,
    wmPid,
    wmState,
    wmStateSkipPager,
    wmStateSkipTaskbar,
    wmStrutPartial,
    workArea,
    count
};

/// The picture formats that drawing on the server needs.
struct X11RenderFormats
{
    xcb_render_pictformat_t root = 0; ///< of the root window's visual
    xcb_render_pictformat_t argb32 = 0; ///< premultiplied, depth 32
};

/// The connection that the toolkit's windows live on, or one of our own, and what the services
/// share about it. Main thread only.
class X11Connection
{
public:
    /// The toolkit's: requests made here stay in order with its own. Null where it does not run on
    /// an X server.
    static std::shared_ptr<X11Connection> create();
    /// Another one. Whoever waits for an answer on the toolkit's waits for the thread in which it
    /// reads as well, which costs more than most questions. Nobody reads this one's events. Null
    /// where the server takes no more clients.
    static std::shared_ptr<X11Connection> open();
    ~X11Connection();

    /// Null once the application has gone, and the toolkit's connection with it.
    xcb_connection_t *xcb() const;
    const xcb_screen_t &screen() const { return *m_screen; }
    xcb_window_t root() const { return m_screen->root; }
    const xcb_visualtype_t &rootVisual() const { return *m_visual; }
    xcb_atom_t atom(X11Atom which) const { return m_atoms[size_t(which)]; }
    /// Copies between drawables of the root's depth, without an event for each copy.
    xcb_gcontext_t copyGc() const { return m_copyGc; }
    /// The same, reading windows together with what lies on them.
    xcb_gcontext_t snapshotGc() const { return m_snapshotGc; }
    /// The first event number of RandR; 0 without the extension.
    int randrEvents() const { return m_randrEvents; }
    /// Absent where the server cannot composite. Asks the server the first time only.
    const std::optional<X11RenderFormats> &renderFormats();
    void flush() const;
    /// Returns when the server has dealt with all requests so far, so that what follows on another
    /// connection comes after them.
    void settle() const;
    /// Reads what has come, without waiting. For one of our own, which nobody else reads.
    void read() const;
    /// Drops what has been read but answers: nobody asked for events, and errors are of requests
    /// whose drawables went away meanwhile. Nothing on the toolkit's connection.
    void dropEvents() const;

private:
    enum class Ownership { toolkit, own };
    X11Connection(xcb_connection_t *connection, Ownership ownership);
    bool isUsable() const { return m_screen && m_visual; }

    xcb_connection_t *m_connection;
    Ownership m_ownership;
    const xcb_screen_t *m_screen = nullptr;
    const xcb_visualtype_t *m_visual = nullptr;
    std::array<xcb_atom_t, size_t(X11Atom::count)> m_atoms{};
    xcb_gcontext_t m_copyGc = 0;
    xcb_gcontext_t m_snapshotGc = 0;
    int m_randrEvents = 0;
    bool m_hasAskedRender = false;
    std::optional<X11RenderFormats> m_render;
};

/// "the X server is out of memory (error 11, request 53)".
QString x11ErrorText(const xcb_generic_error_t &error);

} // namespace tovek
