// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/TestKeyboard.h"

#include "platform/linux/KeyCodes.h"

#include <QTest>

#include <xcb/xtest.h>
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

namespace tovek {

TestKeyboard::TestKeyboard(const QString &displayName) : m_connection(displayName)
{
    const XPtr<xcb_xkb_use_extension_reply_t> xkb(xcb_xkb_use_extension_reply(
        m_connection, xcb_xkb_use_extension(m_connection, 1, 0), nullptr));
}

TestKeyboard::~TestKeyboard()
{
    releaseAll();
}

void TestKeyboard::tap(int evdev)
{
    press(evdev);
    release(evdev);
}

void TestKeyboard::press(KeyCombo combo)
{
    for (const auto &[bit, evdev] :
         {std::pair(0x1000u, control), {0x800u, alt}, {0x200u, shift}, {0x100u, super}}) {
        if (combo.modifiers & bit)
            press(evdev);
    }
    press(evdevCodes(int(combo.keyCode)).front());
}

void TestKeyboard::releaseAll()
{
    while (!m_down.isEmpty())
        release(m_down.last());
}

void TestKeyboard::tap(KeyCombo combo)
{
    press(combo);
    releaseAll();
}

void TestKeyboard::holdElsewhere(int evdev, quint16 modifiers)
{
    const XPtr<xcb_generic_error_t> error(
        xcb_request_check(m_connection,
                          xcb_grab_key_checked(m_connection, 0, m_connection.root(), modifiers,
                                               uint8_t(evdev + windowSystemKeyOffset),
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
    QVERIFY(!error);
}

xcb_window_t TestKeyboard::openWindow(QSize size, bool hasFocus)
{
    const xcb_window_t window = xcb_generate_id(m_connection);
    const quint32 values[] = {1, XCB_EVENT_MASK_KEY_PRESS};
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_connection.root(), 0, 0,
                      quint16(size.width()), quint16(size.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    xcb_map_window(m_connection, window);
    if (hasFocus)
        xcb_set_input_focus(m_connection, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    m_connection.sync();
    return window;
}

void TestKeyboard::closeWindow(xcb_window_t window)
{
    xcb_destroy_window(m_connection, window);
    m_connection.sync();
}

void TestKeyboard::grabKeyboard(xcb_window_t window)
{
    const XPtr<xcb_grab_keyboard_reply_t> reply(
        xcb_grab_keyboard_reply(m_connection,
                                xcb_grab_keyboard(m_connection, 0, window, XCB_CURRENT_TIME,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                nullptr));
    QVERIFY(reply && reply->status == XCB_GRAB_STATUS_SUCCESS);
}

void TestKeyboard::ungrabKeyboard()
{
    xcb_ungrab_keyboard(m_connection, XCB_CURRENT_TIME);
    m_connection.sync();
}

int TestKeyboard::takeKeyPresses()
{
    int presses = 0;
    m_connection.sync();
    while (const XPtr<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)})
        presses += (event->response_type & 0x7f) == XCB_KEY_PRESS;
    return presses;
}

void TestKeyboard::setGroup(int group)
{
    xcb_xkb_latch_lock_state(m_connection, XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, uint8_t(group), 0, 0,
                             0);
    m_connection.sync();
}

void TestKeyboard::fake(int evdev, bool isDown)
{
    if (isDown)
        m_down.append(evdev);
    else
        m_down.removeOne(evdev);
    xcb_test_fake_input(m_connection, isDown ? XCB_KEY_PRESS : XCB_KEY_RELEASE,
                        uint8_t(evdev + windowSystemKeyOffset), XCB_CURRENT_TIME, XCB_WINDOW_NONE,
                        0, 0, 0);
    m_connection.sync();
}

} // namespace tovek
