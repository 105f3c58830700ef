// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fuzz/FuzzInput.h"
#include "platform/x11/clipboard/SelectionServer.h"

#include <algorithm>
#include <array>
#include <deque>
#include <map>
#include <string>
#include <vector>

using namespace tovek;

// The X server and everybody else at it are played here, in place of the library.

namespace {

constexpr uint32_t largestRequestWords = 1024; ///< pieces come soon
constexpr xcb_window_t ownWindow = 0x200001;
constexpr xcb_window_t otherWindow = 0x300001;

struct Server
{
    std::map<std::string, xcb_atom_t> atoms;
    std::deque<std::vector<uint8_t>> events;
    std::vector<uint8_t> property; ///< what a reader has listed for MULTIPLE
    uint8_t propertyFormat = 32;
    xcb_window_t owner = XCB_WINDOW_NONE;
    xcb_timestamp_t now = 1000;
    xcb_atom_t askedAtom = 0;
    uint32_t askedWords = 0;
    int requests = 0;
    int answers = 0;
    uint32_t sum = 0; ///< of all bytes that went out, so that they are read
};

Server *server = nullptr;

template <typename Event>
void send(const Event &event)
{
    std::vector<uint8_t> bytes(sizeof(xcb_generic_event_t));
    std::memcpy(bytes.data(), &event, std::min(sizeof event, bytes.size()));
    server->events.push_back(std::move(bytes));
}

template <typename Reply>
Reply *reply(size_t more = 0)
{
    return static_cast<Reply *>(std::calloc(1, sizeof(Reply) + more));
}

xcb_screen_t theScreen{};
xcb_setup_t theSetup{};

} // namespace

extern "C" {

xcb_connection_t *xcb_connect(const char *, int *screen)
{
    *screen = 0;
    return reinterpret_cast<xcb_connection_t *>(server);
}
void xcb_disconnect(xcb_connection_t *) { }
int xcb_connection_has_error(xcb_connection_t *)
{
    return 0;
}
int xcb_flush(xcb_connection_t *)
{
    return 1;
}
uint32_t xcb_generate_id(xcb_connection_t *)
{
    return ownWindow;
}
int xcb_get_file_descriptor(xcb_connection_t *)
{
    return -1;
}
uint32_t xcb_get_maximum_request_length(xcb_connection_t *)
{
    return largestRequestWords;
}
const xcb_setup_t *xcb_get_setup(xcb_connection_t *)
{
    return &theSetup;
}
xcb_screen_iterator_t xcb_setup_roots_iterator(const xcb_setup_t *)
{
    return {&theScreen, 1, 0};
}
void xcb_screen_next(xcb_screen_iterator_t *) { }
xcb_void_cookie_t xcb_create_window(xcb_connection_t *, uint8_t, xcb_window_t, xcb_window_t,
                                    int16_t, int16_t, uint16_t, uint16_t, uint16_t, uint16_t,
                                    xcb_visualid_t, uint32_t, const void *)
{
    return {};
}
xcb_void_cookie_t xcb_change_window_attributes(xcb_connection_t *, xcb_window_t, uint32_t,
                                               const void *)
{
    return {};
}
xcb_void_cookie_t xcb_grab_server(xcb_connection_t *)
{
    return {};
}
xcb_void_cookie_t xcb_ungrab_server(xcb_connection_t *)
{
    return {};
}
xcb_intern_atom_cookie_t xcb_intern_atom(xcb_connection_t *, uint8_t, uint16_t length,
                                         const char *name)
{
    auto &atom = server->atoms[std::string(name, length)];
    if (!atom)
        atom = xcb_atom_t(100 + server->atoms.size());
    return {atom};
}
xcb_intern_atom_reply_t *xcb_intern_atom_reply(xcb_connection_t *, xcb_intern_atom_cookie_t cookie,
                                               xcb_generic_error_t **)
{
    auto *const answer = reply<xcb_intern_atom_reply_t>();
    answer->atom = cookie.sequence;
    return answer;
}
xcb_void_cookie_t xcb_change_property(xcb_connection_t *, uint8_t, xcb_window_t window,
                                      xcb_atom_t property, xcb_atom_t, uint8_t format,
                                      uint32_t count, const void *data)
{
    const size_t bytes = size_t(count) * (format / 8);
    require(sizeof(xcb_change_property_request_t) + bytes <= size_t(largestRequestWords) * 4);
    for (size_t i = 0; i < bytes; ++i)
        server->sum += static_cast<const uint8_t *>(data)[i];
    if (window == ownWindow) {
        xcb_property_notify_event_t notify{};
        notify.response_type = XCB_PROPERTY_NOTIFY;
        notify.window = window;
        notify.atom = property;
        notify.time = ++server->now;
        send(notify);
    }
    return {};
}
xcb_get_property_cookie_t xcb_get_property(xcb_connection_t *, uint8_t, xcb_window_t, xcb_atom_t,
                                           xcb_atom_t, uint32_t, uint32_t words)
{
    server->askedWords = words;
    return {};
}
xcb_get_property_reply_t *xcb_get_property_reply(xcb_connection_t *, xcb_get_property_cookie_t,
                                                 xcb_generic_error_t **)
{
    const size_t unit = server->propertyFormat / 8;
    const size_t count = std::min(server->property.size(), size_t(server->askedWords) * 4) / unit;
    auto *const answer = reply<xcb_get_property_reply_t>(count * unit);
    answer->format = server->propertyFormat;
    answer->value_len = uint32_t(count);
    std::copy_n(server->property.begin(), count * unit, reinterpret_cast<uint8_t *>(answer + 1));
    return answer;
}
void *xcb_get_property_value(const xcb_get_property_reply_t *answer)
{
    return const_cast<xcb_get_property_reply_t *>(answer) + 1;
}
xcb_get_selection_owner_cookie_t xcb_get_selection_owner(xcb_connection_t *, xcb_atom_t)
{
    return {};
}
xcb_get_selection_owner_reply_t *xcb_get_selection_owner_reply(xcb_connection_t *,
                                                               xcb_get_selection_owner_cookie_t,
                                                               xcb_generic_error_t **)
{
    auto *const answer = reply<xcb_get_selection_owner_reply_t>();
    answer->owner = server->owner;
    return answer;
}
xcb_void_cookie_t xcb_set_selection_owner(xcb_connection_t *, xcb_window_t window, xcb_atom_t,
                                          xcb_timestamp_t)
{
    server->owner = window;
    return {};
}
xcb_void_cookie_t xcb_send_event(xcb_connection_t *, uint8_t, xcb_window_t, uint32_t,
                                 const char *bytes)
{
    xcb_selection_notify_event_t notify;
    std::memcpy(&notify, bytes, sizeof notify);
    require(notify.response_type == XCB_SELECTION_NOTIFY);
    for (int i = 0; i < 32; ++i)
        server->sum += uint8_t(bytes[i]);
    ++server->answers;
    return {};
}
xcb_generic_event_t *xcb_poll_for_event(xcb_connection_t *)
{
    if (server->events.empty())
        return nullptr;
    void *const event = std::malloc(server->events.front().size());
    std::memcpy(event, server->events.front().data(), server->events.front().size());
    server->events.pop_front();
    return static_cast<xcb_generic_event_t *>(event);
}
xcb_generic_event_t *xcb_wait_for_event(xcb_connection_t *connection)
{
    return xcb_poll_for_event(connection);
}
}

namespace {

xcb_atom_t someAtom(uint8_t number)
{
    static constexpr std::array names{"CLIPBOARD", "TARGETS",   "MULTIPLE",    "TIMESTAMP",
                                      "INCR",      "image/png", "UTF8_STRING", "SAVE_TARGETS",
                                      "STRING",    "TOVEK_TIME"};
    const auto known = server->atoms.find(names.at(number % names.size()));
    // Of those that nobody knows, none too.
    return number > 200 || known == server->atoms.end() ? number % 3 : known->second;
}

xcb_window_t someWindow(uint8_t number)
{
    return number % 5 == 4 ? ownWindow : 0x400000 + number % 4;
}

SelectionContent someContent(uint8_t kind)
{
    static constexpr std::array sizes{0, 1, 100, 4000, 4096, 20000};
    const auto bytes =
        SelectionBytes::copyOf(std::string(size_t(sizes.at(kind % sizes.size())), 'x'));
    return kind & 64 ? pngContent(bytes) : textContent(bytes);
}

void ask(FuzzInput &input)
{
    xcb_selection_request_event_t request{};
    request.response_type = XCB_SELECTION_REQUEST;
    request.owner = ownWindow;
    request.requestor = someWindow(input.take<uint8_t>());
    const uint8_t selection = input.take<uint8_t>();
    request.selection = selection < 230 ? someAtom(0) : someAtom(selection);
    request.target = someAtom(input.take<uint8_t>());
    request.property = someAtom(input.take<uint8_t>());
    const uint8_t time = input.take<uint8_t>();
    request.time = time < 100 ? XCB_CURRENT_TIME : server->now - 128 + time;
    send(request);
    ++server->requests;
}

void happen(SelectionServer &selection, FuzzInput &input)
{
    const uint8_t kind = input.take<uint8_t>();
    switch (kind % 12) {
    case 0:
        // Who lost it cannot be asked whether it is still its own.
        static_cast<void>(selection.take(someContent(input.take<uint8_t>()),
                                         kind & 16 ? Selection::Readiness::ready
                                                   : Selection::Readiness::awaited));
        break;
    case 1:
        selection.provide(someContent(input.take<uint8_t>()));
        break;
    case 2:
        if (kind > 200)
            selection.clear();
        break;
    case 3: {
        xcb_property_notify_event_t notify{};
        notify.response_type = XCB_PROPERTY_NOTIFY;
        notify.window = someWindow(input.take<uint8_t>());
        notify.atom = someAtom(input.take<uint8_t>());
        notify.state = kind & 16 ? XCB_PROPERTY_DELETE : XCB_PROPERTY_NEW_VALUE;
        if (notify.window != ownWindow)
            send(notify);
        break;
    }
    case 4: {
        xcb_destroy_notify_event_t notify{};
        notify.response_type = XCB_DESTROY_NOTIFY;
        notify.window = someWindow(input.take<uint8_t>());
        send(notify);
        break;
    }
    case 5: {
        xcb_selection_clear_event_t clear{};
        clear.response_type = XCB_SELECTION_CLEAR;
        clear.time = server->now - 128 + input.take<uint8_t>();
        clear.selection = someAtom(kind & 16 ? 0 : kind);
        server->owner = otherWindow;
        send(clear);
        break;
    }
    case 6: {
        std::array<uint8_t, 32> bytes = input.take<std::array<uint8_t, 32>>();
        if ((bytes[0] & 0x7f) != XCB_SELECTION_REQUEST) // counted where it is asked
            send(bytes);
        break;
    }
    case 7: {
        server->propertyFormat = kind & 16 ? 32 : kind & 32 ? 16 : 8;
        server->property.clear();
        for (int i = input.take<uint8_t>(); i > 0; --i) {
            const xcb_atom_t atom = someAtom(input.take<uint8_t>());
            const auto *const bytes = reinterpret_cast<const uint8_t *>(&atom);
            server->property.insert(server->property.end(), bytes, bytes + 4);
        }
        break;
    }
    case 8:
        ++server->now;
        break;
    default:
        ask(input);
        break;
    }
    if (kind & 128)
        selection.processEvents();
}

} // namespace

/// What other programs may say to the owner of the clipboard, in any order: every question gets one
/// answer, no piece is larger than the connection takes, and no byte beside the content goes out.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Server played;
    server = &played;
    FuzzInput input(data, size);
    {
        const auto selection = SelectionServer::create({});
        while (!input.isAtEnd())
            happen(*selection, input);
        selection->processEvents();
        selection->clear();
        require(played.answers == played.requests);
    }
    return 0;
}
