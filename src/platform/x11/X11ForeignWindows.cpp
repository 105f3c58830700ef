// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/X11ForeignWindows.h"

#include "platform/x11/X11Reply.h"

#include <QByteArray>

#include <algorithm>
#include <xcb/randr.h>
#include <xcb/shape.h>

namespace tovek {

namespace {

/// xsecurelock 1.5.1 leaves the outermost pixels free below what it composes.
constexpr int missingEdge = 2;
/// Between a frame and the window in it some window managers put another one.
constexpr int frameDepth = 2;

} // namespace

std::optional<X11ForeignWindows::Window> X11ForeignWindows::viewable(xcb_window_t window) const
{
    const auto attributesCookie = xcb_get_window_attributes(m_connection, window);
    const auto geometryCookie = xcb_get_geometry(m_connection, window);
    const X11Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(m_connection, attributesCookie, nullptr));
    const X11Reply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(m_connection, geometryCookie, nullptr));
    if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
        return std::nullopt;
    return Window{QRect(geometry->x, geometry->y, geometry->width, geometry->height),
                  attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT,
                  attributes->override_redirect != 0};
}

std::vector<xcb_window_t> X11ForeignWindows::all() const
{
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    const X11Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, root), nullptr));
    if (!tree)
        return {};
    const xcb_window_t *first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

std::vector<QRect> X11ForeignWindows::monitors() const
{
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    std::vector<QRect> rects;
    const X11Reply<xcb_randr_get_monitors_reply_t> monitors(xcb_randr_get_monitors_reply(
        m_connection, xcb_randr_get_monitors(m_connection, root, 1), nullptr));
    if (!monitors)
        return rects;
    auto monitor = xcb_randr_get_monitors_monitors_iterator(monitors.get());
    for (; monitor.rem > 0; xcb_randr_monitor_info_next(&monitor))
        rects.emplace_back(monitor.data->x, monitor.data->y, monitor.data->width,
                           monitor.data->height);
    return rects;
}

bool X11ForeignWindows::covers(const Window &window, const std::vector<QRect> &monitors)
{
    const QRect most = window.rect.marginsAdded(QMargins() + missingEdge);
    return std::any_of(monitors.begin(), monitors.end(),
                       [&](const QRect &monitor) { return most.contains(monitor); });
}

bool X11ForeignWindows::takesInput(xcb_window_t window) const
{
    const X11Reply<xcb_shape_get_rectangles_reply_t> shape(xcb_shape_get_rectangles_reply(
        m_connection, xcb_shape_get_rectangles(m_connection, window, XCB_SHAPE_SK_INPUT), nullptr));
    return !shape || shape->rectangles_len > 0;
}

bool X11ForeignWindows::isOfType(xcb_window_t window, const std::vector<const char *> &kinds) const
{
    const std::vector<xcb_atom_t> types = this->types(window);
    return !types.empty() && std::any_of(kinds.begin(), kinds.end(), [&](const char *kind) {
        const xcb_atom_t type = atom(QByteArray("_NET_WM_WINDOW_TYPE_") + kind);
        return type != XCB_ATOM_NONE && std::find(types.begin(), types.end(), type) != types.end();
    });
}

bool X11ForeignWindows::hasType(xcb_window_t window) const
{
    return !types(window).empty();
}

bool X11ForeignWindows::isManaged(xcb_window_t window) const
{
    return hasState(window, 0);
}

bool X11ForeignWindows::isOurs(xcb_window_t window) const
{
    const xcb_setup_t *setup = xcb_get_setup(m_connection);
    return (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

bool X11ForeignWindows::isTheServers(xcb_window_t window) const
{
    return (window & ~xcb_get_setup(m_connection)->resource_id_mask) == 0;
}

bool X11ForeignWindows::looksLikeALocker(xcb_window_t window) const
{
    const auto seen = viewable(window);
    return seen && seen->isUnmanaged && covers(*seen, monitors()) && takesInput(window)
        && !isManaged(window) && !isOfType(window, {"NOTIFICATION", "DESKTOP", "DND"});
}

bool X11ForeignWindows::isAMenuOpen() const
{
    const std::vector<QRect> monitors = this->monitors();
    for (const xcb_window_t window : all()) {
        const auto seen = viewable(window);
        if (!seen || !seen->isSeen || !seen->isUnmanaged || isOurs(window))
            continue;
        // Toolkits keep small windows off the screen.
        const bool isOnAMonitor =
            std::any_of(monitors.begin(), monitors.end(),
                        [&](const QRect &monitor) { return monitor.intersects(seen->rect); });
        if (!isOnAMonitor || covers(*seen, monitors) || !takesInput(window) || isManaged(window))
            continue;
        if (!hasType(window) || isOfType(window, {"MENU", "POPUP_MENU", "DROPDOWN_MENU", "COMBO"}))
            return true;
    }
    return false;
}

xcb_atom_t X11ForeignWindows::atom(const QByteArray &name) const
{
    const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, 1, uint16_t(name.size()), name.constData()),
        nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

std::vector<xcb_atom_t> X11ForeignWindows::types(xcb_window_t window) const
{
    constexpr uint32_t mostTypes = 16;
    const xcb_atom_t property = atom("_NET_WM_WINDOW_TYPE");
    if (property == XCB_ATOM_NONE)
        return {};
    const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        m_connection,
        xcb_get_property(m_connection, 0, window, property, XCB_ATOM_ATOM, 0, mostTypes), nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto *first = static_cast<const xcb_atom_t *>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

bool X11ForeignWindows::hasState(xcb_window_t window, int depth) const
{
    const xcb_atom_t state = atom("WM_STATE");
    if (state == XCB_ATOM_NONE)
        return false;
    const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        m_connection,
        xcb_get_property(m_connection, 0, window, state, XCB_GET_PROPERTY_TYPE_ANY, 0, 1),
        nullptr));
    if (reply && reply->type != XCB_ATOM_NONE)
        return true;
    if (depth == frameDepth)
        return false;
    const X11Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(m_connection, xcb_query_tree(m_connection, window), nullptr));
    if (!tree)
        return false;
    const xcb_window_t *first = xcb_query_tree_children(tree.get());
    return std::any_of(first, first + xcb_query_tree_children_length(tree.get()),
                       [&](xcb_window_t child) { return hasState(child, depth + 1); });
}

} // namespace tovek
