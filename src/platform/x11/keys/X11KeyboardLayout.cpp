// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/keys/X11KeyboardLayout.h"

#include "platform/linux/KeyCodes.h"
#include "platform/x11/X11Connect.h"
#include "platform/x11/X11Reply.h"

#include <xkbcommon/xkbcommon-x11.h>
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

namespace tovek {

void X11KeyboardLayout::Free::operator()(xcb_connection_t *connection) const
{
    xcb_disconnect(connection);
}

std::unique_ptr<X11KeyboardLayout> X11KeyboardLayout::create()
{
    std::unique_ptr<xcb_connection_t, Free> connection(x11Connect());
    if (xcb_connection_has_error(connection.get()))
        return nullptr;
    // The constructor is private.
    std::unique_ptr<X11KeyboardLayout> layout(new X11KeyboardLayout(std::move(connection)));
    return layout->setUp() ? std::move(layout) : nullptr;
}

X11KeyboardLayout::X11KeyboardLayout(std::unique_ptr<xcb_connection_t, Free> connection)
    : m_connection(std::move(connection))
{
}

X11KeyboardLayout::~X11KeyboardLayout() = default;

bool X11KeyboardLayout::setUp()
{
    const int isThere = xkb_x11_setup_xkb_extension(
        m_connection.get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
        XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &m_firstEvent, nullptr);
    if (!isThere || !m_keymap.context())
        return false;
    selectEvents();
    return true;
}

std::optional<QString> X11KeyboardLayout::character(int keyCode) const
{
    const auto keycode = keycodeOf(keyCode);
    return keycode ? keymap().character(*keycode) : std::nullopt;
}

std::optional<QString> X11KeyboardLayout::shiftedCharacter(int keyCode) const
{
    const auto keycode = keycodeOf(keyCode);
    return keycode ? keymap().character(*keycode, XkbKeymap::Level::shifted) : std::nullopt;
}

std::optional<QString> X11KeyboardLayout::characterOfScanCode(quint32 nativeScanCode) const
{
    return keymap().character(nativeScanCode);
}

int X11KeyboardLayout::keyCodeOfScanCode(quint32 nativeScanCode) const
{
    return hardwareKeyCode(int(nativeScanCode) - windowSystemKeyOffset);
}

void X11KeyboardLayout::startDispatching()
{
    if (m_notifier)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(m_connection.get()),
                                                   QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [this] { readEvents(); });
    readEvents();
}

void X11KeyboardLayout::selectEvents()
{
    // Of the state of the keyboard only its group, so that typing does not wake the process.
    constexpr quint16 events = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY
        | XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
    xcb_xkb_select_events_details_t details{};
    details.affectNewKeyboard = XCB_XKB_NKN_DETAIL_KEYCODES;
    details.newKeyboardDetails = XCB_XKB_NKN_DETAIL_KEYCODES;
    details.affectState = XCB_XKB_STATE_PART_GROUP_STATE;
    details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE;
    constexpr quint16 map = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS;
    xcb_xkb_select_events_aux(m_connection.get(), XCB_XKB_ID_USE_CORE_KBD, events, 0, 0, map, map,
                              &details);
    xcb_flush(m_connection.get());
}

void X11KeyboardLayout::readEvents()
{
    bool isNewMap = false;
    bool isNewGroup = false;
    while (const X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection.get())}) {
        if ((event->response_type & 0x7f) == m_firstEvent) {
            const bool isState = event->pad0 == XCB_XKB_STATE_NOTIFY;
            isNewMap = isNewMap || !isState;
            isNewGroup = isNewGroup || isState;
        }
    }
    // The hot keys' connection tells of its end; this one just falls silent.
    if (xcb_connection_has_error(m_connection.get()) && m_notifier)
        m_notifier->setEnabled(false);
    if (isNewMap)
        m_keymap.clear();
    if (isNewGroup && !m_keymap.isEmpty())
        isNewMap = m_keymap.activate(activeGroup());
    if (!isNewMap)
        return;
    if (onChanged)
        onChanged();
    // Reading the map may have read further events, which the notifier cannot see any more.
    readEvents();
}

const XkbKeymap &X11KeyboardLayout::keymap() const
{
    if (!m_keymap.isEmpty())
        return m_keymap;
    const int32_t device = xkb_x11_get_core_keyboard_device_id(m_connection.get());
    m_keymap.set(xkb_x11_keymap_new_from_device(m_keymap.context(), m_connection.get(), device,
                                                XKB_KEYMAP_COMPILE_NO_FLAGS),
                 activeGroup());
    return m_keymap;
}

quint32 X11KeyboardLayout::activeGroup() const
{
    const X11Reply<xcb_xkb_get_state_reply_t> state(xcb_xkb_get_state_reply(
        m_connection.get(), xcb_xkb_get_state(m_connection.get(), XCB_XKB_ID_USE_CORE_KBD),
        nullptr));
    return state ? state->group : 0;
}

} // namespace tovek
