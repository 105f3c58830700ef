// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/overlay/X11PointerFollower.h"

#include "foundation/MainThread.h"

#include <cstring>
#include <vector>

namespace tovek {

namespace {

constexpr uint32_t inputMoves = XCB_INPUT_XI_EVENT_MASK_MOTION;
constexpr uint32_t coreMoves = XCB_EVENT_MASK_BUTTON_MOTION | XCB_EVENT_MASK_POINTER_MOTION;

} // namespace

X11PointerFollower::X11PointerFollower(std::shared_ptr<X11Connection> toolkit,
                                       std::shared_ptr<X11Connection> asking,
                                       std::chrono::milliseconds interval)
    : m_toolkit(std::move(toolkit))
    , m_asking(std::move(asking))
{
    m_tick.setInterval(interval);
    m_tick.setTimerType(Qt::PreciseTimer);
    connect(&m_tick, &QTimer::timeout, this, &X11PointerFollower::catchUp);
}

X11PointerFollower::~X11PointerFollower() = default;

void X11PointerFollower::start(xcb_window_t window)
{
    Q_ASSERT(isMainThread());
    xcb_connection_t *xcb = m_toolkit->xcb();
    const xcb_query_extension_reply_t *input = xcb_get_extension_data(xcb, &xcb_input_id);
    if (m_window || !input || !input->present)
        return;
    m_window = window;
    // Later: whoever shows an overlay has to take the keyboard first, without an answer between.
    QTimer::singleShot(0, this, [this, window] {
        if (m_window == window && !m_inputEvents)
            takeFromToolkit();
    });
}

void X11PointerFollower::takeFromToolkit()
{
    // What the toolkit listens to is asked rather than known: it differs with the mice.
    xcb_connection_t *xcb = m_toolkit->xcb();
    const auto inputEvents = xcb_input_xi_get_selected_events(xcb, m_window);
    const auto attributes = xcb_get_window_attributes(xcb, m_window);
    m_inputEvents.reset(xcb_input_xi_get_selected_events_reply(xcb, inputEvents, nullptr));
    const X11Reply<xcb_get_window_attributes_reply_t> core(
        xcb_get_window_attributes_reply(xcb, attributes, nullptr));
    if (!core)
        m_inputEvents.reset();
    if (!m_inputEvents)
        return;
    m_coreEvents = core->your_event_mask;
    select(~inputMoves, ~coreMoves);
}

void X11PointerFollower::stop()
{
    Q_ASSERT(isMainThread());
    if (m_inputEvents && m_toolkit->xcb())
        select(~0u, ~0u);
    m_tick.stop();
    m_inputEvents.reset();
    m_window = 0;
}

std::optional<QPoint> X11PointerFollower::giveBack()
{
    constexpr uint16_t anyButton = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
    const bool wasTaken = m_inputEvents != nullptr;
    const xcb_window_t window = m_window;
    stop();
    xcb_connection_t *xcb = m_toolkit->xcb();
    if (!wasTaken || !xcb)
        return std::nullopt;
    const X11Reply<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(xcb, xcb_query_pointer(xcb, window), nullptr));
    if (!pointer || !pointer->same_screen || (pointer->mask & anyButton))
        return std::nullopt;
    return QPoint(pointer->win_x, pointer->win_y);
}

void X11PointerFollower::pressed()
{
    m_last.reset();
    if (m_inputEvents)
        m_tick.start();
}

bool X11PointerFollower::released()
{
    const bool wasPressed = isPressed();
    m_tick.stop();
    return wasPressed;
}

void X11PointerFollower::catchUp()
{
    xcb_connection_t *xcb = m_asking->xcb();
    if (!isPressed() || !xcb)
        return;
    const X11Reply<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(xcb, xcb_query_pointer(xcb, m_window), nullptr));
    m_asking->dropEvents();
    if (!pointer || m_last == QPoint(pointer->win_x, pointer->win_y))
        return;
    m_last = QPoint(pointer->win_x, pointer->win_y);
    if (onMoved)
        onMoved(*m_last);
}

void X11PointerFollower::select(uint32_t inputFilter, uint32_t coreFilter)
{
    xcb_connection_t *xcb = m_toolkit->xcb();
    // The server takes the masks in the form in which it gives them.
    for (auto mask = xcb_input_xi_get_selected_events_masks_iterator(m_inputEvents.get()); mask.rem;
         xcb_input_event_mask_next(&mask)) {
        std::vector<uint32_t> words(1 + mask.data->mask_len);
        std::memcpy(words.data(), mask.data, words.size() * sizeof(uint32_t));
        if (words.size() > 1)
            words[1] &= inputFilter;
        xcb_input_xi_select_events(xcb, m_window, 1,
                                   reinterpret_cast<xcb_input_event_mask_t *>(words.data()));
    }
    const uint32_t core = m_coreEvents & coreFilter;
    xcb_change_window_attributes(xcb, m_window, XCB_CW_EVENT_MASK, &core);
    m_toolkit->flush();
}

} // namespace tovek
