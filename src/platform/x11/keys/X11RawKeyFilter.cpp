// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/keys/X11RawKeyFilter.h"

#include "platform/linux/KeyCodes.h"
#include "platform/x11/X11Requests.h"

#include <QCoreApplication>

namespace tovek {

X11RawKeyFilter::X11RawKeyFilter(xcb_connection_t *connection, Handler handler)
    : m_connection(connection)
    , m_handler(std::move(handler))
{
}

X11RawKeyFilter::~X11RawKeyFilter()
{
    if (m_isWatching)
        setWatching(false, m_modifiers);
}

void X11RawKeyFilter::setWatching(bool isOn, const X11Modifiers &modifiers)
{
    m_modifiers = modifiers;
    auto *application = QCoreApplication::instance();
    if (m_isWatching == isOn || !application)
        return;
    m_isWatching = isOn;
    m_down.clear();
    m_released = {};
    if (isOn)
        application->installNativeEventFilter(this);
    else
        application->removeNativeEventFilter(this);
}

bool X11RawKeyFilter::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *)
{
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    const auto *key = static_cast<const xcb_key_press_event_t *>(message);
    switch (event->response_type & 0x7f) {
    case XCB_KEY_PRESS:
        return press(key->detail, key->state, key->time);
    case XCB_KEY_RELEASE:
        return release(key->detail, key->time);
    default:
        return false;
    }
}

bool X11RawKeyFilter::press(int keycode, quint16 state, quint32 time)
{
    if (m_released.keycode == keycode && m_released.time == time)
        return m_released.isSwallowed;
    if (const auto repeated = m_down.find(keycode); repeated != m_down.end())
        return repeated->second.isSwallowed;
    const int keyCode = hardwareKeyCode(keycode - windowSystemKeyOffset);
    if (keyCode == KeyCode::none)
        return false;
    const KeyCombo combo{quint32(keyCode), m_modifiers.modifiersOf(state)};
    const bool isSwallowed = m_handler(combo, true);
    if (m_isWatching)
        m_down.insert_or_assign(keycode, Press{combo, isSwallowed});
    return isSwallowed;
}

bool X11RawKeyFilter::release(int keycode, quint32 time)
{
    const auto found = m_down.find(keycode);
    if (found == m_down.end()) {
        if (m_released.keycode != keycode)
            return false;
        m_released.time = time;
        return m_released.isSwallowed;
    }
    // The toolkit's connection gets a release before each repeat of a key that is held.
    if (x11IsKeyDown(m_connection, keycode))
        return found->second.isSwallowed;
    // With the modifiers of the press, since these may have been let go first.
    const Press press = found->second;
    m_down.erase(found);
    m_released = {keycode, time, press.isSwallowed};
    m_handler(press.combo, false);
    return press.isSwallowed;
}

} // namespace tovek
