// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/keys/X11HotKeys.h"

#include "platform/linux/ScreenLock.h"
#include "platform/x11/X11Connect.h"
#include "platform/x11/X11Requests.h"
#include "platform/x11/keys/X11ScreenLock.h"
#include "platform/x11/keys/X11WindowManager.h"

#include <algorithm>
#include <chrono>
#include <xcb/xinput.h>

namespace tovek {

using namespace std::chrono_literals;

namespace {

/// Servers repeat a held key after 660 ms, unless the user chose otherwise.
constexpr auto holdDelay = 350ms;
/// What toolkits need to repaint a window that has the focus again.
constexpr auto repaintDelay = 25ms;
/// Programs close several windows as they end.
constexpr auto freedDelay = 300ms;
/// Few programs that hold keys have no window; those are noticed later.
constexpr auto freedPatience = 30s;
/// A grab as short as this leaves a window no time to repaint as one without focus.
constexpr xcb_timestamp_t unnoticedMs = 8;

} // namespace

std::unique_ptr<X11HotKeys> X11HotKeys::create()
{
    xcb_connection_t *connection = x11Connect();
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return nullptr;
    }
    // The constructor is private.
    return std::unique_ptr<X11HotKeys>(new X11HotKeys(connection));
}

X11HotKeys::X11HotKeys(xcb_connection_t *connection)
    : m_connection(connection, &xcb_disconnect)
    , m_root(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root)
    , m_keyEvents(connection, m_root)
    , m_grabs(connection)
    , m_rawKeys(connection, [this](KeyCombo combo, bool isDown) {
        dispatchLater();
        return onRawKey && onRawKey(combo, isDown);
    })
{
    m_holdTimer.setSingleShot(true);
    m_holdTimer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_holdTimer, &QTimer::timeout, &m_context, [this] { holdKeyboard(); });
    m_freedTimer.setSingleShot(true);
    QObject::connect(&m_freedTimer, &QTimer::timeout, &m_context, [this] { tellMayBeFree(); });
}

X11HotKeys::~X11HotKeys() = default;

int X11HotKeys::grab(quint32 id, KeyCombo combo)
{
    // Before the grab, whose answer then is the server's for both. The release of a key that is
    // down now must not pass before it is waited for.
    m_keyEvents.selectRaw(m_keyEvents.rawMask() | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS
                          | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE);
    // Before it too: what is pressed from the grab on is meant for us.
    const X11Reply<xcb_query_keymap_reply_t> keysDown(
        xcb_query_keymap_reply(m_connection.get(), xcb_query_keymap(m_connection.get()), nullptr));
    const int status = m_grabs.grab(id, combo);
    if (status == 0 && keysDown)
        noteStale(id, *keysDown);
    selectRawKeys();
    dispatchLater();
    return status;
}

void X11HotKeys::release(quint32 id)
{
    if (!m_grabs.release(id))
        return;
    const auto isOfId = [id](const Press &press) { return press.id == id; };
    if (std::erase_if(m_presses, isOfId) && m_presses.empty()) {
        m_holdTimer.stop();
        ungrabKeyboard();
    }
    selectRawKeys();
}

void X11HotKeys::setWatchingRawKeys(bool isOn)
{
    m_rawKeys.setWatching(isOn, m_grabs.modifiers());
}

bool X11HotKeys::isTaken(KeyCombo combo)
{
    const bool isTaken = m_grabs.isTaken(combo);
    dispatchLater();
    return isTaken;
}

void X11HotKeys::setWatchingForFreedKeys(bool isOn)
{
    if (m_isWatchingForFreedKeys == isOn)
        return;
    m_isWatchingForFreedKeys = isOn;
    // Each window that comes, moves or goes wakes this process meanwhile.
    const quint32 mask = isOn ? XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY : XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(m_connection.get(), m_root, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(m_connection.get());
    if (!isOn)
        m_freedTimer.stop();
    else if (m_notifier)
        m_freedTimer.start(freedPatience);
}

QString X11HotKeys::likelyHolder() const
{
    return x11WindowManagerName(m_connection.get(), m_root);
}

void X11HotKeys::startDispatching()
{
    if (m_notifier)
        return;
    if (m_isWatchingForFreedKeys)
        m_freedTimer.start(freedPatience);
    m_notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(m_connection.get()),
                                                   QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, &m_context,
                     [this] { dispatch(); });
    dispatchLater();
}

void X11HotKeys::selectRawKeys()
{
    // Raw events cannot be chosen by key, and each wakes this process: presses are watched only
    // while something is grabbed, releases only while a grabbed key is down.
    quint32 mask = m_grabs.isEmpty() ? 0 : XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS;
    if (!m_presses.empty() || !m_stale.empty())
        mask |= XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE;
    m_keyEvents.selectRaw(mask);
}

void X11HotKeys::takeEvents()
{
    while (xcb_generic_event_t *event = xcb_poll_for_event(m_connection.get()))
        m_events.push_back(Event(event));
    if (m_isLost || !xcb_connection_has_error(m_connection.get()))
        return;
    m_isLost = true;
    if (m_notifier)
        m_notifier->setEnabled(false);
    if (onConnectionLost)
        onConnectionLost();
}

void X11HotKeys::dispatchLater()
{
    // A round trip may have read events that the notifier cannot see any more.
    if (m_notifier && !m_isLost)
        QMetaObject::invokeMethod(
            &m_context, [this] { dispatch(); }, Qt::QueuedConnection);
}

void X11HotKeys::dispatch()
{
    takeEvents();
    while (!m_events.empty() && !m_isLost) {
        // Taken out first, because a callback may run a main loop of its own.
        const Event event = std::move(m_events.front());
        m_events.pop_front();
        handle(*event);
        takeEvents();
    }
    if (!m_hasNewMapping || m_isLost)
        return;
    m_hasNewMapping = false;
    m_grabs.readModifiers();
    m_rawKeys.setWatching(m_rawKeys.isWatching(), m_grabs.modifiers());
    if (m_isWatchingForFreedKeys)
        m_freedTimer.start(0ms);
    dispatchLater();
}

void X11HotKeys::handle(const xcb_generic_event_t &event)
{
    switch (event.response_type & 0x7f) {
    case XCB_KEY_PRESS:
        corePress(reinterpret_cast<const xcb_key_press_event_t &>(event));
        break;
    case XCB_KEY_RELEASE: {
        const auto &key = reinterpret_cast<const xcb_key_release_event_t &>(event);
        keyReleased(key.detail, key.time, true);
        break;
    }
    case XCB_MAPPING_NOTIFY:
        m_hasNewMapping = true;
        break;
    case XCB_DESTROY_NOTIFY:
        if (m_isWatchingForFreedKeys)
            m_freedTimer.start(freedDelay);
        break;
    case XCB_GE_GENERIC: {
        const auto &raw = reinterpret_cast<const xcb_input_raw_key_press_event_t &>(event);
        if (raw.extension != m_keyEvents.rawExtension())
            break;
        if (raw.event_type == XCB_INPUT_RAW_KEY_PRESS)
            rawPress(xcb_keycode_t(raw.detail), raw.time);
        else if (raw.event_type == XCB_INPUT_RAW_KEY_RELEASE)
            keyReleased(xcb_keycode_t(raw.detail), raw.time, false);
        break;
    }
    default:
        if (m_keyEvents.isNewMap(event))
            m_hasNewMapping = true;
        break;
    }
}

void X11HotKeys::corePress(const xcb_key_press_event_t &event)
{
    if (Press *repeated = findPress(event.detail)) {
        // The server repeats sooner than we expected, and the grab has fired again. It now lasts
        // until the release, which keeps further repeats from the focused window.
        repeated->isGrabbed = true;
        return;
    }
    if (m_stale.contains(event.detail))
        return; // the grab lasts until the release, which no window needs to see
    const auto id = m_grabs.find(event.detail, event.state);
    if (id)
        arm(*id, event.detail, event.time);
    else if (m_presses.empty())
        ungrabKeyboard();
}

void X11HotKeys::rawPress(xcb_keycode_t keycode, xcb_timestamp_t time)
{
    if (!m_grabs.containsKey(keycode) || findPress(keycode) || m_stale.contains(keycode))
        return;
    // Where the grab fires, its event is in the queue by the time this reply is.
    const X11Reply<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(
        m_connection.get(), xcb_query_pointer(m_connection.get(), m_root), nullptr));
    takeEvents();
    const bool isCoreComing = std::any_of(m_events.begin(), m_events.end(), [&](const Event &e) {
        const auto *key = reinterpret_cast<const xcb_key_press_event_t *>(e.get());
        return (e->response_type & 0x7f) == XCB_KEY_PRESS && key->detail == keycode;
    });
    const auto id = pointer ? m_grabs.find(keycode, pointer->mask) : std::nullopt;
    if (isCoreComing || !id)
        return;
    if (isTopmostWindowCovering(m_connection.get()) || isScreenSaverActive())
        return;
    arm(*id, keycode, time);
    // Its release may have passed before releases were watched.
    if (findPress(keycode) && !x11IsKeyDown(m_connection.get(), keycode))
        keyReleased(keycode, time, false);
}

void X11HotKeys::arm(quint32 id, xcb_keycode_t keycode, xcb_timestamp_t time)
{
    m_presses.push_back({id, keycode, time, !m_keyEvents.hasRaw()});
    if (m_keyEvents.hasRaw()) {
        // In this order there is no moment in which a release could get lost.
        selectRawKeys();
        ungrabKeyboard();
        m_holdTimer.start(holdDelay);
    }
    if (onPressed)
        onPressed(id);
}

void X11HotKeys::keyReleased(xcb_keycode_t keycode, xcb_timestamp_t time, bool isCore)
{
    if (m_stale.erase(keycode))
        selectRawKeys();
    const Press *found = findPress(keycode);
    if (!found)
        return;
    const Press press = *found;
    std::erase_if(m_presses, [&](const Press &other) { return other.keycode == keycode; });
    if (m_presses.empty()) {
        m_holdTimer.stop();
        if (press.isGrabbed)
            ungrabKeyboard();
    }
    selectRawKeys();
    const bool wasNoticed = press.isGrabbed || (isCore && time - press.time > unnoticedMs);
    if (wasNoticed)
        QTimer::singleShot(repaintDelay, Qt::PreciseTimer, &m_context,
                           [this, id = press.id] { tellReleased(id); });
    else
        tellReleased(press.id);
}

void X11HotKeys::noteStale(quint32 id, const xcb_query_keymap_reply_t &keysDown)
{
    for (const xcb_keycode_t keycode : m_grabs.keycodes(id)) {
        if (!findPress(keycode) && x11IsDown(keysDown, keycode))
            m_stale.insert(keycode);
    }
}

void X11HotKeys::holdKeyboard()
{
    // A release that got lost must not end in a grab that nothing ends.
    const std::vector<Press> presses = m_presses;
    for (const Press &press : presses) {
        if (!x11IsKeyDown(m_connection.get(), press.keycode))
            keyReleased(press.keycode, press.time, false);
    }
    dispatchLater();
    if (m_presses.empty())
        return;
    const X11Reply<xcb_grab_keyboard_reply_t> reply(
        xcb_grab_keyboard_reply(m_connection.get(),
                                xcb_grab_keyboard(m_connection.get(), 0, m_root, XCB_CURRENT_TIME,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                nullptr));
    if (!reply || reply->status != XCB_GRAB_STATUS_SUCCESS)
        return;
    for (Press &press : m_presses)
        press.isGrabbed = true;
    // The release may have come between the question and the grab.
    m_holdTimer.start(holdDelay);
}

void X11HotKeys::tellMayBeFree()
{
    if (onMayBeFree)
        onMayBeFree();
    if (m_isWatchingForFreedKeys && !m_freedTimer.isActive())
        m_freedTimer.start(freedPatience);
}

void X11HotKeys::ungrabKeyboard()
{
    xcb_ungrab_keyboard(m_connection.get(), XCB_CURRENT_TIME);
    xcb_flush(m_connection.get());
}

X11HotKeys::Press *X11HotKeys::findPress(xcb_keycode_t keycode)
{
    const auto found =
        std::find_if(m_presses.begin(), m_presses.end(),
                     [keycode](const Press &press) { return press.keycode == keycode; });
    return found == m_presses.end() ? nullptr : &*found;
}

void X11HotKeys::tellReleased(quint32 id)
{
    if (m_grabs.contains(id) && onReleased)
        onReleased(id);
}

} // namespace tovek
