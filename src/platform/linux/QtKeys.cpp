// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/QtKeys.h"

#include "platform/KeyboardLayout.h"

#include <algorithm>
#include <iterator>

namespace tovek {

namespace {

struct QtKey
{
    quint32 keyCode;
    Qt::Key key;
};

// What the layout does not tell.
// clang-format off
constexpr QtKey namedKeys[] = {
    {105, Qt::Key_Print}, {107, Qt::Key_ScrollLock}, {113, Qt::Key_Pause}, {110, Qt::Key_Menu},
    {36, Qt::Key_Return}, {48, Qt::Key_Tab}, {49, Qt::Key_Space}, {51, Qt::Key_Backspace},
    {53, Qt::Key_Escape}, {117, Qt::Key_Delete}, {114, Qt::Key_Insert}, {115, Qt::Key_Home},
    {119, Qt::Key_End}, {116, Qt::Key_PageUp}, {121, Qt::Key_PageDown}, {123, Qt::Key_Left},
    {124, Qt::Key_Right}, {125, Qt::Key_Down}, {126, Qt::Key_Up},
    {122, Qt::Key_F1}, {120, Qt::Key_F2}, {99, Qt::Key_F3}, {118, Qt::Key_F4}, {96, Qt::Key_F5},
    {97, Qt::Key_F6}, {98, Qt::Key_F7}, {100, Qt::Key_F8}, {101, Qt::Key_F9}, {109, Qt::Key_F10},
    {103, Qt::Key_F11}, {111, Qt::Key_F12}, {106, Qt::Key_F16}, {64, Qt::Key_F17},
    {79, Qt::Key_F18}, {80, Qt::Key_F19}, {90, Qt::Key_F20},
    {72, Qt::Key_VolumeUp}, {73, Qt::Key_VolumeDown}, {74, Qt::Key_VolumeMute},
};
constexpr QtKey keypadKeys[] = {
    {82, Qt::Key_0}, {83, Qt::Key_1}, {84, Qt::Key_2}, {85, Qt::Key_3}, {86, Qt::Key_4},
    {87, Qt::Key_5}, {88, Qt::Key_6}, {89, Qt::Key_7}, {91, Qt::Key_8}, {92, Qt::Key_9},
    {65, Qt::Key_Period}, {67, Qt::Key_Asterisk}, {69, Qt::Key_Plus}, {75, Qt::Key_Slash},
    {76, Qt::Key_Enter}, {78, Qt::Key_Minus}, {81, Qt::Key_Equal}, {71, Qt::Key_NumLock},
};
// clang-format on

template <size_t count>
int keyIn(const QtKey (&keys)[count], quint32 keyCode)
{
    const auto found = std::find_if(std::begin(keys), std::end(keys),
                                    [keyCode](const QtKey &row) { return row.keyCode == keyCode; });
    return found == std::end(keys) ? 0 : found->key;
}

int qtModifiers(quint32 modifiers)
{
    return (modifiers & ComboModifier::control ? int(Qt::ControlModifier) : 0)
        | (modifiers & ComboModifier::option ? int(Qt::AltModifier) : 0)
        | (modifiers & ComboModifier::shift ? int(Qt::ShiftModifier) : 0)
        | (modifiers & ComboModifier::command ? int(Qt::MetaModifier) : 0);
}

/// 0 for a key that types nothing.
int keyTyping(const std::optional<QString> &text)
{
    return text ? int(text->toUpper().toUcs4().value(0)) : 0;
}

} // namespace

QList<int> qtKeysOf(KeyCombo combo, const KeyboardLayout &layout)
{
    const int modifiers = qtModifiers(combo.modifiers);
    if (const int key = keyIn(keypadKeys, combo.keyCode))
        return {key | modifiers | int(Qt::KeypadModifier), key | modifiers};
    if (const int key = keyIn(namedKeys, combo.keyCode)) {
        if (key == Qt::Key_Print && (combo.modifiers & ComboModifier::option))
            return {key | modifiers, int(Qt::Key_SysReq) | modifiers,
                    int(Qt::Key_SysReq) | (modifiers & ~int(Qt::AltModifier))};
        return {key | modifiers};
    }
    const auto plain = layout.character(int(combo.keyCode));
    if (!plain)
        return {};
    if (!(combo.modifiers & ComboModifier::shift))
        return {keyTyping(plain) | modifiers};
    const auto shifted = layout.shiftedCharacter(int(combo.keyCode));
    const bool isLetter = QChar::isLetter(shifted.value_or(*plain).toUcs4().value(0));
    if (!shifted || isLetter || *shifted == *plain)
        return {keyTyping(shifted.value_or(*plain)) | modifiers};
    return {keyTyping(shifted) | (modifiers & ~int(Qt::ShiftModifier))};
}

} // namespace tovek
