// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/Accelerator.h"

#include "platform/KeyboardLayout.h"

#include <QStringList>

#include <optional>
#include <xkbcommon/xkbcommon.h>

namespace tovek {

namespace {

struct ModifierName
{
    const char *name;
    quint32 bit;
};

constexpr ModifierName modifierNames[] = {
    {"control", ComboModifier::control}, {"ctrl", ComboModifier::control},
    {"primary", ComboModifier::control}, {"alt", ComboModifier::option},
    {"mod1", ComboModifier::option},     {"shift", ComboModifier::shift},
    {"super", ComboModifier::command},   {"mod4", ComboModifier::command},
};

struct KeyName
{
    const char *names; ///< separated by blanks, in lower case
    quint32 keyCode;
};

// clang-format off
constexpr KeyName keyNames[] = {
    {"print sys_req f13", 105}, {"scroll_lock f14", 107}, {"pause break f15", 113},
    {"return", 36}, {"tab iso_left_tab", 48}, {"space", 49}, {"backspace", 51}, {"escape", 53},
    {"delete", 117}, {"insert", 114}, {"home", 115}, {"end", 119},
    {"page_up prior", 116}, {"page_down next", 121},
    {"left", 123}, {"right", 124}, {"down", 125}, {"up", 126}, {"menu", 110},
    {"f1", 122}, {"f2", 120}, {"f3", 99}, {"f4", 118}, {"f5", 96}, {"f6", 97}, {"f7", 98},
    {"f8", 100}, {"f9", 101}, {"f10", 109}, {"f11", 103}, {"f12", 111}, {"f16", 106}, {"f17", 64},
    {"f18", 79}, {"f19", 80}, {"f20", 90},
    {"kp_0", 82}, {"kp_1", 83}, {"kp_2", 84}, {"kp_3", 85}, {"kp_4", 86}, {"kp_5", 87},
    {"kp_6", 88}, {"kp_7", 89}, {"kp_8", 91}, {"kp_9", 92}, {"kp_decimal", 65}, {"kp_divide", 75},
    {"kp_enter", 76}, {"kp_equal", 81}, {"kp_subtract", 78}, {"kp_multiply", 67}, {"kp_add", 69},
};

/// The signs that settings write by name.
constexpr struct { const char *name; char sign; } signNames[] = {
    {"minus", '-'}, {"equal", '='}, {"comma", ','}, {"period", '.'}, {"slash", '/'},
    {"backslash", '\\'}, {"semicolon", ';'}, {"apostrophe", '\''}, {"grave", '`'},
    {"bracketleft", '['}, {"bracketright", ']'}, {"less", '<'}, {"plus", '+'},
    {"numbersign", '#'}, {"asciicircum", '^'},
};
// clang-format on

/// Takes the modifiers off the front. Absent when there is one that we do not know.
std::optional<quint32> takeModifiers(QString &accelerator)
{
    quint32 modifiers = 0;
    while (accelerator.startsWith(QLatin1Char('<'))) {
        const qsizetype end = accelerator.indexOf(QLatin1Char('>'));
        if (end < 0)
            return std::nullopt;
        const QString name = accelerator.mid(1, end - 1);
        quint32 bit = 0;
        for (const ModifierName &modifier : modifierNames) {
            if (name == QLatin1String(modifier.name))
                bit = modifier.bit;
        }
        if (bit == 0)
            return std::nullopt;
        modifiers |= bit;
        accelerator.remove(0, end + 1);
    }
    return modifiers;
}

bool isKey(const QString &name, quint32 keyCode, const KeyboardLayout &layout)
{
    for (const KeyName &key : keyNames) {
        if (QString::fromLatin1(key.names).split(QLatin1Char(' ')).contains(name))
            return key.keyCode == keyCode;
    }
    QString character = name;
    for (const auto &sign : signNames) {
        if (name == QLatin1String(sign.name))
            character = QChar::fromLatin1(sign.sign);
    }
    const auto typed = layout.character(int(keyCode));
    return typed && typed->toLower() == character;
}

QString nameOfSymbol(xkb_keysym_t symbol)
{
    char name[64] = {};
    const bool isNamed =
        symbol != XKB_KEY_NoSymbol && xkb_keysym_get_name(symbol, name, sizeof name) > 0;
    return isNamed ? QString::fromLatin1(name) : QString();
}

} // namespace

bool isAccelerator(const QString &accelerator, KeyCombo combo, const KeyboardLayout &layout)
{
    QString key = accelerator.trimmed().toLower();
    const auto modifiers = takeModifiers(key);
    return modifiers && *modifiers == combo.modifiers && !key.isEmpty()
        && isKey(key, combo.keyCode, layout);
}

QString symbolNameOf(quint32 keyCode, const KeyboardLayout &layout)
{
    xkb_keysym_t symbol = XKB_KEY_NoSymbol;
    for (const KeyName &key : keyNames) {
        if (key.keyCode == keyCode)
            symbol = xkb_keysym_from_name(QByteArray(key.names).split(' ').first().constData(),
                                          XKB_KEYSYM_CASE_INSENSITIVE);
    }
    if (symbol == XKB_KEY_NoSymbol) {
        const auto typed = layout.character(int(keyCode));
        const auto character = typed ? typed->toLower().toUcs4().value(0) : 0;
        symbol = character ? xkb_utf32_to_keysym(character) : XKB_KEY_NoSymbol;
    }
    return nameOfSymbol(symbol);
}

QString shiftedSymbolNameOf(quint32 keyCode, const KeyboardLayout &layout)
{
    const auto plain = layout.character(int(keyCode));
    const auto shifted = layout.shiftedCharacter(int(keyCode));
    if (!plain || !shifted || *plain == *shifted)
        return {};
    const char32_t character = shifted->toUcs4().value(0);
    return QChar::isLetter(character) ? QString() : nameOfSymbol(xkb_utf32_to_keysym(character));
}

QString acceleratorOf(KeyCombo combo, const KeyboardLayout &layout)
{
    const QString key = symbolNameOf(combo.keyCode, layout);
    if (key.isEmpty())
        return {};
    constexpr ModifierName written[] = {{"<Control>", ComboModifier::control},
                                        {"<Alt>", ComboModifier::option},
                                        {"<Shift>", ComboModifier::shift},
                                        {"<Super>", ComboModifier::command}};
    QString accelerator;
    for (const ModifierName &modifier : written) {
        if (combo.modifiers & modifier.bit)
            accelerator += QLatin1String(modifier.name);
    }
    return accelerator + key;
}

} // namespace tovek
