// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/keys/X11Modifiers.h"

#include "platform/x11/X11Reply.h"

#include <algorithm>
#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-keysyms.h>

namespace tovek {

namespace {

struct ModifierKey
{
    xcb_keysym_t keysym;
    quint16 X11Modifiers::*field;
};

constexpr ModifierKey modifierKeys[] = {
    {XKB_KEY_Alt_L, &X11Modifiers::alt},      {XKB_KEY_Alt_R, &X11Modifiers::alt},
    {XKB_KEY_Super_L, &X11Modifiers::super},  {XKB_KEY_Super_R, &X11Modifiers::super},
    {XKB_KEY_Num_Lock, &X11Modifiers::locks}, {XKB_KEY_Scroll_Lock, &X11Modifiers::locks},
};

constexpr quint32 carbonControl = 0x1000;
constexpr quint32 carbonOption = 0x800;
constexpr quint32 carbonShift = 0x200;
constexpr quint32 carbonCommand = 0x100;

struct ModifierBit
{
    quint32 carbon;
    quint16 state;
};

} // namespace

std::optional<quint16> X11Modifiers::mask(quint32 carbonModifiers) const
{
    quint16 mask = 0;
    for (const ModifierBit bit : {ModifierBit{carbonControl, XCB_MOD_MASK_CONTROL},
                                  {carbonShift, XCB_MOD_MASK_SHIFT},
                                  {carbonOption, alt},
                                  {carbonCommand, super}}) {
        if (!(carbonModifiers & bit.carbon))
            continue;
        if (!bit.state)
            return std::nullopt;
        mask |= bit.state;
        carbonModifiers &= ~bit.carbon;
    }
    return carbonModifiers ? std::nullopt : std::optional(mask);
}

quint32 X11Modifiers::carbonModifiers(quint16 state) const
{
    return (state & XCB_MOD_MASK_CONTROL ? carbonControl : 0)
        | (state & XCB_MOD_MASK_SHIFT ? carbonShift : 0) | (state & alt ? carbonOption : 0)
        | (state & super ? carbonCommand : 0);
}

std::vector<quint16> X11Modifiers::lockVariants() const
{
    std::vector<quint16> variants{0};
    for (quint16 bit = 1; bit < 0x100; bit <<= 1) {
        if (!(locks & bit))
            continue;
        for (size_t index = variants.size(); index-- > 0;)
            variants.push_back(variants[index] | bit);
    }
    return variants;
}

X11Modifiers X11Modifiers::read(xcb_connection_t *connection)
{
    const xcb_setup_t *setup = xcb_get_setup(connection);
    const xcb_keycode_t first = setup->min_keycode;
    const auto mapCookie = xcb_get_modifier_mapping(connection);
    const auto symsCookie =
        xcb_get_keyboard_mapping(connection, first, uint8_t(setup->max_keycode - first + 1));
    const X11Reply<xcb_get_modifier_mapping_reply_t> map(
        xcb_get_modifier_mapping_reply(connection, mapCookie, nullptr));
    const X11Reply<xcb_get_keyboard_mapping_reply_t> syms(
        xcb_get_keyboard_mapping_reply(connection, symsCookie, nullptr));
    X11Modifiers modifiers;
    modifiers.locks = XCB_MOD_MASK_LOCK;
    if (!map || !syms)
        return modifiers;
    const xcb_keycode_t *keycodes = xcb_get_modifier_mapping_keycodes(map.get());
    const xcb_keysym_t *keysyms = xcb_get_keyboard_mapping_keysyms(syms.get());
    const int perKey = syms->keysyms_per_keycode;
    // The first three modifiers, Shift, Lock and Control, are what their names say.
    for (int index = 3 * map->keycodes_per_modifier; index < 8 * map->keycodes_per_modifier;
         ++index) {
        const xcb_keycode_t keycode = keycodes[index];
        if (keycode < first)
            continue;
        const auto bit = quint16(1 << (index / map->keycodes_per_modifier));
        const xcb_keysym_t *ofKey = keysyms + (keycode - first) * perKey;
        for (const ModifierKey &key : modifierKeys) {
            if (std::find(ofKey, ofKey + perKey, key.keysym) != ofKey + perKey)
                modifiers.*key.field |= bit;
        }
    }
    return modifiers;
}

} // namespace tovek
