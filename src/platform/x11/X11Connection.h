// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QRect>
#include <QString>

#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <xcb/render.h>
#include <xcb/xcb.h>

namespace tovek {

struct X11Free
{
    void operator()(void *memory) const { std::free(memory); }
};
/// What the xcb_..._reply functions return; null on an error.
template <typename T>
using X11Reply = std::unique_ptr<T, X11Free>;

enum class X11Atom {
    activeWindow,
    clientList,
    comptonShadow,
    currentDesktop,
    supportingWmCheck,
    utf8String,
    wmDesktop,
    wmPid,
    wmState,
    wmStateSkipPager,
    wmStateSkipTaskbar,
    wmStrut,
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

/// The connection that the toolkit's windows live on, and what the services share about it:
/// requests made here stay in order with the toolkit's own. Main thread only.
class X11Connection
{
public:
    /// Null where the toolkit does not run on an X server.
    static std::shared_ptr<X11Connection> create();
    ~X11Connection();

    /// Null once the application has gone, and its connection with it.
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

private:
    explicit X11Connection(xcb_connection_t *connection);
    bool isUsable() const { return m_screen && m_visual; }

    xcb_connection_t *m_connection;
    const xcb_screen_t *m_screen = nullptr;
    const xcb_visualtype_t *m_visual = nullptr;
    std::array<xcb_atom_t, size_t(X11Atom::count)> m_atoms{};
    xcb_gcontext_t m_copyGc = 0;
    xcb_gcontext_t m_snapshotGc = 0;
    int m_randrEvents = 0;
    bool m_hasAskedRender = false;
    std::optional<X11RenderFormats> m_render;
};

/// A drawable of the root's depth in the server; freed with the object. Main thread only.
class X11Pixmap
{
public:
    X11Pixmap(std::shared_ptr<X11Connection> connection, QSize size);
    ~X11Pixmap();
    X11Pixmap(const X11Pixmap &) = delete;
    X11Pixmap &operator=(const X11Pixmap &) = delete;

    xcb_pixmap_t id() const { return m_id; }
    QSize size() const { return m_size; }
    /// A readable reason when the server refused; empty when the pixmap exists. The first call
    /// waits for the server's answer, unless it has come already.
    QString error();

private:
    std::shared_ptr<X11Connection> m_connection;
    xcb_pixmap_t m_id = 0;
    QSize m_size;
    std::optional<xcb_void_cookie_t> m_creation;
    QString m_error;
};

/// Copies a rectangle, windows together with what lies on them. What the server says about it is
/// not asked for: a drawable that could not be made has told so itself.
void x11Copy(const X11Connection &connection, xcb_drawable_t from, xcb_drawable_t to, QRect rect,
             QPoint at);

/// "the X server is out of memory (error 11, request 53)".
QString x11ErrorText(const xcb_generic_error_t &error);

} // namespace tovek
