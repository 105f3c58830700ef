// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/tray/X11DensityGuard.h"

#include "platform/x11/QtXcb.h"
#include "platform/x11/X11Connect.h"
#include "platform/x11/X11Reply.h"
#include "platform/x11/tray/XSettings.h"

#include <QCoreApplication>

#include <cstring>

namespace tovek {

namespace {

constexpr const char *settingsName = "_XSETTINGS_SETTINGS";

xcb_atom_t atomIn(xcb_connection_t *connection, const char *name)
{
    const auto cookie = xcb_intern_atom(connection, 0, uint16_t(std::strlen(name)), name);
    const X11Reply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

std::optional<double> dotsPerInchOf(xcb_connection_t *connection, xcb_window_t daemon,
                                    xcb_atom_t settings)
{
    constexpr uint32_t most = 1 << 16;
    constexpr double unit = 1024;
    const auto cookie = xcb_get_property(connection, 0, daemon, settings, settings, 0, most);
    const X11Reply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply)
        return std::nullopt;
    const auto value = XSettings::integer({static_cast<char *>(xcb_get_property_value(reply.get())),
                                           xcb_get_property_value_length(reply.get())},
                                          "Xft/DPI");
    return value ? std::optional(*value / unit) : std::nullopt;
}

} // namespace

std::optional<double> publishedDotsPerInch()
{
    const std::unique_ptr<xcb_connection_t, X11Disconnect> connection(x11Connect());
    if (xcb_connection_has_error(connection.get()))
        return std::nullopt;
    const auto cookie =
        xcb_get_selection_owner(connection.get(), atomIn(connection.get(), "_XSETTINGS_S0"));
    const X11Reply<xcb_get_selection_owner_reply_t> daemon(
        xcb_get_selection_owner_reply(connection.get(), cookie, nullptr));
    if (!daemon || daemon->owner == XCB_WINDOW_NONE)
        return std::nullopt;
    return dotsPerInchOf(connection.get(), daemon->owner, atomIn(connection.get(), settingsName));
}

X11DensityGuard::X11DensityGuard(std::function<bool(double)> isPossible, QObject *parent)
    : QObject(parent)
    , m_isPossible(std::move(isPossible))
    , m_settings(QtXcb::atom(settingsName))
{
    qApp->installNativeEventFilter(this);
}

X11DensityGuard::~X11DensityGuard()
{
    if (qApp)
        qApp->removeNativeEventFilter(this);
}

bool X11DensityGuard::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto *event = static_cast<xcb_property_notify_event_t *>(message);
    if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY || event->atom != m_settings
        || m_settings == XCB_ATOM_NONE || !QtXcb::connection())
        return false;
    const auto dotsPerInch = dotsPerInchOf(QtXcb::connection(), event->window, m_settings);
    if (!dotsPerInch)
        return false;
    if (dotsPerInch != m_last) {
        m_last = dotsPerInch;
        m_isLastPossible = m_isPossible(*dotsPerInch);
    }
    return !m_isLastPossible;
}

} // namespace tovek
