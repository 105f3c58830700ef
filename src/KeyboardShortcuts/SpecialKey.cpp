// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/SpecialKey.h"

#include "KeyboardShortcuts/Localization.h"

#include <QHash>

#include <iterator>

namespace KeyboardShortcuts {

namespace {

struct Row
{
    int keyCode;
    const char16_t *text; ///< null where the text is localised
    Qt::Key menuKey;
    Qt::KeyboardModifier keypad = Qt::NoModifier;
};

// In the order of the cases.
// clang-format off
constexpr Row rows[] = {
    {36, u"\u21A9", Qt::Key_Return},
    {51, u"\u232B", Qt::Key_Backspace},
    {117, u"\u2326", Qt::Key_Delete},
    {119, u"\u2198", Qt::Key_End},
    {53, u"\u238B", Qt::Key_Escape},
    {114, u"?\u20DD", Qt::Key_Insert},
    {115, u"\u2196", Qt::Key_Home},
    {49, nullptr, Qt::Key_Space},
    {48, u"\u21E5", Qt::Key_Tab},
    {116, u"\u21DE", Qt::Key_PageUp},
    {121, u"\u21DF", Qt::Key_PageDown},
    {126, u"\u2191", Qt::Key_Up},
    {124, u"\u2192", Qt::Key_Right},
    {125, u"\u2193", Qt::Key_Down},
    {123, u"\u2190", Qt::Key_Left},
    {122, u"F1", Qt::Key_F1}, {120, u"F2", Qt::Key_F2}, {99, u"F3", Qt::Key_F3},
    {118, u"F4", Qt::Key_F4}, {96, u"F5", Qt::Key_F5}, {97, u"F6", Qt::Key_F6},
    {98, u"F7", Qt::Key_F7}, {100, u"F8", Qt::Key_F8}, {101, u"F9", Qt::Key_F9},
    {109, u"F10", Qt::Key_F10}, {103, u"F11", Qt::Key_F11}, {111, u"F12", Qt::Key_F12},
    {105, u"F13", Qt::Key_Print}, {107, u"F14", Qt::Key_ScrollLock}, {113, u"F15", Qt::Key_Pause},
    {106, u"F16", Qt::Key_F16}, {64, u"F17", Qt::Key_F17}, {79, u"F18", Qt::Key_F18},
    {80, u"F19", Qt::Key_F19}, {90, u"F20", Qt::Key_F20},
    {82, u"0\u20E3", Qt::Key_0, Qt::KeypadModifier}, {83, u"1\u20E3", Qt::Key_1, Qt::KeypadModifier},
    {84, u"2\u20E3", Qt::Key_2, Qt::KeypadModifier}, {85, u"3\u20E3", Qt::Key_3, Qt::KeypadModifier},
    {86, u"4\u20E3", Qt::Key_4, Qt::KeypadModifier}, {87, u"5\u20E3", Qt::Key_5, Qt::KeypadModifier},
    {88, u"6\u20E3", Qt::Key_6, Qt::KeypadModifier}, {89, u"7\u20E3", Qt::Key_7, Qt::KeypadModifier},
    {91, u"8\u20E3", Qt::Key_8, Qt::KeypadModifier}, {92, u"9\u20E3", Qt::Key_9, Qt::KeypadModifier},
    {71, u"\u2612\u20E3", Qt::Key_NumLock},
    {65, u".\u20E3", Qt::Key_Period, Qt::KeypadModifier},
    {75, u"/\u20E3", Qt::Key_Slash, Qt::KeypadModifier},
    {76, u"\u21A9\u20E3", Qt::Key_Enter, Qt::KeypadModifier},
    {81, u"=\u20E3", Qt::Key_Equal, Qt::KeypadModifier},
    {78, u"-\u20E3", Qt::Key_Minus, Qt::KeypadModifier},
    {67, u"*\u20E3", Qt::Key_Asterisk, Qt::KeypadModifier},
    {69, u"+\u20E3", Qt::Key_Plus, Qt::KeypadModifier},
};
// clang-format on
static_assert(std::size(rows) == size_t(SpecialKey::keypadPlus) + 1);

} // namespace

std::optional<SpecialKey> specialKey(qint64 carbonKeyCode)
{
    static const QHash<qint64, SpecialKey> byCode = [] {
        QHash<qint64, SpecialKey> map;
        for (size_t index = 0; index < std::size(rows); ++index)
            map.insert(rows[index].keyCode, SpecialKey(index));
        return map;
    }();
    const auto found = byCode.constFind(carbonKeyCode);
    return found == byCode.cend() ? std::nullopt : std::optional(*found);
}

std::optional<SpecialKey> specialKeyOf(QKeyCombination key)
{
    for (size_t index = 0; index < std::size(rows); ++index) {
        if (menuKey(SpecialKey(index)) == key)
            return SpecialKey(index);
    }
    return std::nullopt;
}

std::vector<int> specialKeyCodes()
{
    std::vector<int> codes;
    for (const Row &row : rows)
        codes.push_back(row.keyCode);
    return codes;
}

QString text(SpecialKey key)
{
    const char16_t *text = rows[size_t(key)].text;
    return text ? QString::fromUtf16(text) : localized(QStringLiteral("space_key"));
}

QKeyCombination menuKey(SpecialKey key)
{
    const Row &row = rows[size_t(key)];
    return QKeyCombination(row.keypad, row.menuKey);
}

} // namespace KeyboardShortcuts
