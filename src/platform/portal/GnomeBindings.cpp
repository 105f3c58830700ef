// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/GnomeBindings.h"

#include "platform/linux/GSettingsTool.h"

#include <QRegularExpression>

#include <algorithm>
#include <optional>

namespace tovek {

namespace {

constexpr int settingsPatienceMs = 2000;
const QString mediaKeys = QStringLiteral("org.gnome.settings-daemon.plugins.media-keys");
const QString listKey = QStringLiteral("custom-keybindings");
const QString folder =
    QStringLiteral("/org/gnome/settings-daemon/plugins/media-keys/custom-keybindings/");
const QString ownPrefix = folder + QStringLiteral("tovek-");

std::optional<QString> gsettings(const QStringList &arguments)
{
    return askGSettings(arguments, settingsPatienceMs);
}

QString schemaOf(const QString &path)
{
    return mediaKeys + QStringLiteral(".custom-keybinding:") + path;
}

/// False when it could not be written.
bool write(const QString &schema, const QString &key, const QString &value)
{
    // What is written anew is taken anew by the daemon, even where it stays the same.
    return gsettings({QStringLiteral("get"), schema, key}) == value
        || gsettings({QStringLiteral("set"), schema, key, value});
}

} // namespace

bool GnomeBindings::areAvailable()
{
    return gsettings({QStringLiteral("writable"), mediaKeys, listKey}) == QStringLiteral("true");
}

QString GnomeBindings::set(const QList<GnomeBinding> &bindings)
{
    const auto printed = gsettings({QStringLiteral("get"), mediaKeys, listKey});
    if (!printed)
        return QStringLiteral("GNOME's settings cannot be read");
    QStringList paths = listOf(*printed);
    const QStringList before = paths;
    QStringList wanted;
    for (const GnomeBinding &binding : bindings) {
        const QString path = ownPrefix + binding.slot + QLatin1Char('/');
        wanted << path;
        if (!write(schemaOf(path), QStringLiteral("name"), quoted(binding.name))
            || !write(schemaOf(path), QStringLiteral("command"), quoted(binding.command))
            || !write(schemaOf(path), QStringLiteral("binding"), quoted(binding.accelerator)))
            return QStringLiteral("GNOME's settings cannot be written");
        if (!paths.contains(path))
            paths << path;
    }
    for (const QString &path : before) {
        if (!path.startsWith(ownPrefix) || wanted.contains(path))
            continue;
        paths.removeAll(path);
        gsettings({QStringLiteral("reset-recursively"), schemaOf(path)});
    }
    if (paths != before && !gsettings({QStringLiteral("set"), mediaKeys, listKey, quoted(paths)}))
        return QStringLiteral("GNOME's settings cannot be written");
    return {};
}

QStringList GnomeBindings::accelerators()
{
    QStringList found;
    const auto printed = gsettings({QStringLiteral("get"), mediaKeys, listKey});
    for (const QString &path : listOf(printed.value_or(QString()))) {
        if (path.startsWith(ownPrefix))
            continue;
        const auto binding =
            gsettings({QStringLiteral("get"), schemaOf(path), QStringLiteral("binding")});
        found += listOf(binding.value_or(QString()));
    }
    return found;
}

QStringList GnomeBindings::listOf(const QString &printed)
{
    // A text with an apostrophe in it is printed between double quotes.
    static const QRegularExpression text(
        QStringLiteral("'((?:[^'\\\\]|\\\\.)*)'|\"((?:[^\"\\\\]|\\\\.)*)\""));
    QStringList texts;
    auto matches = text.globalMatch(printed);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        QString one = match.capturedStart(1) >= 0 ? match.captured(1) : match.captured(2);
        static const QRegularExpression escaped(QStringLiteral("\\\\(.)"));
        texts << one.replace(escaped, QStringLiteral("\\1"));
    }
    return texts;
}

QString GnomeBindings::quoted(const QString &text)
{
    const bool hasApostrophe = text.contains(QLatin1Char('\''));
    const QChar quote = QLatin1Char(hasApostrophe ? '"' : '\'');
    QString escaped = text;
    escaped.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    if (hasApostrophe)
        escaped.replace(QLatin1Char('"'), QStringLiteral("\\\""));
    return quote + escaped + quote;
}

QString GnomeBindings::quoted(const QStringList &texts)
{
    if (texts.isEmpty())
        return QStringLiteral("@as []");
    QStringList all;
    for (const QString &text : texts)
        all << quoted(text);
    return QLatin1Char('[') + all.join(QStringLiteral(", ")) + QLatin1Char(']');
}

} // namespace tovek
