// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/keys/X11ScreenLock.h"

#include "platform/x11/X11Reply.h"

#include <QRect>

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>
#include <xcb/randr.h>
#include <xcb/shape.h>
#include <xcb/xcb.h>

namespace tovek {

namespace {

/// xsecurelock 1.5.1 leaves the outermost pixels free below what it composes.
constexpr int missingEdge = 2;

/// False for the window that a compositing manager draws on: it lies over everything, but clicks
/// fall through it.
bool takesInput(xcb_connection_t *connection, xcb_window_t window)
{
    const X11Reply<xcb_shape_get_rectangles_reply_t> shape(xcb_shape_get_rectangles_reply(
        connection, xcb_shape_get_rectangles(connection, window, XCB_SHAPE_SK_INPUT), nullptr));
    return !shape || shape->rectangles_len > 0;
}

xcb_atom_t atom(xcb_connection_t *connection, std::string_view name)
{
    const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, true, uint16_t(name.size()), name.data()),
        nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

/// True for what comes by itself, even above a locker.
bool isNotification(xcb_connection_t *connection, xcb_window_t window)
{
    const xcb_atom_t type = atom(connection, "_NET_WM_WINDOW_TYPE");
    const xcb_atom_t notification = atom(connection, "_NET_WM_WINDOW_TYPE_NOTIFICATION");
    if (type == XCB_ATOM_NONE || notification == XCB_ATOM_NONE)
        return false;
    const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, window, type, XCB_ATOM_ATOM, 0, 16), nullptr));
    if (!reply || reply->format != 32)
        return false;
    const auto *first = static_cast<const xcb_atom_t *>(xcb_get_property_value(reply.get()));
    return std::find(first, first + reply->value_len, notification) != first + reply->value_len;
}

struct Viewable
{
    QRect rect;
    bool isSeen = true; ///< false for a window that only takes input
};

std::optional<Viewable> viewable(xcb_connection_t *connection, xcb_window_t window)
{
    const auto attributesCookie = xcb_get_window_attributes(connection, window);
    const auto geometryCookie = xcb_get_geometry(connection, window);
    const X11Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection, attributesCookie, nullptr));
    const X11Reply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection, geometryCookie, nullptr));
    if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
        return std::nullopt;
    return Viewable{QRect(geometry->x, geometry->y, geometry->width, geometry->height),
                    attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT};
}

std::vector<QRect> monitorsOf(xcb_connection_t *connection, xcb_window_t root)
{
    std::vector<QRect> rects;
    const X11Reply<xcb_randr_get_monitors_reply_t> monitors(xcb_randr_get_monitors_reply(
        connection, xcb_randr_get_monitors(connection, root, 1), nullptr));
    if (!monitors)
        return rects;
    auto monitor = xcb_randr_get_monitors_monitors_iterator(monitors.get());
    for (; monitor.rem > 0; xcb_randr_monitor_info_next(&monitor))
        rects.emplace_back(monitor.data->x, monitor.data->y, monitor.data->width,
                           monitor.data->height);
    return rects;
}

} // namespace

bool isTopmostWindowCovering(xcb_connection_t *connection)
{
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const X11Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, root), nullptr));
    if (!tree)
        return false;
    const std::vector<QRect> monitors = monitorsOf(connection, root);
    const auto isAnyOf = [&monitors](const auto &holds) {
        return std::any_of(monitors.begin(), monitors.end(), holds);
    };
    const xcb_window_t *windows = xcb_query_tree_children(tree.get());
    for (int index = xcb_query_tree_children_length(tree.get()); index-- > 0;) {
        const auto window = viewable(connection, windows[index]);
        if (!window || !takesInput(connection, windows[index]))
            continue;
        const QRect most = window->rect.marginsAdded(QMargins() + missingEdge);
        if (isAnyOf([&](const QRect &monitor) { return most.contains(monitor); }))
            return true;
        // Toolkits keep small windows off the screen, and such that only take input.
        if (window->isSeen
            && isAnyOf([&](const QRect &monitor) { return monitor.intersects(window->rect); })
            && !isNotification(connection, windows[index]))
            return false;
    }
    return false;
}

} // namespace tovek
