// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/clipboard/SelectionServer.h"

#include "platform/x11/X11Connect.h"

#include <algorithm>

namespace tovek {

namespace {

/// Null without a display.
xcb_connection_t *connectTo(const std::string &displayName, int &screen)
{
    xcb_connection_t *const connection =
        x11Connect(displayName.empty() ? nullptr : displayName.c_str(), &screen);
    if (!xcb_connection_has_error(connection))
        return connection;
    xcb_disconnect(connection);
    return nullptr;
}

} // namespace

std::unique_ptr<SelectionServer> SelectionServer::create(const std::string &displayName)
{
    int screen = 0;
    xcb_connection_t *const connection = connectTo(displayName, screen);
    // Not make_unique, which cannot reach the constructor.
    return connection
        ? std::unique_ptr<SelectionServer>(new SelectionServer(displayName, connection, screen))
        : nullptr;
}

SelectionServer::SelectionServer(std::string displayName, xcb_connection_t *connection, int screen)
    : m_displayName(std::move(displayName))
    , m_connection(connection)
{
    setUp(screen);
}

bool SelectionServer::reconnect()
{
    int screen = 0;
    xcb_connection_t *const connection = connectTo(m_displayName, screen);
    if (!connection)
        return false;
    xcb_disconnect(m_connection);
    m_connection = connection;
    m_content.clear();
    m_isOwner = false;
    m_waiting.clear();
    m_backlog.clear();
    setUp(screen);
    if (onReconnected)
        onReconnected();
    return true;
}

void SelectionServer::setUp(int screen)
{
    xcb_connection_t *const connection = m_connection;
    m_window = xcb_generate_id(connection);
    auto roots = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screen > 0 && roots.rem > 1; --screen)
        xcb_screen_next(&roots);
    m_root = roots.data->root;
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, m_window, m_root, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &events);
    static const std::string names[] = {"CLIPBOARD",    "TARGETS",
                                        "MULTIPLE",     "TIMESTAMP",
                                        "SAVE_TARGETS", "INCR",
                                        "NULL",         "TOVEK_TIME",
                                        "image/png",    "TEXT",
                                        "UTF8_STRING",  "STRING",
                                        "text/plain",   "text/plain;charset=utf-8"};
    // All asked for at once: one round trip instead of one for each.
    std::vector<xcb_intern_atom_cookie_t> cookies;
    for (const std::string &name : names)
        cookies.push_back(xcb_intern_atom(connection, 0, uint16_t(name.size()), name.c_str()));
    for (size_t i = 0; i < cookies.size(); ++i) {
        if (const X11Reply<xcb_intern_atom_reply_t> reply{
                xcb_intern_atom_reply(connection, cookies[i], nullptr)})
            m_atoms[names[i]] = reply->atom;
    }
    m_transfers = SelectionTransfers(connection, atom("INCR"));
}

SelectionServer::~SelectionServer()
{
    // A connection closed with events unread is reset: the display server would throw away what it
    // has not read yet, and a reader would wait for its last piece for ever. An answer says that
    // it has read everything.
    currentOwner();
    xcb_disconnect(m_connection);
}

bool SelectionServer::takeFrom(xcb_window_t onlyFrom, SelectionContent content, Readiness readiness)
{
    if (!isConnected() && !reconnect())
        return false;
    const xcb_timestamp_t time = currentTime();
    // Between the question and the answer nobody else may take it.
    if (onlyFrom != XCB_WINDOW_NONE)
        xcb_grab_server(m_connection);
    const bool isAllowed = onlyFrom == XCB_WINDOW_NONE || currentOwner() == onlyFrom;
    if (isAllowed)
        xcb_set_selection_owner(m_connection, m_window, atom("CLIPBOARD"), time);
    if (onlyFrom != XCB_WINDOW_NONE)
        xcb_ungrab_server(m_connection);
    const bool isTaken = isAllowed && currentOwner() == m_window;
    if (isTaken) {
        m_isOwner = true;
        m_ownedSince = time;
        m_content = std::move(content);
        m_isReady = readiness == Readiness::ready;
        answerWaiting();
    }
    processEvents();
    return isTaken;
}

void SelectionServer::provide(SelectionContent content)
{
    m_content = std::move(content);
    m_isReady = true;
    answerWaiting();
    if (!m_isOwner)
        m_content.clear();
    processEvents();
}

void SelectionServer::clear()
{
    xcb_set_selection_owner(m_connection, XCB_WINDOW_NONE, atom("CLIPBOARD"), currentTime());
    m_isOwner = false;
    m_isReady = true;
    m_content.clear();
    answerWaiting();
    processEvents();
}

int SelectionServer::fileDescriptor() const
{
    return xcb_get_file_descriptor(m_connection);
}

bool SelectionServer::isConnected() const
{
    return xcb_connection_has_error(m_connection) == 0;
}

void SelectionServer::processEvents()
{
    // Flushing a large piece reads what arrives meanwhile; nothing would tell of that later.
    while (true) {
        decltype(m_backlog) events;
        events.swap(m_backlog);
        while (auto *const event = xcb_poll_for_event(m_connection))
            events.emplace_back(event);
        for (const auto &event : events)
            handle(event.get());
        xcb_flush(m_connection);
        if (events.empty())
            break;
    }
    m_transfers.endForgotten();
}

xcb_atom_t SelectionServer::atom(const std::string &name)
{
    const auto known = m_atoms.find(name);
    return known == m_atoms.end() ? xcb_atom_t(XCB_ATOM_NONE) : known->second;
}

/// The display server's time, as owners of selections must state it: that of a change of nothing.
xcb_timestamp_t SelectionServer::currentTime()
{
    const xcb_atom_t property = atom("TOVEK_TIME");
    xcb_change_property(m_connection, XCB_PROP_MODE_APPEND, m_window, property, XCB_ATOM_INTEGER,
                        32, 0, nullptr);
    xcb_flush(m_connection);
    while (auto *const event = xcb_wait_for_event(m_connection)) {
        m_backlog.emplace_back(event);
        if ((event->response_type & x11EventType) != XCB_PROPERTY_NOTIFY)
            continue;
        const auto &notify = *reinterpret_cast<xcb_property_notify_event_t *>(event);
        if (notify.window == m_window && notify.atom == property) {
            const xcb_timestamp_t time = notify.time;
            m_backlog.pop_back();
            return time;
        }
    }
    return XCB_CURRENT_TIME;
}

xcb_window_t SelectionServer::currentOwner()
{
    const auto cookie = xcb_get_selection_owner(m_connection, atom("CLIPBOARD"));
    const X11Reply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(m_connection, cookie, nullptr));
    return reply ? reply->owner : xcb_window_t(XCB_WINDOW_NONE);
}

void SelectionServer::handle(const xcb_generic_event_t *event)
{
    switch (event->response_type & x11EventType) {
    case XCB_SELECTION_REQUEST:
        selectionRequested(*reinterpret_cast<const xcb_selection_request_event_t *>(event));
        break;
    case XCB_SELECTION_CLEAR: {
        const auto &clear = *reinterpret_cast<const xcb_selection_clear_event_t *>(event);
        // One that was on its way when we took the selection again tells of the time before.
        const bool isOld = int32_t(clear.time - m_ownedSince) < 0;
        if (clear.selection != atom("CLIPBOARD") || !m_isOwner || isOld)
            break;
        m_isOwner = false;
        if (m_waiting.empty())
            m_content.clear();
        if (onLost)
            onLost();
        break;
    }
    case XCB_PROPERTY_NOTIFY: {
        const auto &notify = *reinterpret_cast<const xcb_property_notify_event_t *>(event);
        if (notify.state == XCB_PROPERTY_DELETE)
            m_transfers.propertyDeleted(notify.window, notify.atom);
        break;
    }
    case XCB_DESTROY_NOTIFY:
        m_transfers.endOf(reinterpret_cast<const xcb_destroy_notify_event_t *>(event)->window);
        break;
    default:
        break; // errors among them: a reader that vanished is no concern of ours
    }
}

void SelectionServer::selectionRequested(const xcb_selection_request_event_t &request)
{
    const bool isEarly =
        request.time != XCB_CURRENT_TIME && int32_t(request.time - m_ownedSince) < 0;
    if (request.selection != atom("CLIPBOARD") || !m_isOwner || isEarly) {
        answer(request, false);
        return;
    }
    const bool needsContent = request.target == atom("MULTIPLE")
        || std::any_of(m_content.begin(), m_content.end(), [&](const SelectionTarget &offered) {
                                  return request.target == atom(offered.name);
                              });
    if (needsContent && !m_isReady) {
        m_waiting.push_back(request);
        return;
    }
    answer(request, serve(request));
}

void SelectionServer::answer(const xcb_selection_request_event_t &request, bool isServed)
{
    // Readers from before properties were mandatory leave it out.
    const xcb_atom_t property = request.property ? request.property : request.target;
    union {
        xcb_selection_notify_event_t notify;
        char bytes[32]; // what every event takes on the wire
    } event{};
    event.notify.response_type = XCB_SELECTION_NOTIFY;
    event.notify.time = request.time;
    event.notify.requestor = request.requestor;
    event.notify.selection = request.selection;
    event.notify.target = request.target;
    event.notify.property = isServed ? property : xcb_atom_t(XCB_ATOM_NONE);
    xcb_send_event(m_connection, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, event.bytes);
}

bool SelectionServer::serve(const xcb_selection_request_event_t &request)
{
    if (request.target == atom("MULTIPLE"))
        return serveMultiple(request);
    return deliver(request.requestor, request.target,
                   request.property ? request.property : request.target);
}

/// Converts to every pair of target and property that the reader lists, and marks the failures.
bool SelectionServer::serveMultiple(const xcb_selection_request_event_t &request)
{
    constexpr uint32_t mostAtoms = 512;
    if (!request.property)
        return false;
    const auto cookie = xcb_get_property(m_connection, 0, request.requestor, request.property,
                                         XCB_GET_PROPERTY_TYPE_ANY, 0, mostAtoms);
    const X11Reply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(m_connection, cookie, nullptr));
    if (!reply || reply->format != 32)
        return false;
    auto *const atoms = static_cast<xcb_atom_t *>(xcb_get_property_value(reply.get()));
    const uint32_t count = reply->value_len;
    for (uint32_t i = 0; i + 1 < count; i += 2) {
        const bool isNested = atoms[i] == atom("MULTIPLE");
        if (isNested || !atoms[i + 1] || !deliver(request.requestor, atoms[i], atoms[i + 1]))
            atoms[i + 1] = XCB_ATOM_NONE;
    }
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                        reply->type, 32, count, atoms);
    return true;
}

bool SelectionServer::deliver(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property)
{
    const auto put = [&](xcb_atom_t type, uint8_t format, size_t count, const void *data) {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, requestor, property, type, format,
                            uint32_t(count), data);
        return true;
    };
    if (target == atom("TARGETS")) {
        std::vector<xcb_atom_t> atoms{atom("TARGETS"), atom("MULTIPLE"), atom("TIMESTAMP"),
                                      atom("SAVE_TARGETS")};
        for (const SelectionTarget &offered : m_content)
            atoms.push_back(atom(offered.name));
        return put(XCB_ATOM_ATOM, 32, atoms.size(), atoms.data());
    }
    if (target == atom("TIMESTAMP"))
        return put(XCB_ATOM_INTEGER, 32, 1, &m_ownedSince);
    if (target == atom("SAVE_TARGETS"))
        return put(atom("NULL"), 32, 0, nullptr); // has a side effect only on managers
    for (const SelectionTarget &offered : m_content) {
        if (target != atom(offered.name))
            continue;
        const SelectionBytes &bytes = offered.bytes;
        if (bytes.size <= m_transfers.largestPiece())
            return put(atom(offered.type), 8, bytes.size, bytes.data);
        m_transfers.begin({requestor, property, atom(offered.type), bytes});
        return true;
    }
    return false;
}

void SelectionServer::answerWaiting()
{
    if (!m_isReady)
        return;
    const auto waiting = std::move(m_waiting);
    m_waiting.clear();
    for (const auto &request : waiting)
        answer(request, serve(request));
}

} // namespace tovek
