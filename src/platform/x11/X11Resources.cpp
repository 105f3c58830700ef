// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/X11Resources.h"

#include "platform/x11/X11Connect.h"
#include "platform/x11/X11Reply.h"

#include <QList>

namespace tovek {

namespace {

constexpr uint32_t mostWords = 16 * 1024;

} // namespace

std::optional<double> dotsPerInchIn(const QByteArray &resources)
{
    const QByteArray name = "Xft.dpi:";
    const QList<QByteArray> lines = resources.split('\n');
    for (const QByteArray &line : lines) {
        if (!line.startsWith(name))
            continue;
        bool isNumber = false;
        const double value = line.mid(name.size()).trimmed().toDouble(&isNumber);
        return isNumber ? std::optional(value) : std::nullopt;
    }
    return std::nullopt;
}

std::optional<double> x11DotsPerInch()
{
    const std::unique_ptr<xcb_connection_t, X11Disconnect> connection(x11Connect());
    if (xcb_connection_has_error(connection.get()))
        return std::nullopt;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data->root;
    const auto cookie = xcb_get_property(connection.get(), 0, root, XCB_ATOM_RESOURCE_MANAGER,
                                         XCB_ATOM_STRING, 0, mostWords);
    const X11Reply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection.get(), cookie, nullptr));
    if (!reply)
        return std::nullopt;
    return dotsPerInchIn({static_cast<char *>(xcb_get_property_value(reply.get())),
                          xcb_get_property_value_length(reply.get())});
}

} // namespace tovek
