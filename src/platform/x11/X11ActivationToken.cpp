// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/X11ActivationToken.h"

#include "platform/x11/X11Connect.h"
#include "platform/x11/X11Reply.h"

#include <QCoreApplication>
#include <QSysInfo>

#include <algorithm>
#include <optional>

namespace tovek {

namespace {

/// A connection with a window that nobody sees, for one announcement.
class Announcer
{
public:
    Announcer()
    {
        if (xcb_connection_has_error(m_xcb))
            return;
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_xcb)).data->root;
        m_window = xcb_generate_id(m_xcb);
        const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(m_xcb, XCB_COPY_FROM_PARENT, m_window, m_root, -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                          &events);
    }
    ~Announcer() { xcb_disconnect(m_xcb); }
    Announcer(const Announcer &) = delete;
    Announcer &operator=(const Announcer &) = delete;

    /// The server's, as of a change of nothing; absent without a server.
    std::optional<xcb_timestamp_t> time()
    {
        if (m_window == XCB_NONE)
            return std::nullopt;
        xcb_change_property(m_xcb, XCB_PROP_MODE_APPEND, m_window, XCB_ATOM_WM_NAME,
                            XCB_ATOM_STRING, 8, 0, nullptr);
        xcb_flush(m_xcb);
        while (const X11Reply<xcb_generic_event_t> event{xcb_wait_for_event(m_xcb)}) {
            if ((event->response_type & x11EventType) == XCB_PROPERTY_NOTIFY)
                return reinterpret_cast<const xcb_property_notify_event_t &>(*event).time;
        }
        return std::nullopt;
    }
    /// In messages of 20 bytes, the last one ending with a zero.
    void tell(QByteArray text)
    {
        xcb_atom_t type = atom("_NET_STARTUP_INFO_BEGIN");
        const xcb_atom_t next = atom("_NET_STARTUP_INFO");
        text.append('\0');
        for (qsizetype start = 0; start < text.size(); start += sizeof(xcb_client_message_data_t)) {
            xcb_client_message_event_t message{};
            message.response_type = XCB_CLIENT_MESSAGE;
            message.format = 8;
            message.window = m_window;
            message.type = std::exchange(type, next);
            const QByteArray piece = text.mid(start, sizeof(message.data));
            std::copy(piece.begin(), piece.end(), message.data.data8);
            xcb_send_event(m_xcb, 0, m_root, XCB_EVENT_MASK_PROPERTY_CHANGE,
                           reinterpret_cast<const char *>(&message));
        }
        // A connection that closes with events unread is reset, and the server throws away what it
        // has not read yet. An answer says that it has read all.
        const X11Reply<xcb_get_input_focus_reply_t> answer(
            xcb_get_input_focus_reply(m_xcb, xcb_get_input_focus(m_xcb), nullptr));
    }

private:
    xcb_atom_t atom(const QByteArray &name)
    {
        const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            m_xcb, xcb_intern_atom(m_xcb, 0, uint16_t(name.size()), name.constData()), nullptr));
        return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    }

    xcb_connection_t *m_xcb = x11Connect();
    xcb_window_t m_root = XCB_NONE;
    xcb_window_t m_window = XCB_NONE;
};

} // namespace

QString newX11ActivationToken()
{
    static int serial = 0;
    Announcer announcer;
    const auto time = announcer.time();
    if (!time)
        return {};
    const QString token = QStringLiteral("tovek-%1-%2-%3_TIME%4")
                              .arg(QCoreApplication::applicationPid())
                              .arg(++serial)
                              .arg(QSysInfo::machineHostName())
                              .arg(*time);
    // Silent: the pointer does not turn into a watch until a window comes.
    announcer.tell(QStringLiteral("new: ID=\"%1\" NAME=\"Tovek\" SCREEN=0 SILENT=1 TIMESTAMP=%2")
                       .arg(token)
                       .arg(*time)
                       .toUtf8());
    return token;
}

} // namespace tovek
