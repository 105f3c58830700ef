// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/overlay/X11OverlayFixture.h"

#include <xcb/xtest.h>

using namespace tovek;

/// How an overlay comes by the keyboard, and lets go of it.
class TestX11OverlayKeys : public QObject, protected X11OverlayFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".*"));
        setUp();
    }

    void takesTheKeysAndLeavesTheFocus()
    {
        const xcb_window_t focusBefore = focus();
        Overlay overlay;
        const auto surface = m_shell->create(*overlay.windowHandle(), m_screen, freeze());
        surface->makeKey();
        QVERIFY(!surface->isKey()); // as soon as it shows
        overlay.open(*surface);
        QVERIFY(surface->isKey());
        QVERIFY(QTest::qWaitForWindowExposed(overlay.windowHandle()));
        type(evdevA, XCB_KEY_PRESS);
        QTRY_COMPARE(overlay.keys, 1);
        QCOMPARE(focus(), focusBefore);
        // The key that closes the overlay belongs to it until it comes up.
        surface->orderOut();
        QVERIFY(!surface->isKey());
        QTest::qWait(50);
        QVERIFY(!canGrabKeyboard());
        type(evdevA, XCB_KEY_RELEASE);
        QTRY_VERIFY(canGrabKeyboard());
        QCOMPARE(focus(), focusBefore);
    }

    void letsGoOfAKeyThatStaysDown()
    {
        Overlay overlay;
        const auto surface = m_shell->create(*overlay.windowHandle(), m_screen, freeze());
        overlay.open(*surface);
        surface->makeKey();
        type(evdevA, XCB_KEY_PRESS);
        QTRY_COMPARE(overlay.keys, 1);
        surface->orderOut();
        QVERIFY(!canGrabKeyboard());
        QTRY_VERIFY_WITH_TIMEOUT(canGrabKeyboard(), 1000);
        type(evdevA, XCB_KEY_RELEASE);
    }

    void asksAForeignGrabToEnd_data()
    {
        QTest::addColumn<bool>("obeys");
        QTest::addColumn<bool>("isMenu");
        QTest::newRow("a menu that closes on Escape") << true << true;
        QTest::newRow("a menu that keeps it") << false << true;
        QTest::newRow("a question for a password") << false << false;
    }
    void asksAForeignGrabToEnd()
    {
        QFETCH(bool, obeys);
        QFETCH(bool, isMenu);
        setManaged(desktop->window());
        const xcb_window_t menu = isMenu ? desktop->openWindow({300, 300, 80, 200}, 0xffffff) : 0;
        QVERIFY(canGrabKeyboard(desktop->window()));
        Overlay overlay;
        const auto surface = m_shell->create(*overlay.windowHandle(), m_screen, freeze());
        int denials = 0;
        surface->onKeyboardDenied = [&denials] { ++denials; };
        grabKeyboard(desktop->window());
        overlay.open(*surface);
        surface->makeKey();
        QVERIFY(!surface->isKey());
        int escapes = 0;
        const auto listen = [&] {
            for (xcb_generic_event_t *event; (event = xcb_poll_for_event(desktop->client()));) {
                if ((event->response_type & 0x7f) == XCB_KEY_PRESS) {
                    ++escapes;
                    if (obeys)
                        xcb_ungrab_keyboard(desktop->client(), XCB_CURRENT_TIME);
                }
                std::free(event);
            }
            desktop->sync();
            return surface->isKey() || denials > 0;
        };
        QTRY_VERIFY_WITH_TIMEOUT(listen(), 1500);
        QCOMPARE(surface->isKey(), obeys);
        QCOMPARE(denials, obeys ? 0 : 1);
        QCOMPARE(escapes, isMenu ? 1 : 0);
        if (menu)
            xcb_destroy_window(desktop->client(), menu);
        xcb_ungrab_keyboard(desktop->client(), XCB_CURRENT_TIME);
        desktop->sync();
        QCOMPARE(overlay.keys, 0);
    }

    void tellsOfAMouseThatIsHeld_data()
    {
        QTest::addColumn<bool>("isHeld");
        QTest::newRow("held") << true;
        QTest::newRow("free") << false;
    }
    void tellsOfAMouseThatIsHeld()
    {
        QFETCH(bool, isHeld);
        int told = 0;
        m_shell->onMouseHeld = [&told] { ++told; };
        if (isHeld) {
            const X11Reply<xcb_grab_pointer_reply_t> reply(xcb_grab_pointer_reply(
                desktop->client(),
                xcb_grab_pointer(desktop->client(), 0, desktop->window(), 0, XCB_GRAB_MODE_ASYNC,
                                 XCB_GRAB_MODE_ASYNC, 0, 0, XCB_CURRENT_TIME),
                nullptr));
            QVERIFY(reply && reply->status == XCB_GRAB_STATUS_SUCCESS);
        }
        Overlay overlay;
        const auto surface = m_shell->create(*overlay.windowHandle(), m_screen, freeze());
        overlay.open(*surface);
        surface->makeKey();
        QVERIFY(surface->isKey());
        if (isHeld) {
            QTRY_COMPARE(told, 1);
        } else {
            QTest::qWait(600);
            QCOMPARE(told, 0);
        }
        xcb_ungrab_pointer(desktop->client(), XCB_CURRENT_TIME);
        desktop->sync();
    }

    void tellsOfALocker_data()
    {
        QTest::addColumn<QRect>("place");
        QTest::addColumn<bool>("isLocker");
        QTest::newRow("all over the screen") << QRect(0, 0, 1366, 768) << true;
        QTest::newRow("but for its edges") << QRect(1, 1, 1364, 766) << true;
        QTest::newRow("a large notification") << QRect(0, 0, 1366, 700) << false;
    }
    void tellsOfALocker()
    {
        QFETCH(QRect, place);
        QFETCH(bool, isLocker);
        int told = 0;
        m_shell->onLocker = [&told] { ++told; };
        Overlay overlay;
        const auto surface = m_shell->create(*overlay.windowHandle(), m_screen, freeze());
        overlay.open(*surface);
        const xcb_window_t window = desktop->openWindow(place, 0);
        desktop->sync();
        if (isLocker) {
            QTRY_COMPARE(told, 1);
        } else {
            QTest::qWait(100);
            QCOMPARE(told, 0);
        }
        xcb_destroy_window(desktop->client(), window);
        desktop->sync();
    }

    void tellsOfALockerThatTakesTheFocus()
    {
        int told = 0;
        m_shell->onLocker = [&told] { ++told; };
        setFocus(desktop->window());
        Overlay overlay;
        const auto surface = m_shell->create(*overlay.windowHandle(), m_screen, freeze());
        overlay.open(*surface);
        surface->makeKey();
        QTest::qWait(150); // it looks at the focus
        setFocus(XCB_NONE);
        QTRY_COMPARE(told, 1);
        setFocus(XCB_INPUT_FOCUS_POINTER_ROOT);
    }

    void takesTheEndOfTheFocusedWindowForNoLocker()
    {
        int told = 0;
        m_shell->onLocker = [&told] { ++told; };
        const xcb_window_t window = desktop->openWindow({10, 10, 100, 100}, 0);
        setFocus(window);
        Overlay overlay;
        const auto surface = m_shell->create(*overlay.windowHandle(), m_screen, freeze());
        overlay.open(*surface);
        QTest::qWait(150);
        xcb_destroy_window(desktop->client(), window);
        desktop->sync();
        QTest::qWait(100);
        QCOMPARE(told, 0);
        setFocus(XCB_INPUT_FOCUS_POINTER_ROOT);
    }

private:
    static constexpr uint8_t evdevA = 38;

    xcb_window_t focus() const
    {
        const X11Reply<xcb_get_input_focus_reply_t> reply(xcb_get_input_focus_reply(
            desktop->client(), xcb_get_input_focus(desktop->client()), nullptr));
        return reply->focus;
    }
    /// As a window manager marks windows that are no menus.
    void setManaged(xcb_window_t window) const
    {
        const X11Reply<xcb_intern_atom_reply_t> state(xcb_intern_atom_reply(
            desktop->client(), xcb_intern_atom(desktop->client(), 0, 8, "WM_STATE"), nullptr));
        const uint32_t normal[]{1, 0};
        xcb_change_property(desktop->client(), XCB_PROP_MODE_REPLACE, window, state->atom,
                            state->atom, 32, 2, normal);
        desktop->sync();
    }
    void setFocus(xcb_window_t window) const
    {
        xcb_set_input_focus(desktop->client(), XCB_INPUT_FOCUS_NONE, window, XCB_CURRENT_TIME);
        desktop->sync();
    }
    void type(uint8_t keycode, uint8_t type) const
    {
        xcb_test_fake_input(desktop->client(), type, keycode, XCB_CURRENT_TIME, 0, 0, 0, 0);
        desktop->sync();
    }
    bool grabKeyboard(xcb_window_t window) const
    {
        const X11Reply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(
            desktop->client(),
            xcb_grab_keyboard(desktop->client(), 0, window, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                              XCB_GRAB_MODE_ASYNC),
            nullptr));
        return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    }
    /// For another program, that is.
    bool canGrabKeyboard() const { return canGrabKeyboard(desktop->screen().root); }
    bool canGrabKeyboard(xcb_window_t window) const
    {
        const bool isGrabbed = grabKeyboard(window);
        xcb_ungrab_keyboard(desktop->client(), XCB_CURRENT_TIME);
        desktop->sync();
        return isGrabbed;
    }
};

int main(int argc, char **argv)
{
    return runOnTestDesktop<TestX11OverlayKeys>(argc, argv);
}
#include "tst_X11OverlayKeys.moc"
