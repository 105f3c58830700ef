// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/ShortcutDescription.h"

#include "KeyboardShortcuts/SpecialKey.h"
#include "platform/KeyboardLayout.h"

#include <QList>

#include <limits>

namespace KeyboardShortcuts {

using tovek::KeyboardLayout;
using tovek::KeyFlag;
using tovek::KeyFlags;

namespace {

struct ModifierSymbol
{
    KeyFlag flag;
    const char16_t *symbol;
};

constexpr ModifierSymbol modifierSymbols[] = {
    {KeyFlag::control, u"\u2303"},
    {KeyFlag::option, u"\u2325"},
    {KeyFlag::shift, u"\u21E7"},
    {KeyFlag::command, u"\u2318"},
    {KeyFlag::function, u"\U0001F310\uFE0E"},
};

std::optional<QString> layoutCharacter(qint64 keyCode, const KeyboardLayout &layout)
{
    if (keyCode < 0 || keyCode > std::numeric_limits<quint16>::max())
        return std::nullopt;
    return layout.character(int(keyCode));
}

QString menuText(QKeyCombination combination)
{
    return QKeySequence(combination).toString(QKeySequence::PortableText);
}

Qt::KeyboardModifiers menuModifiers(KeyFlags flags)
{
    Qt::KeyboardModifiers modifiers;
    modifiers.setFlag(Qt::ControlModifier, flags.testFlag(KeyFlag::control));
    modifiers.setFlag(Qt::AltModifier, flags.testFlag(KeyFlag::option));
    modifiers.setFlag(Qt::ShiftModifier, flags.testFlag(KeyFlag::shift));
    modifiers.setFlag(Qt::MetaModifier, flags.testFlag(KeyFlag::command));
    return modifiers;
}

} // namespace

QString description(KeyFlags flags)
{
    QString symbols;
    for (const ModifierSymbol &modifier : modifierSymbols) {
        if (flags.testFlag(modifier.flag))
            symbols += QString::fromUtf16(modifier.symbol);
    }
    return symbols;
}

QString description(const Shortcut &shortcut, const KeyboardLayout &layout)
{
    const QString symbols = description(shortcut.flags());
    if (const auto special = specialKey(shortcut.carbonKeyCode))
        return symbols + text(*special);
    const auto character = layoutCharacter(shortcut.carbonKeyCode, layout);
    return symbols + (character ? character->toUpper() : QString(QChar::ReplacementCharacter));
}

QString description(const QKeySequence &sequence)
{
    if (sequence.count() != 1)
        return sequence.toString(QKeySequence::NativeText);
    const Qt::KeyboardModifiers modifiers = sequence[0].keyboardModifiers();
    KeyFlags flags;
    flags.setFlag(KeyFlag::control, modifiers.testFlag(Qt::ControlModifier));
    flags.setFlag(KeyFlag::option, modifiers.testFlag(Qt::AltModifier));
    flags.setFlag(KeyFlag::shift, modifiers.testFlag(Qt::ShiftModifier));
    flags.setFlag(KeyFlag::command, modifiers.testFlag(Qt::MetaModifier));
    const QKeyCombination key(modifiers & Qt::KeypadModifier, sequence[0].key());
    const auto special = specialKeyOf(key);
    return description(flags) + (special ? text(*special) : menuText(key));
}

std::optional<QString> keyEquivalent(const Shortcut &shortcut, const KeyboardLayout &layout)
{
    if (const auto special = specialKey(shortcut.carbonKeyCode))
        return menuText(menuKey(*special));
    return layoutCharacter(shortcut.carbonKeyCode, layout);
}

QKeySequence keySequence(const Shortcut &shortcut, const KeyboardLayout &layout)
{
    const Qt::KeyboardModifiers modifiers = menuModifiers(shortcut.flags());
    if (const auto special = specialKey(shortcut.carbonKeyCode)) {
        const QKeyCombination key = menuKey(*special);
        return QKeyCombination(modifiers | key.keyboardModifiers(), key.key());
    }
    const auto character = layoutCharacter(shortcut.carbonKeyCode, layout);
    if (!character)
        return {};
    return QKeyCombination(modifiers, Qt::Key(character->toUpper().toUcs4().value(0)));
}

std::optional<MenuKey> menuKey(const QKeySequence &sequence)
{
    if (sequence.count() != 1)
        return std::nullopt;
    const QKeyCombination combination = sequence[0];
    const Qt::KeyboardModifiers modifiers = combination.keyboardModifiers();
    const auto keypad = modifiers & Qt::KeypadModifier;
    const QString key = menuText(QKeyCombination(keypad, combination.key()));
    KeyFlags flags;
    flags.setFlag(KeyFlag::command, bool(modifiers & (Qt::ControlModifier | Qt::MetaModifier)));
    flags.setFlag(KeyFlag::option, modifiers.testFlag(Qt::AltModifier));
    flags.setFlag(KeyFlag::shift, modifiers.testFlag(Qt::ShiftModifier));
    // Menus write every letter as a capital, which does not stand for Shift.
    return MenuKey{key.size() == 1 ? key.toLower() : key, flags};
}

std::optional<MenuKey> menuKey(const Shortcut &shortcut, const KeyboardLayout &layout)
{
    const auto key = keyEquivalent(shortcut, layout);
    if (!key)
        return std::nullopt;
    KeyFlags flags = shortcut.flags();
    if (flags.testFlag(KeyFlag::control))
        flags.setFlag(KeyFlag::command);
    flags.setFlag(KeyFlag::control, false);
    return MenuKey{*key, flags};
}

bool isChosenBy(MenuKey item, const MenuKey &shortcut)
{
    const QString lower = item.keyEquivalent.toLower();
    const bool isName = item.keyEquivalent.size() > 1;
    if (shortcut.flags.testFlag(KeyFlag::shift) && !isName && lower != item.keyEquivalent) {
        item.keyEquivalent = lower;
        item.flags.setFlag(KeyFlag::shift);
    }
    return item == shortcut;
}

} // namespace KeyboardShortcuts
