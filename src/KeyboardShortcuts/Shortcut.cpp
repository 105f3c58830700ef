// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/Shortcut.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

namespace KeyboardShortcuts {

using tovek::KeyFlag;
using tovek::KeyFlags;

namespace {

struct ModifierBit
{
    KeyFlag flag;
    qint64 carbon;
};

constexpr ModifierBit modifierBits[] = {
    {KeyFlag::control, 0x1000}, {KeyFlag::option, 0x800},     {KeyFlag::shift, 0x200},
    {KeyFlag::command, 0x100},  {KeyFlag::function, 0x20000},
};

const QString keyCodeMember = QStringLiteral("carbonKeyCode");
const QString modifiersMember = QStringLiteral("carbonModifiers");

std::optional<qint64> wholeNumber(const QJsonValue &value)
{
    if (!value.isDouble())
        return std::nullopt;
    // Two different defaults tell a number that is not whole, or too large, from a true one.
    const qint64 number = value.toInteger(0);
    return number == value.toInteger(1) ? std::optional(number) : std::nullopt;
}

} // namespace

KeyFlags Shortcut::flags() const
{
    return keyFlags(carbonModifiers);
}

std::optional<Shortcut> Shortcut::fromEvent(const InputEvent &event)
{
    const bool isKey =
        event.type == InputEvent::Type::keyDown || event.type == InputEvent::Type::keyUp;
    if (!isKey || event.key.keyCode == tovek::KeyCode::none)
        return std::nullopt;
    KeyFlags flags = event.key.flags;
    flags.setFlag(KeyFlag::function, false);
    return Shortcut{event.key.keyCode, KeyboardShortcuts::carbonModifiers(flags)};
}

QString Shortcut::toJson() const
{
    return QStringLiteral("{\"%1\":%2,\"%3\":%4}")
        .arg(keyCodeMember)
        .arg(carbonKeyCode)
        .arg(modifiersMember)
        .arg(carbonModifiers);
}

std::optional<Shortcut> Shortcut::fromJson(const QString &json)
{
    const QJsonObject object = QJsonDocument::fromJson(json.toUtf8()).object();
    const auto keyCode = wholeNumber(object.value(keyCodeMember));
    const auto modifiers = wholeNumber(object.value(modifiersMember));
    if (!keyCode || !modifiers)
        return std::nullopt;
    return Shortcut{*keyCode, *modifiers};
}

bool Shortcut::isRegistrable() const
{
    constexpr qint64 largest = std::numeric_limits<quint32>::max();
    return carbonKeyCode >= 0 && carbonKeyCode <= largest && carbonModifiers >= 0
        && carbonModifiers <= largest;
}

qint64 carbonModifiers(KeyFlags flags)
{
    qint64 carbon = 0;
    for (const ModifierBit &bit : modifierBits) {
        if (flags.testFlag(bit.flag))
            carbon |= bit.carbon;
    }
    return carbon;
}

KeyFlags keyFlags(qint64 carbonModifiers)
{
    KeyFlags flags;
    for (const ModifierBit &bit : modifierBits)
        flags.setFlag(bit.flag, (carbonModifiers & bit.carbon) != 0);
    return flags;
}

qint64 normalizedModifiers(qint64 modifiers)
{
    return carbonModifiers(keyFlags(modifiers));
}

} // namespace KeyboardShortcuts
