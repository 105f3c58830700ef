// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/overlay/X11ToastShell.h"

#include "platform/x11/QtXcb.h"
#include "platform/x11/X11Reply.h"
#include "platform/x11/X11Requests.h"

#include <QDeadlineTimer>
#include <QThread>

#include <xcb/shape.h>

namespace tovek {

namespace {

/// How long a compositing manager gets to repaint the screen without the toast.
constexpr int repaintDeadlineMs = 60;

xcb_visualid_t visualOfDepth(int depth)
{
    for (auto d = xcb_screen_allowed_depths_iterator(QtXcb::screen()); d.rem; xcb_depth_next(&d)) {
        if (d.data->depth != depth)
            continue;
        for (auto v = xcb_depth_visuals_iterator(d.data); v.rem; xcb_visualtype_next(&v)) {
            if (v.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR)
                return v.data->visual_id;
        }
    }
    return 0;
}

void roundTrip()
{
    xcb_connection_t *c = QtXcb::connection();
    const X11Reply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
}

class X11ToastWindow : public ToastWindow
{
public:
    X11ToastWindow(QRect native, const QString &title, xcb_visualid_t blendingVisual)
        : m_connection(QtXcb::connection())
        , m_native(native)
        , m_blends(blendingVisual != 0)
        , m_depth(m_blends ? 32 : QtXcb::screen()->root_depth)
    {
        xcb_screen_t *screen = QtXcb::screen();
        const xcb_visualid_t visual = m_blends ? blendingVisual : screen->root_visual;
        m_colormap = xcb_generate_id(m_connection);
        xcb_create_colormap(m_connection, XCB_COLORMAP_ALLOC_NONE, m_colormap, screen->root,
                            visual);
        m_window = xcb_generate_id(m_connection);
        // An opaque window starts with what the screen shows in its place: it has no background.
        const uint32_t mask = (m_blends ? XCB_CW_BACK_PIXEL : XCB_CW_BACK_PIXMAP)
            | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_COLORMAP;
        const uint32_t values[]{0, 0, 1, m_colormap};
        xcb_create_window(m_connection, uint8_t(m_depth), m_window, screen->root,
                          int16_t(native.x()), int16_t(native.y()), uint16_t(native.width()),
                          uint16_t(native.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual, mask,
                          values);
        m_gc = xcb_generate_id(m_connection);
        xcb_create_gc(m_connection, m_gc, m_window, 0, nullptr);
        m_content = xcb_generate_id(m_connection);
        xcb_create_pixmap(m_connection, uint8_t(m_depth), m_content, m_window,
                          uint16_t(native.width()), uint16_t(native.height()));
        xcb_shape_rectangles(m_connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT,
                             XCB_CLIP_ORDERING_UNSORTED, m_window, 0, 0, 0, nullptr);
        describe(title.toUtf8());
    }

    ~X11ToastWindow() override
    {
        xcb_destroy_window(m_connection, m_window);
        xcb_free_pixmap(m_connection, m_content);
        xcb_free_gc(m_connection, m_gc);
        xcb_free_colormap(m_connection, m_colormap);
        xcb_flush(m_connection);
    }

    void orderFront() override
    {
        const uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(m_connection, m_window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
        xcb_map_window(m_connection, m_window);
        // What was drawn before the window was mapped is lost.
        put();
    }

    void present(const QImage &picture) override
    {
        m_picture = QtXcb::inDepth(picture, m_depth).value_or(QImage());
        put();
    }

    void vanish(const QImage &empty) override
    {
        if (m_blends)
            vanishFromComposite(empty);
        else
            vanishFromScreen(empty);
        roundTrip();
    }

private:
    void put()
    {
        // As the background, which the server paints again where another window had covered it.
        if (!m_picture.isNull()) {
            x11PutImage(QtXcb::connection(), m_content, m_gc, m_depth, m_picture);
            xcb_change_window_attributes(m_connection, m_window, XCB_CW_BACK_PIXMAP, &m_content);
            xcb_clear_area(m_connection, 0, m_window, 0, 0, 0, 0);
        }
        xcb_flush(m_connection);
    }

    /// The compositing manager shows the change a frame later; until then a picture of the screen
    /// would still show the toast. The window is emptied first, because a manager may keep showing
    /// the last content of a window that is gone, to fade it out.
    void vanishFromComposite(const QImage &empty)
    {
        const QImage before = QtXcb::pixels(QtXcb::screen()->root, m_native);
        present(empty);
        const QDeadlineTimer deadline(repaintDeadlineMs);
        while (QtXcb::pixels(QtXcb::screen()->root, m_native) == before && !deadline.hasExpired())
            QThread::msleep(1);
        xcb_unmap_window(m_connection, m_window);
    }

    /// Without a compositing manager the place of the window shows background until the programs
    /// below have painted it again. It is filled at once with what they showed before.
    void vanishFromScreen(const QImage &empty)
    {
        const xcb_window_t root = QtXcb::screen()->root;
        const xcb_gcontext_t gc = xcb_generate_id(m_connection);
        const uint32_t mode = XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS;
        xcb_create_gc(m_connection, gc, root, XCB_GC_SUBWINDOW_MODE, &mode);
        const xcb_pixmap_t below = xcb_generate_id(m_connection);
        xcb_create_pixmap(m_connection, uint8_t(m_depth), below, root, uint16_t(m_native.width()),
                          uint16_t(m_native.height()));
        if (const auto picture = QtXcb::inDepth(empty, m_depth))
            x11PutImage(QtXcb::connection(), below, m_gc, m_depth, *picture);
        xcb_unmap_window(m_connection, m_window);
        xcb_copy_area(m_connection, below, root, gc, 0, 0, int16_t(m_native.x()),
                      int16_t(m_native.y()), uint16_t(m_native.width()),
                      uint16_t(m_native.height()));
        xcb_free_pixmap(m_connection, below);
        xcb_free_gc(m_connection, gc);
    }

    void describe(const QByteArray &title)
    {
        const auto set = [this](const char *name, xcb_atom_t type, uint8_t format, uint32_t count,
                                const void *data) {
            xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, QtXcb::atom(name),
                                type, format, count, data);
        };
        const xcb_atom_t type = QtXcb::atom("_NET_WM_WINDOW_TYPE_NOTIFICATION");
        set("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, 32, 1, &type);
        for (const char *name : {"_NET_WM_NAME", "WM_NAME"}) {
            set(name, QtXcb::atom("UTF8_STRING"), 8, uint32_t(title.size()), title.constData());
        }
        // Two names, each with its end. NOLINTNEXTLINE(bugprone-string-literal-with-embedded-nul)
        set("WM_CLASS", XCB_ATOM_STRING, 8, 12, "tovek\0tovek");
        const uint32_t none = 0;
        const uint32_t yes = 1;
        // The picture has its own shadow: picom and compton would add another one.
        set("_COMPTON_SHADOW", XCB_ATOM_CARDINAL, 32, 1, &none);
        // KWin would fade out the last content.
        set("_KDE_NET_WM_SKIP_CLOSE_ANIMATION", XCB_ATOM_CARDINAL, 32, 1, &yes);
    }

    xcb_connection_t *m_connection;
    QRect m_native;
    bool m_blends;
    int m_depth;
    xcb_window_t m_window = 0;
    xcb_colormap_t m_colormap = 0;
    xcb_gcontext_t m_gc = 0;
    xcb_pixmap_t m_content = 0;
    QImage m_picture;
};

} // namespace

std::unique_ptr<ToastShell> X11ToastShell::create()
{
    return QtXcb::connection() ? std::make_unique<X11ToastShell>() : nullptr;
}

std::unique_ptr<ToastWindow> X11ToastShell::create(QRect native, const QString &title)
{
    return std::make_unique<X11ToastWindow>(native, title, blends() ? visualOfDepth(32) : 0);
}

bool X11ToastShell::blends() const
{
    return QtXcb::selectionOwner(QtXcb::atom("_NET_WM_CM_S0")) != XCB_WINDOW_NONE
        && visualOfDepth(32) != 0;
}

QImage X11ToastShell::pixelsBelow(QRect native)
{
    return QtXcb::pixels(QtXcb::screen()->root, native);
}

} // namespace tovek
