// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/SelectionReader.h"

#include "platform/x11/X11Connect.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <vector>

namespace tovek {

namespace {

template <typename T>
std::unique_ptr<T, decltype(&std::free)> owned(T *reply)
{
    return {reply, &std::free};
}

constexpr uint8_t eventTypeMask = 0x7f;

} // namespace

SelectionReader::SelectionReader(const QByteArray &display, const char *selection)
    : m_connection(x11Connect(display.constData()))
    , m_window(xcb_generate_id(m_connection))
{
    const xcb_screen_t *const screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &events);
    m_selection = atom(selection);
}

SelectionReader::~SelectionReader()
{
    xcb_disconnect(m_connection);
}

std::optional<SelectionReader::Value> SelectionReader::read(const char *target,
                                                            const std::function<bool(int)> &onPiece,
                                                            xcb_timestamp_t time)
{
    request(target, time);
    const auto answered = waitForNotify();
    if (!answered)
        return std::nullopt;
    Value first = property(*answered, true);
    if (first.type != "INCR")
        return first;
    Value whole;
    while (waitForNewValue(*answered)) {
        if (onPiece && !onPiece(whole.pieces))
            return std::nullopt;
        const Value piece = property(*answered, true);
        if (piece.bytes.isEmpty())
            return whole;
        ++whole.pieces;
        whole.bytes += piece.bytes;
        whole.type = piece.type;
    }
    return std::nullopt;
}

QStringList SelectionReader::targets()
{
    const auto value = read("TARGETS");
    QStringList names;
    if (value) {
        const auto *const atoms = reinterpret_cast<const xcb_atom_t *>(value->bytes.constData());
        for (qsizetype i = 0; i < value->bytes.size() / 4; ++i)
            names << QString::fromLatin1(nameOf(atoms[i]));
    }
    names.sort();
    return names;
}

std::vector<std::optional<QByteArray>>
SelectionReader::readMultiple(const std::vector<const char *> &targets)
{
    std::vector<xcb_atom_t> pairs;
    for (size_t i = 0; i < targets.size(); ++i) {
        pairs.push_back(atom(targets[i]));
        pairs.push_back(atom(QByteArray("PART_" + QByteArray::number(int(i))).constData()));
    }
    const xcb_atom_t list = atom("READER_PROPERTY");
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, list, atom("ATOM_PAIR"), 32,
                        uint32_t(pairs.size()), pairs.data());
    request("MULTIPLE");
    std::vector<std::optional<QByteArray>> values(targets.size());
    if (!waitForNotify())
        return values;
    const Value answered = property(list, true);
    const auto *const atoms = reinterpret_cast<const xcb_atom_t *>(answered.bytes.constData());
    for (size_t i = 0; i < targets.size(); ++i) {
        if (atoms[2 * i + 1])
            values[i] = property(atoms[2 * i + 1], true).bytes;
    }
    return values;
}

void SelectionReader::request(const char *target, xcb_timestamp_t time)
{
    xcb_convert_selection(m_connection, m_window, m_selection, atom(target),
                          atom("READER_PROPERTY"), time);
    xcb_flush(m_connection);
}

xcb_window_t SelectionReader::owner()
{
    const auto reply = owned(xcb_get_selection_owner_reply(
        m_connection, xcb_get_selection_owner(m_connection, m_selection), nullptr));
    return reply ? reply->owner : 0;
}

void SelectionReader::take()
{
    xcb_set_selection_owner(m_connection, m_window, m_selection, XCB_CURRENT_TIME);
    owner();
}

xcb_atom_t SelectionReader::atom(const char *name)
{
    const auto reply = owned(xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, 0, uint16_t(qstrlen(name)), name), nullptr));
    return reply ? reply->atom : 0;
}

QByteArray SelectionReader::nameOf(xcb_atom_t atom)
{
    const auto reply = owned(
        xcb_get_atom_name_reply(m_connection, xcb_get_atom_name(m_connection, atom), nullptr));
    return reply ? QByteArray(xcb_get_atom_name_name(reply.get()),
                              xcb_get_atom_name_name_length(reply.get()))
                 : QByteArray();
}

SelectionReader::Value SelectionReader::property(xcb_atom_t property, bool isDeleted)
{
    constexpr uint32_t everything = 0x1fffffff;
    const auto reply =
        owned(xcb_get_property_reply(m_connection,
                                     xcb_get_property(m_connection, isDeleted, m_window, property,
                                                      XCB_GET_PROPERTY_TYPE_ANY, 0, everything),
                                     nullptr));
    if (!reply)
        return {};
    return {QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                       xcb_get_property_value_length(reply.get())),
            nameOf(reply->type), 0};
}

/// The property with the answer; absent for a refusal.
std::optional<xcb_atom_t> SelectionReader::waitForNotify()
{
    while (const auto event = owned(xcb_wait_for_event(m_connection))) {
        if ((event->response_type & eventTypeMask) != XCB_SELECTION_NOTIFY)
            continue;
        const auto answered =
            reinterpret_cast<const xcb_selection_notify_event_t *>(event.get())->property;
        return answered ? std::optional(answered) : std::nullopt;
    }
    return std::nullopt;
}

bool SelectionReader::waitForNewValue(xcb_atom_t property)
{
    while (const auto event = owned(xcb_wait_for_event(m_connection))) {
        if ((event->response_type & eventTypeMask) != XCB_PROPERTY_NOTIFY)
            continue;
        const auto &notify = *reinterpret_cast<const xcb_property_notify_event_t *>(event.get());
        if (notify.atom == property && notify.state == XCB_PROPERTY_NEW_VALUE)
            return true;
    }
    return false;
}

} // namespace tovek
