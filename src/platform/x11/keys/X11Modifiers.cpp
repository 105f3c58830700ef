// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/keys/X11Modifiers.h"

#include "platform/HotKeys.h"
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

struct ModifierBit
{
    quint32 bit;
    quint16 state;
};

} // namespace

std::optional<quint16> X11Modifiers::mask(quint32 modifiers) const
{
    quint16 mask = 0;
    for (const ModifierBit known : {ModifierBit{ComboModifier::control, XCB_MOD_MASK_CONTROL},
                                    {ComboModifier::shift, XCB_MOD_MASK_SHIFT},
                                    {ComboModifier::option, alt},
                                    {ComboModifier::command, super}}) {
        if (!(modifiers & known.bit))
            continue;
        if (!known.state)
            return std::nullopt;
        mask |= known.state;
        modifiers &= ~known.bit;
    }
    return modifiers ? std::nullopt : std::optional(mask);
}

quint32 X11Modifiers::modifiersOf(quint16 state) const
{
    return (state & XCB_MOD_MASK_CONTROL ? ComboModifier::control : 0)
        | (state & XCB_MOD_MASK_SHIFT ? ComboModifier::shift : 0)
        | (state & alt ? ComboModifier::option : 0) | (state & super ? ComboModifier::command : 0);
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
