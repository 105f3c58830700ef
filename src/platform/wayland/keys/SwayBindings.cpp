// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/keys/SwayBindings.h"

#include "platform/linux/Accelerator.h"
#include "platform/linux/KeyCodes.h"

#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <optional>

namespace tovek {

namespace {

struct SwayModifier
{
    const char *name;
    quint32 modifier;
};

constexpr SwayModifier swayModifiers[] = {
    {"control", ComboModifier::control}, {"ctrl", ComboModifier::control},
    {"alt", ComboModifier::option},      {"mod1", ComboModifier::option},
    {"shift", ComboModifier::shift},     {"super", ComboModifier::command},
    {"mod4", ComboModifier::command},    {"logo", ComboModifier::command},
};

QString withVariables(QString text, const QHash<QString, QString> &variables)
{
    // The longest name first: one may be the beginning of another.
    QStringList names = variables.keys();
    std::sort(names.begin(), names.end(),
              [](const QString &a, const QString &b) { return a.size() > b.size(); });
    for (const QString &name : std::as_const(names))
        text.replace(name, variables.value(name));
    return text;
}

/// Absent for what is no combination of ours.
std::optional<SwayBinding> bindingOf(const QString &combination, bool isCode)
{
    SwayBinding binding;
    QStringList parts = combination.split(QLatin1Char('+'), Qt::SkipEmptyParts);
    if (parts.isEmpty())
        return std::nullopt;
    const QString key = parts.takeLast();
    for (const QString &part : std::as_const(parts)) {
        const auto known = std::find_if(
            std::begin(swayModifiers), std::end(swayModifiers), [&](const SwayModifier &name) {
                return part.compare(QLatin1String(name.name), Qt::CaseInsensitive) == 0;
            });
        if (known == std::end(swayModifiers))
            return std::nullopt;
        binding.modifiers |= known->modifier;
    }
    if (isCode)
        binding.keycode = key.toUInt();
    else
        binding.key = key;
    return binding;
}

/// A block in braces, and what the lines within begin with.
struct Block
{
    bool isForBindings = false; ///< its lines bind keys that always hold
    QString command;
};

QStringList wordsOf(const QString &line)
{
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    return line.split(blanks, Qt::SkipEmptyParts);
}

} // namespace

SwayConfiguration parseSwayConfiguration(const QString &text, QHash<QString, QString> &variables)
{
    SwayConfiguration found;
    QList<Block> blocks;
    QString joined = text;
    joined.replace(QStringLiteral("\\\n"), QStringLiteral(" "));
    for (const QString &raw : joined.split(QLatin1Char('\n'))) {
        const QString line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        if (line.startsWith(QLatin1Char('}'))) {
            if (!blocks.isEmpty())
                blocks.removeLast();
            continue;
        }
        QStringList words = wordsOf(line);
        const bool isBinding = words.first().startsWith(QLatin1String("bind"));
        if (line.endsWith(QLatin1Char('{'))) {
            blocks.append({isBinding && blocks.isEmpty(), words.first()});
            continue;
        }
        if (words.first() == QLatin1String("set") && words.size() > 2) {
            variables.insert(words.at(1), withVariables(words.mid(2).join(' '), variables));
            continue;
        }
        if (words.first() == QLatin1String("include") && words.size() > 1) {
            found.includes.append(withVariables(words.mid(1).join(' '), variables));
            continue;
        }
        if (!blocks.isEmpty() && blocks.last().isForBindings)
            words.prepend(blocks.last().command);
        else if (!blocks.isEmpty())
            continue;
        const bool isCode = words.first() == QLatin1String("bindcode");
        if (!isCode && words.first() != QLatin1String("bindsym"))
            continue;
        words.removeFirst();
        while (!words.isEmpty() && words.first().startsWith(QLatin1String("--")))
            words.removeFirst();
        if (words.isEmpty())
            continue;
        if (const auto binding = bindingOf(withVariables(words.first(), variables), isCode))
            found.bindings.push_back(*binding);
    }
    return found;
}

bool isBoundTo(const SwayBinding &binding, KeyCombo combo, const KeyboardLayout &layout)
{
    if (binding.modifiers != combo.modifiers)
        return false;
    if (binding.key.isEmpty())
        return hardwareKeyCode(int(binding.keycode) - windowSystemKeyOffset) == int(combo.keyCode);
    return isAccelerator(binding.key, {combo.keyCode, 0}, layout);
}

} // namespace tovek
