// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/overlay/X11KeyboardHold.h"

#include "foundation/MainThread.h"
#include "platform/x11/X11ForeignWindows.h"
#include "platform/x11/X11Requests.h"

#include <QCoreApplication>

#include <array>
#include <chrono>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr xcb_keysym_t escapeSymbol = 0xff1b;
/// Menus let go within 25 ms; the later tries are for a desktop that is busy. 400 ms in all.
constexpr std::array retryDelays{10ms, 20ms, 40ms, 70ms, 110ms, 150ms};
constexpr auto focusCheckDelay = 50ms;
constexpr size_t focusChecks = 10;
constexpr auto longestLinger = 500ms;
/// After the overlays are on the screen; then as long as a menu may take to let go.
constexpr std::array mouseDelays{60ms, 150ms, 250ms};

struct FreeSymbols
{
    void operator()(xcb_key_symbols_t *symbols) const { xcb_key_symbols_free(symbols); }
};

} // namespace

X11KeyboardHold::X11KeyboardHold(std::shared_ptr<X11Connection> connection)
    : m_connection(std::move(connection))
{
    m_retry.setSingleShot(true);
    m_retry.setTimerType(Qt::PreciseTimer);
    m_retry.callOnTimeout([this] { attempt(); });
    m_focusCheck.setSingleShot(true);
    m_focusCheck.setInterval(focusCheckDelay);
    m_focusCheck.callOnTimeout([this] { checkFocus(); });
    m_mouseCheck.setSingleShot(true);
    m_mouseCheck.callOnTimeout([this] { checkMouse(); });
    m_lingering.setSingleShot(true);
    m_lingering.setInterval(longestLinger);
    m_lingering.callOnTimeout([this] { ungrab(); });
    qApp->installNativeEventFilter(this);
}

X11KeyboardHold::~X11KeyboardHold()
{
    if (!m_connection->xcb())
        return;
    qApp->removeNativeEventFilter(this);
    if (m_hasKeyboard || m_lingering.isActive())
        ungrab();
}

void X11KeyboardHold::take(QWindow &window, std::function<void()> onDenied)
{
    Q_ASSERT(isMainThread());
    if (holds(window))
        return;
    m_lingering.stop();
    m_retry.stop();
    m_window = &window;
    m_onDenied = std::move(onDenied);
    m_attempts = 0;
    attempt();
}

void X11KeyboardHold::attempt()
{
    if (!m_window || !m_connection->xcb())
        return;
    const uint8_t status = grab(xcb_window_t(m_window->winId()));
    m_hasKeyboard = status == XCB_GRAB_STATUS_SUCCESS;
    if (m_hasKeyboard) {
        m_focusChecks = 0;
        if (m_takesFocus)
            takeFocus();
        m_mouseChecks = 0;
        m_mouseCheck.start(mouseDelays.front());
        return;
    }
    if (status == XCB_GRAB_STATUS_ALREADY_GRABBED && m_attempts == 0
        && X11ForeignWindows(m_connection->xcb()).isAMenuOpen())
        sendEscape();
    if (m_attempts < retryDelays.size()) {
        m_retry.start(retryDelays[m_attempts++]);
        return;
    }
    m_window.clear();
    if (m_onDenied)
        m_onDenied();
}

void X11KeyboardHold::takeFocus()
{
    // With the present time: the toolkit's own request carries that of the last event it saw, which
    // the server takes for an old one.
    xcb_set_input_focus(m_connection->xcb(), XCB_INPUT_FOCUS_POINTER_ROOT,
                        xcb_window_t(m_window->winId()), XCB_CURRENT_TIME);
    m_connection->flush();
    m_focusCheck.start();
}

/// Mutter (43) overlooks a window that takes the focus while it moves the focus itself, and learns
/// of it only when the focus moves once more.
void X11KeyboardHold::checkFocus()
{
    xcb_connection_t *xcb = m_connection->xcb();
    if (!m_hasKeyboard || !m_window || !xcb || m_focusChecks++ == focusChecks)
        return;
    const auto cookie =
        xcb_get_property(xcb, 0, m_connection->root(), m_connection->atom(X11Atom::activeWindow),
                         XCB_ATOM_WINDOW, 0, 1);
    const X11Reply<xcb_get_property_reply_t> active(xcb_get_property_reply(xcb, cookie, nullptr));
    if (active && xcb_get_property_value_length(active.get()) == sizeof(xcb_window_t)
        && *static_cast<xcb_window_t *>(xcb_get_property_value(active.get())) == m_window->winId())
        return;
    xcb_set_input_focus(xcb, XCB_INPUT_FOCUS_NONE, XCB_NONE, XCB_CURRENT_TIME);
    takeFocus();
}

void X11KeyboardHold::release(QWindow &window)
{
    Q_ASSERT(isMainThread());
    if (m_window != &window)
        return;
    m_retry.stop();
    m_mouseCheck.stop();
    m_window.clear();
    if (!m_hasKeyboard || !m_connection->xcb())
        return;
    m_hasKeyboard = false;
    // The root window stays viewable: unmapping ours would end the grab.
    if (m_lastKey && x11IsKeyDown(m_connection->xcb(), m_lastKey)
        && grab(m_connection->root()) == XCB_GRAB_STATUS_SUCCESS)
        m_lingering.start();
    else
        ungrab();
}

bool X11KeyboardHold::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto *event = static_cast<xcb_key_press_event_t *>(message);
    const int type = event->response_type & 0x7f;
    if (m_hasKeyboard && type == XCB_FOCUS_OUT && m_window) {
        // A popup of the toolkit's that closes takes every grab with it.
        const auto *focus = static_cast<xcb_focus_out_event_t *>(message);
        if (focus->event == m_window->winId() && focus->mode == XCB_NOTIFY_MODE_UNGRAB) {
            m_attempts = 0;
            m_retry.start(0ms);
        }
    } else if (type == XCB_KEY_PRESS && m_hasKeyboard) {
        m_lastKey = event->detail;
    } else if (type == XCB_KEY_RELEASE && m_lingering.isActive() && event->detail == m_lastKey
               && !x11IsKeyDown(m_connection->xcb(),
                                m_lastKey)) { // a key that repeats comes up between two presses
        ungrab();
    }
    return false;
}

uint8_t X11KeyboardHold::grab(xcb_window_t window)
{
    xcb_connection_t *xcb = m_connection->xcb();
    const auto cookie = xcb_grab_keyboard(xcb, 0, window, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                                          XCB_GRAB_MODE_ASYNC);
    const X11Reply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(xcb, cookie, nullptr));
    return reply ? reply->status : uint8_t(XCB_GRAB_STATUS_NOT_VIEWABLE);
}

void X11KeyboardHold::sendEscape()
{
    xcb_connection_t *xcb = m_connection->xcb();
    const std::unique_ptr<xcb_key_symbols_t, FreeSymbols> symbols(xcb_key_symbols_alloc(xcb));
    const X11Reply<xcb_keycode_t> codes(
        symbols ? xcb_key_symbols_get_keycode(symbols.get(), escapeSymbol) : nullptr);
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(xcb, &xcb_test_id);
    if (!codes || codes.get()[0] == XCB_NO_SYMBOL || !extension || !extension->present)
        return;
    for (const uint8_t type : {XCB_KEY_PRESS, XCB_KEY_RELEASE})
        xcb_test_fake_input(xcb, type, codes.get()[0], XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
    m_connection->flush();
}

void X11KeyboardHold::checkMouse()
{
    if (!m_hasKeyboard || !m_window || !m_connection->xcb() || !isMouseHeld())
        return;
    if (++m_mouseChecks < mouseDelays.size())
        m_mouseCheck.start(mouseDelays[m_mouseChecks]);
    else if (onMouseHeld)
        onMouseHeld();
}

/// Only a try tells. It would end a drag of ours, for which a button is down.
bool X11KeyboardHold::isMouseHeld() const
{
    constexpr uint16_t anyButton = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
    xcb_connection_t *xcb = m_connection->xcb();
    const X11Reply<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(xcb, xcb_query_pointer(xcb, m_connection->root()), nullptr));
    if (!pointer || (pointer->mask & anyButton))
        return false;
    const auto cookie =
        xcb_grab_pointer(xcb, 1, xcb_window_t(m_window->winId()), 0, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    xcb_ungrab_pointer(xcb, XCB_CURRENT_TIME);
    const X11Reply<xcb_grab_pointer_reply_t> reply(xcb_grab_pointer_reply(xcb, cookie, nullptr));
    return reply && reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
}

void X11KeyboardHold::ungrab()
{
    m_lingering.stop();
    m_hasKeyboard = false;
    m_lastKey = 0;
    xcb_ungrab_keyboard(m_connection->xcb(), XCB_CURRENT_TIME);
    m_connection->flush();
}

} // namespace tovek
