// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/XkbKeymap.h"

#include "platform/linux/KeyCodes.h"

#include <utility>
#include <xkbcommon/xkbcommon.h>

namespace tovek {

namespace {

constexpr int lastLetterCode = 50;
/// Of 26. Layouts for other scripts have none without modifiers, Latin ones nearly all of them.
constexpr int latinLetterCount = 20;

std::optional<QString> characterOf(xkb_keymap *keymap, quint32 group, xkb_keycode_t keycode,
                                   xkb_level_index_t level)
{
    const xkb_keysym_t *keysyms = nullptr;
    if (xkb_keymap_key_get_syms_by_level(keymap, keycode, group, level, &keysyms) != 1)
        return std::nullopt;
    const char32_t character = xkb_keysym_to_utf32(keysyms[0]);
    if (character < U' ' || character == U'\x7f')
        return std::nullopt;
    return QString::fromUcs4(&character, 1);
}

bool typesLatin(xkb_keymap *keymap, quint32 group)
{
    int letters = 0;
    for (int keyCode = 0; keyCode <= lastLetterCode; ++keyCode) {
        const auto keycode = xkb_keycode_t(evdevCodes(keyCode).front() + windowSystemKeyOffset);
        const auto character = characterOf(keymap, group, keycode, 0);
        letters +=
            character && *character >= QLatin1String("a") && *character <= QLatin1String("z");
    }
    return letters >= latinLetterCount;
}

/// Absent where no layout of the map types Latin letters.
std::optional<quint32> latinGroup(xkb_keymap *keymap, quint32 active)
{
    if (typesLatin(keymap, active))
        return active;
    for (quint32 group = 0; group < xkb_keymap_num_layouts(keymap); ++group) {
        if (typesLatin(keymap, group))
            return group;
    }
    return std::nullopt;
}

/// The level that Shift alone chooses, for a key of this many of them.
xkb_level_index_t shiftedLevel(xkb_keymap *keymap, quint32 group, xkb_keycode_t keycode)
{
    const xkb_mod_index_t shift = xkb_keymap_mod_get_index(keymap, XKB_MOD_NAME_SHIFT);
    xkb_state *state = xkb_state_new(keymap);
    if (!state || shift == XKB_MOD_INVALID) {
        xkb_state_unref(state);
        return 0;
    }
    xkb_state_update_mask(state, 1U << shift, 0, 0, 0, 0, group);
    const xkb_level_index_t level = xkb_state_key_get_level(state, keycode, group);
    xkb_state_unref(state);
    return level == XKB_LEVEL_INVALID ? 0 : level;
}

xkb_keymap *americanKeymap(xkb_context *context)
{
    const xkb_rule_names american{"evdev", "pc105", "us", "", ""};
    return xkb_keymap_new_from_names(context, &american, XKB_KEYMAP_COMPILE_NO_FLAGS);
}

} // namespace

void XkbKeymap::Free::operator()(xkb_context *context) const
{
    xkb_context_unref(context);
}

void XkbKeymap::Free::operator()(xkb_keymap *keymap) const
{
    xkb_keymap_unref(keymap);
}

XkbKeymap::XkbKeymap() : m_context(xkb_context_new(XKB_CONTEXT_NO_FLAGS)) { }

XkbKeymap::~XkbKeymap() = default;

void XkbKeymap::set(xkb_keymap *keymap, quint32 activeGroup)
{
    m_keymap.reset(keymap);
    m_american.reset();
    m_group = 0;
    if (m_keymap)
        activate(activeGroup);
}

bool XkbKeymap::setText(const char *text, quint32 activeGroup)
{
    xkb_keymap *keymap = xkb_keymap_new_from_string(
        m_context.get(), text, XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS);
    if (!keymap)
        return false;
    set(keymap, activeGroup);
    return true;
}

void XkbKeymap::setAmerican()
{
    set(americanKeymap(m_context.get()), 0);
}

bool XkbKeymap::activate(quint32 group)
{
    if (!m_keymap)
        return false;
    const std::optional<quint32> latin = latinGroup(m_keymap.get(), group);
    if (latin)
        return std::exchange(m_group, *latin) != *latin;
    if (!m_american)
        m_american.reset(americanKeymap(m_context.get()));
    const quint32 used = m_american ? 0 : group;
    return std::exchange(m_group, used) != used;
}

std::optional<QString> XkbKeymap::character(quint32 keycode, Level level) const
{
    xkb_keymap *keymap = m_american ? m_american.get() : m_keymap.get();
    if (!keymap)
        return std::nullopt;
    const xkb_level_index_t index =
        level == Level::plain ? 0 : shiftedLevel(keymap, m_group, keycode);
    return characterOf(keymap, m_group, keycode, index);
}

} // namespace tovek
