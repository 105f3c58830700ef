// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/Hand.h"

#include <QThread>

#include <algorithm>
#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon.h>

namespace tovek {

Hand::Hand(const QString &displayName) : m_connection(displayName) { }

void Hand::fake(uint8_t type, uint8_t detail, QPoint at)
{
    xcb_test_fake_input(m_connection, type, detail, XCB_CURRENT_TIME, m_connection.root(),
                        int16_t(at.x()), int16_t(at.y()), 0);
    m_connection.sync();
}

void Hand::move(QPoint to)
{
    m_at = to;
    fake(XCB_MOTION_NOTIFY, 0, to);
}

void Hand::press(int button)
{
    fake(XCB_BUTTON_PRESS, uint8_t(button));
}

void Hand::release(int button)
{
    fake(XCB_BUTTON_RELEASE, uint8_t(button));
}

void Hand::click(QPoint at, int button)
{
    move(at);
    press(button);
    release(button);
}

void Hand::doubleClick(QPoint at)
{
    click(at);
    // Nobody clicks twice within a millisecond, the server's unit of time: Qt 6.11 takes two
    // presses with the same time for two single ones.
    QThread::msleep(5);
    click(at);
}

void Hand::dragAndHold(QPoint from, QPoint to)
{
    constexpr int steps = 15;
    move(from);
    press();
    for (int step = 1; step <= steps; ++step) {
        // The pace of a quick hand: a mouse reports its place about every 8 ms.
        QThread::msleep(4);
        move(from + (to - from) * step / steps);
    }
}

void Hand::drag(QPoint from, QPoint to)
{
    dragAndHold(from, to);
    release();
}

std::optional<QList<uint8_t>> Hand::keyCodesOf(const QString &chord) const
{
    const xcb_setup_t *setup = xcb_get_setup(m_connection);
    const auto count = uint8_t(setup->max_keycode - setup->min_keycode + 1);
    const XPtr<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
        m_connection, xcb_get_keyboard_mapping(m_connection, setup->min_keycode, count), nullptr));
    if (!mapping)
        return std::nullopt;
    const xcb_keysym_t *symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    QList<uint8_t> codes;
    for (const QString &name : chord.split(QLatin1Char('+'))) {
        const xkb_keysym_t wanted =
            xkb_keysym_from_name(name.toLatin1().constData(), XKB_KEYSYM_NO_FLAGS);
        int index = 0;
        while (index < count && symbols[index * mapping->keysyms_per_keycode] != wanted)
            ++index;
        if (wanted == XKB_KEY_NoSymbol || index == count)
            return std::nullopt;
        codes.append(uint8_t(setup->min_keycode + index));
    }
    return codes;
}

bool Hand::hold(const QString &chord)
{
    const auto codes = keyCodesOf(chord);
    for (uint8_t code : codes.value_or(QList<uint8_t>{}))
        fake(XCB_KEY_PRESS, code);
    return codes.has_value();
}

bool Hand::letGo(const QString &chord)
{
    auto codes = keyCodesOf(chord);
    if (!codes)
        return false;
    std::reverse(codes->begin(), codes->end());
    for (uint8_t code : std::as_const(*codes))
        fake(XCB_KEY_RELEASE, code);
    return true;
}

bool Hand::typePath(const QString &path)
{
    return std::all_of(path.begin(), path.end(), [this](QChar letter) {
        return tap(letter == QLatin1Char('/')       ? QStringLiteral("slash")
                       : letter == QLatin1Char('-') ? QStringLiteral("minus")
                       : letter == QLatin1Char('_') ? QStringLiteral("Shift_L+minus")
                       : letter == QLatin1Char('.') ? QStringLiteral("period")
                       : letter.isUpper()           ? QStringLiteral("Shift_L+") + letter.toLower()
                                                    : QString(letter));
    });
}

bool Hand::isTaken(const QString &chord) const
{
    const auto codes = keyCodesOf(chord);
    if (!codes)
        return false;
    uint16_t modifiers = 0;
    for (const auto &[name, mask] :
         {std::pair("Shift_L", XCB_MOD_MASK_SHIFT), std::pair("Control_L", XCB_MOD_MASK_CONTROL),
          std::pair("Alt_L", XCB_MOD_MASK_1), std::pair("Super_L", XCB_MOD_MASK_4)}) {
        if (chord.split(QLatin1Char('+')).contains(QLatin1String(name)))
            modifiers = uint16_t(modifiers | mask);
    }
    // The server is ours alone meanwhile, so that the attempt is in nobody's way.
    xcb_grab_server(m_connection);
    const XPtr<xcb_generic_error_t> refusal(xcb_request_check(
        m_connection,
        xcb_grab_key_checked(m_connection, false, m_connection.root(), modifiers, codes->last(),
                             XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
    if (!refusal)
        xcb_ungrab_key(m_connection, codes->last(), m_connection.root(), modifiers);
    xcb_ungrab_server(m_connection);
    m_connection.sync();
    return refusal != nullptr;
}

bool Hand::tap(const QString &chord)
{
    return hold(chord) && letGo(chord);
}

} // namespace tovek
