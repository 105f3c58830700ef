// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/X11ScreenLock.h"

#include <QRect>

#include <cstdlib>
#include <memory>
#include <optional>
#include <xcb/randr.h>
#include <xcb/shape.h>
#include <xcb/xcb.h>

namespace tovek {

namespace {

template <typename Reply>
struct Free
{
    void operator()(Reply *reply) const { std::free(reply); }
};
template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, Free<Reply>>;

/// False for the window that a compositing manager draws on: it lies over everything, but clicks
/// fall through it.
bool takesInput(xcb_connection_t *connection, xcb_window_t window)
{
    const ReplyPointer<xcb_shape_get_rectangles_reply_t> shape(xcb_shape_get_rectangles_reply(
        connection, xcb_shape_get_rectangles(connection, window, XCB_SHAPE_SK_INPUT), nullptr));
    return !shape || shape->rectangles_len > 0;
}

std::optional<QRect> viewableRect(xcb_connection_t *connection, xcb_window_t window)
{
    const auto attributesCookie = xcb_get_window_attributes(connection, window);
    const auto geometryCookie = xcb_get_geometry(connection, window);
    const ReplyPointer<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection, attributesCookie, nullptr));
    const ReplyPointer<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection, geometryCookie, nullptr));
    if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE
        || attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT)
        return std::nullopt;
    return QRect(geometry->x, geometry->y, geometry->width, geometry->height);
}

bool coversMonitor(xcb_connection_t *connection, xcb_window_t root, const QRect &rect)
{
    const ReplyPointer<xcb_randr_get_monitors_reply_t> monitors(xcb_randr_get_monitors_reply(
        connection, xcb_randr_get_monitors(connection, root, 1), nullptr));
    if (!monitors)
        return false;
    auto monitor = xcb_randr_get_monitors_monitors_iterator(monitors.get());
    for (; monitor.rem > 0; xcb_randr_monitor_info_next(&monitor)) {
        if (rect.contains(
                QRect(monitor.data->x, monitor.data->y, monitor.data->width, monitor.data->height)))
            return true;
    }
    return false;
}

} // namespace

bool isTopmostWindowCovering(xcb_connection_t *connection)
{
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const ReplyPointer<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, root), nullptr));
    if (!tree)
        return false;
    const xcb_window_t *windows = xcb_query_tree_children(tree.get());
    for (int index = xcb_query_tree_children_length(tree.get()); index-- > 0;) {
        const auto rect = viewableRect(connection, windows[index]);
        if (rect && takesInput(connection, windows[index]))
            return coversMonitor(connection, root, *rect);
    }
    return false;
}

} // namespace tovek
