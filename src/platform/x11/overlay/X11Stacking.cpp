// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/overlay/X11Stacking.h"

#include "foundation/MainThread.h"
#include "platform/x11/X11ForeignWindows.h"
#include "platform/x11/X11Reply.h"

#include <QCoreApplication>

#include <algorithm>

namespace tovek {

namespace {

using namespace std::chrono_literals;

/// The toolkit's own rounding of a size in logical pixels.
constexpr int roundedPixels = 4;
constexpr uint32_t watched = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_FOCUS_CHANGE;
/// No sooner: opening waits for no answer.
constexpr auto lookDelay = 50ms;
/// Before the keyboard, which went with the overlay, is given up; not at once, lest two programs
/// that both insist take all of the processor.
constexpr auto showAgainDelay = 10ms;
/// What a compositing manager draws on is put up by the server and takes clicks until its owner,
/// with its next requests, has them fall through (picom 9.1). A locker that uses it keeps them.
constexpr auto doubtDelay = 300ms;

} // namespace

X11Stacking::X11Stacking(std::shared_ptr<X11Connection> connection)
    : m_connection(std::move(connection))
    , m_savers(m_connection)
{
    m_look.setSingleShot(true);
    m_look.setInterval(lookDelay);
    m_look.callOnTimeout([this] {
        m_focus = focus();
        m_savers.findDaemon();
    });
    m_doubt.setSingleShot(true);
    m_doubt.setInterval(doubtDelay);
    m_doubt.callOnTimeout([this] { lookAgain(); });
    m_showAgain.setSingleShot(true);
    m_showAgain.setInterval(showAgainDelay);
    m_showAgain.callOnTimeout([this] { showAgain(); });
}

X11Stacking::~X11Stacking()
{
    if (m_connection->xcb() && !m_overlays.empty())
        setWatching(false);
}

void X11Stacking::add(xcb_window_t overlay, QRect native)
{
    Q_ASSERT(isMainThread());
    if (m_overlays.empty())
        setWatching(true);
    m_look.start();
    m_overlays[overlay] = native;
}

void X11Stacking::remove(xcb_window_t overlay)
{
    Q_ASSERT(isMainThread());
    if (m_overlays.erase(overlay) && m_overlays.empty()) {
        m_answered.clear();
        m_look.stop();
        m_doubt.stop();
        m_showAgain.stop();
        m_focus = XCB_NONE;
        m_onTop.clear();
        setWatching(false);
    }
}

void X11Stacking::setWatching(bool isOn)
{
    xcb_connection_t *xcb = m_connection->xcb();
    // The toolkit has a mask of its own on the root window, which must stay.
    const X11Reply<xcb_get_window_attributes_reply_t> now(xcb_get_window_attributes_reply(
        xcb, xcb_get_window_attributes(xcb, m_connection->root()), nullptr));
    if (!now)
        return;
    const uint32_t mask = isOn ? now->your_event_mask | watched : now->your_event_mask & ~watched;
    xcb_change_window_attributes(xcb, m_connection->root(), XCB_CW_EVENT_MASK, &mask);
    if (isOn)
        m_savers.start();
    else
        m_savers.stop();
    m_connection->flush();
    if (isOn)
        qApp->installNativeEventFilter(this);
    else
        qApp->removeNativeEventFilter(this);
}

bool X11Stacking::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto &event = *static_cast<xcb_generic_event_t *>(message);
    const int type = event.response_type & x11EventType;
    if (isForgedForOverlay(event))
        return true;
    if (m_savers.announcesBlanking(event))
        tellLocker();
    if (type == XCB_CONFIGURE_NOTIFY
        && undoes(*static_cast<xcb_configure_notify_event_t *>(message)))
        return true;
    if (type == XCB_MAP_NOTIFY) {
        const auto *map = static_cast<xcb_map_notify_event_t *>(message);
        if (map->event == m_connection->root())
            cameOnTop(map->window, map->override_redirect);
    } else if (type == XCB_CONFIGURE_NOTIFY) {
        const auto *configure = static_cast<xcb_configure_notify_event_t *>(message);
        if (configure->event == m_connection->root()
            && m_overlays.contains(configure->above_sibling))
            cameOnTop(configure->window, configure->override_redirect);
    } else if (type == XCB_FOCUS_IN) {
        // xscreensaver 6.06 that comes up by itself, when four tries at the keyboard have failed,
        // takes the focus from everybody before it tries four times more: nothing else tells of it.
        const auto *focus = static_cast<xcb_focus_in_event_t *>(message);
        if (focus->event == m_connection->root() && focus->detail == XCB_NOTIFY_DETAIL_NONE
            && !m_ignoresFocus && isFocusTaken())
            tellLocker();
    } else if (type == XCB_UNMAP_NOTIFY) {
        const xcb_window_t hidden = static_cast<xcb_unmap_notify_event_t *>(message)->window;
        m_onTop.erase(hidden);
        if (m_overlays.contains(hidden))
            m_showAgain.start();
    } else if (type == XCB_DESTROY_NOTIFY) {
        // Another window may get its number.
        const xcb_window_t gone = static_cast<xcb_destroy_notify_event_t *>(message)->window;
        m_onTop.erase(gone);
        m_answered.erase(gone);
    }
    return false;
}

bool X11Stacking::isOurs(xcb_window_t window) const
{
    const xcb_setup_t *setup = xcb_get_setup(m_connection->xcb());
    return (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

void X11Stacking::cameOnTop(xcb_window_t window, bool isUnmanaged)
{
    if (m_overlays.contains(window))
        return;
    if (isUnmanaged && isOurs(window)) {
        m_onTop.insert(window);
        return;
    }
    if (!m_answered.insert(window).second)
        return;
    const X11ForeignWindows foreign(m_connection->xcb());
    if (foreign.looksLikeALocker(window)) {
        if (!foreign.isTheServers(window))
            return tellLocker();
        m_doubtful = window;
        m_doubt.start();
    }
    for (const auto &[overlay, native] : m_overlays)
        raise(overlay);
    for (const xcb_window_t toast : m_onTop)
        raise(toast);
    m_connection->flush();
}

void X11Stacking::lookAgain()
{
    if (m_connection->xcb() && X11ForeignWindows(m_connection->xcb()).looksLikeALocker(m_doubtful))
        tellLocker();
}

void X11Stacking::raise(xcb_window_t window)
{
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection->xcb(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
}

/// What hides it ends its hold of the keyboard too, which is taken again once it is back.
void X11Stacking::showAgain()
{
    for (const auto &[overlay, native] : m_overlays) {
        xcb_map_window(m_connection->xcb(), overlay);
        raise(overlay);
    }
    m_connection->flush();
}

/// Sent by a client: to close, to be of another size, a key that nobody pressed. The windows of all
/// such events stand in the three words after the sequence number.
bool X11Stacking::isForgedForOverlay(const xcb_generic_event_t &event) const
{
    if (!(event.response_type & ~x11EventType))
        return false;
    const auto *words = reinterpret_cast<const uint32_t *>(&event);
    return std::any_of(words + 1, words + 4,
                       [this](uint32_t word) { return m_overlays.contains(word); });
}

/// Another program made an overlay larger than its screen; the toolkit would make room for that.
bool X11Stacking::undoes(const xcb_configure_notify_event_t &event)
{
    const auto overlay = m_overlays.find(event.window);
    if (overlay == m_overlays.end())
        return false;
    const QRect &native = overlay->second;
    if (event.width <= native.width() + roundedPixels
        && event.height <= native.height() + roundedPixels)
        return false;
    const uint32_t values[]{uint32_t(native.x()), uint32_t(native.y()), uint32_t(native.width()),
                            uint32_t(native.height())};
    xcb_configure_window(m_connection->xcb(), event.window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH
                             | XCB_CONFIG_WINDOW_HEIGHT,
                         values);
    m_connection->flush();
    return true;
}

/// Later, from the main loop: it will end the overlays, and us with them.
void X11Stacking::tellLocker()
{
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (!m_overlays.empty() && onLocker)
                onLocker();
        },
        Qt::QueuedConnection);
}

xcb_window_t X11Stacking::focus() const
{
    xcb_connection_t *xcb = m_connection->xcb();
    const X11Reply<xcb_get_input_focus_reply_t> reply(
        xcb ? xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr) : nullptr);
    return reply ? reply->focus : xcb_window_t(XCB_NONE);
}

/// False where the window that had it just went away.
bool X11Stacking::isFocusTaken() const
{
    if (m_focus == XCB_NONE || m_focus == XCB_INPUT_FOCUS_POINTER_ROOT)
        return m_focus == XCB_INPUT_FOCUS_POINTER_ROOT;
    xcb_connection_t *xcb = m_connection->xcb();
    const X11Reply<xcb_get_window_attributes_reply_t> reply(
        xcb_get_window_attributes_reply(xcb, xcb_get_window_attributes(xcb, m_focus), nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

} // namespace tovek
