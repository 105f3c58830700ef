// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/ClipboardReader.h"

#include "support/Wait.h"

#include <cstring>

namespace tovek {

ClipboardReader::ClipboardReader(const QString &displayName)
    : m_connection(displayName)
    , m_window(xcb_generate_id(m_connection))
    , m_clipboard(m_connection.atom("CLIPBOARD"))
    , m_property(m_connection.atom("TOVEK_TEST_CONTENT"))
{
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, m_connection.root(), 0, 0, 1, 1,
                      0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &events);
}

ClipboardReader::~ClipboardReader()
{
    xcb_destroy_window(m_connection, m_window);
    xcb_flush(m_connection);
}

bool ClipboardReader::hasOwner() const
{
    const XPtr<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        m_connection, xcb_get_selection_owner(m_connection, m_clipboard), nullptr));
    return reply && reply->owner != XCB_NONE;
}

void ClipboardReader::clear()
{
    xcb_set_selection_owner(m_connection, XCB_NONE, m_clipboard, XCB_CURRENT_TIME);
    m_connection.sync();
}

QStringList ClipboardReader::types(std::chrono::milliseconds deadline)
{
    const auto bytes = read(QStringLiteral("TARGETS"), deadline);
    QStringList names;
    for (qsizetype at = 0; bytes && at + 4 <= bytes->size(); at += 4) {
        xcb_atom_t atom = 0;
        std::memcpy(&atom, bytes->constData() + at, 4);
        const XPtr<xcb_get_atom_name_reply_t> reply(
            xcb_get_atom_name_reply(m_connection, xcb_get_atom_name(m_connection, atom), nullptr));
        if (reply)
            names.append(QString::fromLatin1(xcb_get_atom_name_name(reply.get()),
                                             xcb_get_atom_name_name_length(reply.get())));
    }
    for (const char *name : {"TARGETS", "MULTIPLE", "TIMESTAMP", "SAVE_TARGETS"})
        names.removeAll(QLatin1String(name));
    names.sort();
    return names;
}

std::optional<QByteArray> ClipboardReader::read(const QString &type,
                                                std::chrono::milliseconds deadline)
{
    xcb_convert_selection(m_connection, m_window, m_clipboard,
                          m_connection.atom(type.toLatin1().constData()), m_property,
                          XCB_CURRENT_TIME);
    xcb_flush(m_connection);
    m_cameInPieces = false;
    bool isAnswered = false;
    bool isOffered = false;
    const auto hasAnswer = [&] {
        while (const XPtr<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
            if ((event->response_type & 0x7f) != XCB_SELECTION_NOTIFY)
                continue;
            isAnswered = true;
            isOffered =
                reinterpret_cast<xcb_selection_notify_event_t *>(event.get())->property != XCB_NONE;
        }
        return isAnswered;
    };
    if (!waitUntil(hasAnswer, deadline) || !isOffered)
        return std::nullopt;
    xcb_atom_t form = 0;
    const QByteArray bytes = take(&form);
    if (form != m_connection.atom("INCR"))
        return bytes;
    m_cameInPieces = true;
    return readPieces(deadline);
}

std::optional<QByteArray> ClipboardReader::readPieces(std::chrono::milliseconds deadline)
{
    QByteArray content;
    bool isComplete = false;
    const auto takesMore = [&] {
        while (const XPtr<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
            const auto *change = reinterpret_cast<xcb_property_notify_event_t *>(event.get());
            if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY || change->atom != m_property
                || change->state != XCB_PROPERTY_NEW_VALUE)
                continue;
            xcb_atom_t form = 0;
            const QByteArray piece = take(&form);
            // An announcement left over from before the property was taken for the first time.
            if (form == XCB_ATOM_NONE)
                continue;
            isComplete = piece.isEmpty();
            content.append(piece);
        }
        return isComplete;
    };
    if (!waitUntil(takesMore, deadline))
        return std::nullopt;
    return content;
}

QByteArray ClipboardReader::take(xcb_atom_t *type)
{
    const XPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        m_connection,
        xcb_get_property(m_connection, true, m_window, m_property, XCB_ATOM_ANY, 0, 1u << 28),
        nullptr));
    xcb_flush(m_connection);
    if (!reply)
        return {};
    *type = reply->type;
    return {static_cast<const char *>(xcb_get_property_value(reply.get())),
            xcb_get_property_value_length(reply.get())};
}

} // namespace tovek
