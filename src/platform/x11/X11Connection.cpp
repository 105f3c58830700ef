// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/X11Connection.h"

#include "foundation/MainThread.h"
#include "platform/x11/X11Connect.h"

#include <QGuiApplication>

#include <cstring>
#include <xcb/randr.h>

namespace tovek {

namespace {

constexpr std::array<const char *, size_t(X11Atom::count)> atomNames{
    "ACTIVATE",
    "_NET_ACTIVE_WINDOW",
    "_NET_CLIENT_LIST",
    "_COMPTON_SHADOW",
    "_KDE_NET_WM_SKIP_CLOSE_ANIMATION",
    "LOCK",
    "_NET_CURRENT_DESKTOP",
    "_GTK_FRAME_EXTENTS",
    "SCREENSAVER",
    "_SCREENSAVER_VERSION",
    "_NET_SUPPORTING_WM_CHECK",
    "SUSPEND",
    "UTF8_STRING",
    "_NET_WM_DESKTOP",
    "_NET_WM_PID",
    "_NET_WM_STATE",
    "_NET_WM_STATE_SKIP_PAGER",
    "_NET_WM_STATE_SKIP_TASKBAR",
    "_NET_WM_STRUT_PARTIAL",
    "_NET_WORKAREA",
};

const xcb_visualtype_t *findVisual(const xcb_screen_t &screen, xcb_visualid_t id)
{
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem;
         xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem;
             xcb_visualtype_next(&visual)) {
            if (visual.data->visual_id == id)
                return visual.data;
        }
    }
    return nullptr;
}

xcb_gcontext_t createGc(xcb_connection_t *connection, xcb_window_t root, uint32_t subwindowMode)
{
    const xcb_gcontext_t gc = xcb_generate_id(connection);
    const uint32_t values[]{subwindowMode, 0};
    xcb_create_gc(connection, gc, root, XCB_GC_SUBWINDOW_MODE | XCB_GC_GRAPHICS_EXPOSURES, values);
    return gc;
}

std::optional<X11RenderFormats> queryRenderFormats(xcb_connection_t *connection,
                                                   xcb_visualid_t rootVisual)
{
    const xcb_query_extension_reply_t *extension =
        xcb_get_extension_data(connection, &xcb_render_id);
    if (!extension || !extension->present)
        return std::nullopt;
    const auto version = xcb_render_query_version(connection, 0, 11);
    const auto query = xcb_render_query_pict_formats(connection);
    const X11Reply<xcb_render_query_version_reply_t> agreed(
        xcb_render_query_version_reply(connection, version, nullptr));
    const X11Reply<xcb_render_query_pict_formats_reply_t> reply(
        xcb_render_query_pict_formats_reply(connection, query, nullptr));
    if (!reply)
        return std::nullopt;

    X11RenderFormats formats;
    for (auto format = xcb_render_query_pict_formats_formats_iterator(reply.get()); format.rem;
         xcb_render_pictforminfo_next(&format)) {
        const xcb_render_directformat_t &direct = format.data->direct;
        if (format.data->depth == 32 && direct.alpha_shift == 24 && direct.alpha_mask == 0xff
            && direct.red_shift == 16 && direct.green_shift == 8 && direct.blue_shift == 0)
            formats.argb32 = format.data->id;
    }
    for (auto screen = xcb_render_query_pict_formats_screens_iterator(reply.get()); screen.rem;
         xcb_render_pictscreen_next(&screen)) {
        for (auto depth = xcb_render_pictscreen_depths_iterator(screen.data); depth.rem;
             xcb_render_pictdepth_next(&depth)) {
            for (auto visual = xcb_render_pictdepth_visuals_iterator(depth.data); visual.rem;
                 xcb_render_pictvisual_next(&visual)) {
                if (visual.data->visual == rootVisual)
                    formats.root = visual.data->format;
            }
        }
    }
    return formats.root && formats.argb32 ? std::optional(formats) : std::nullopt;
}

} // namespace

std::shared_ptr<X11Connection> X11Connection::create()
{
    const auto *application =
        qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (!application || !application->connection())
        return nullptr;
    std::shared_ptr<X11Connection> connection(
        new X11Connection(application->connection(), Ownership::toolkit));
    return connection->isUsable() ? connection : nullptr;
}

std::shared_ptr<X11Connection> X11Connection::open()
{
    xcb_connection_t *xcb = x11Connect();
    if (xcb_connection_has_error(xcb)) {
        xcb_disconnect(xcb);
        return nullptr;
    }
    std::shared_ptr<X11Connection> connection(new X11Connection(xcb, Ownership::own));
    return connection->isUsable() ? connection : nullptr;
}

X11Connection::X11Connection(xcb_connection_t *connection, Ownership ownership)
    : m_connection(connection)
    , m_ownership(ownership)
{
    xcb_prefetch_extension_data(connection, &xcb_randr_id);
    xcb_prefetch_extension_data(connection, &xcb_render_id);
    std::array<xcb_intern_atom_cookie_t, size_t(X11Atom::count)> cookies;
    for (size_t i = 0; i < atomNames.size(); ++i) {
        const auto length = uint16_t(std::strlen(atomNames[i]));
        cookies[i] = xcb_intern_atom(connection, 0, length, atomNames[i]);
    }
    for (size_t i = 0; i < atomNames.size(); ++i) {
        const X11Reply<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(connection, cookies[i], nullptr));
        m_atoms[i] = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    }

    // The toolkit shows everything on one X screen; the first is the only one servers have today.
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    m_visual = m_screen ? findVisual(*m_screen, m_screen->root_visual) : nullptr;
    if (!isUsable())
        return;
    m_copyGc = createGc(connection, root(), XCB_SUBWINDOW_MODE_CLIP_BY_CHILDREN);
    m_snapshotGc = createGc(connection, root(), XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS);
    const xcb_query_extension_reply_t *randr = xcb_get_extension_data(connection, &xcb_randr_id);
    if (randr && randr->present)
        m_randrEvents = randr->first_event;
}

X11Connection::~X11Connection()
{
    Q_ASSERT(isMainThread());
    if (m_ownership == Ownership::own) {
        xcb_disconnect(m_connection);
        return;
    }
    if (!xcb() || !isUsable())
        return;
    xcb_free_gc(m_connection, m_copyGc);
    xcb_free_gc(m_connection, m_snapshotGc);
}

xcb_connection_t *X11Connection::xcb() const
{
    return m_ownership == Ownership::own || qGuiApp ? m_connection : nullptr;
}

const std::optional<X11RenderFormats> &X11Connection::renderFormats()
{
    if (!m_hasAskedRender) {
        m_hasAskedRender = true;
        m_render = queryRenderFormats(m_connection, m_screen->root_visual);
    }
    return m_render;
}

void X11Connection::flush() const
{
    Q_ASSERT(isMainThread());
    if (xcb_connection_t *connection = xcb())
        xcb_flush(connection);
}

void X11Connection::settle() const
{
    if (xcb_connection_t *connection = xcb())
        X11Reply<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

void X11Connection::read() const
{
    Q_ASSERT(isMainThread());
    if (m_ownership == Ownership::own)
        X11Reply<xcb_generic_event_t>(xcb_poll_for_event(m_connection));
    dropEvents();
}

void X11Connection::dropEvents() const
{
    if (m_ownership == Ownership::toolkit)
        return;
    while (X11Reply<xcb_generic_event_t>(xcb_poll_for_queued_event(m_connection)))
        ;
}

QString x11ErrorText(const xcb_generic_error_t &error)
{
    QString reason = QStringLiteral("refused by the X server");
    if (error.error_code == XCB_ALLOC)
        reason = QStringLiteral("the X server is out of memory");
    else if (error.error_code == XCB_DRAWABLE || error.error_code == XCB_PIXMAP)
        reason = QStringLiteral("the pixels are gone from the X server");
    return QStringLiteral("%1 (error %2, request %3)")
        .arg(reason)
        .arg(error.error_code)
        .arg(error.major_code);
}

} // namespace tovek
