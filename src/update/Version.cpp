// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/Version.h"

#include <QRegularExpression>

#include <algorithm>

namespace tovek {

namespace {

std::strong_ordering ordering(int comparison)
{
    return comparison <=> 0;
}

} // namespace

std::optional<Version> Version::fromString(const QString &text)
{
    static const QRegularExpression form(QStringLiteral(
        "\\A([0-9]{1,9}(?:\\.[0-9]{1,9}){0,5})(?:-([0-9A-Za-z][0-9A-Za-z.]{0,30}))?\\z"));
    const auto match = form.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    Version version;
    const QStringList numbers = match.captured(1).split(QLatin1Char('.'));
    for (const QString &number : numbers)
        version.m_numbers.append(number.toInt());
    while (!version.m_numbers.isEmpty() && version.m_numbers.last() == 0)
        version.m_numbers.removeLast();
    version.m_suffix = partsOf(match.captured(2));
    return version;
}

QList<Version::Part> Version::partsOf(const QString &suffix)
{
    static const QRegularExpression part(QStringLiteral("[0-9]{1,9}|[A-Za-z]+"));
    QList<Part> parts;
    auto matches = part.globalMatch(suffix);
    while (matches.hasNext()) {
        const QString text = matches.next().captured();
        const bool isNumber = text.at(0).isDigit();
        parts.append({isNumber ? text.toInt() : 0, isNumber ? QString() : text.toLower()});
    }
    return parts;
}

std::strong_ordering Version::compare(const Part &one, const Part &other)
{
    // Numbers come before words.
    if (one.word.isEmpty() != other.word.isEmpty())
        return one.word.isEmpty() ? std::strong_ordering::less : std::strong_ordering::greater;
    if (one.word.isEmpty())
        return one.number <=> other.number;
    return ordering(one.word.compare(other.word));
}

std::strong_ordering Version::operator<=>(const Version &other) const
{
    const auto numbers = std::lexicographical_compare_three_way(
        m_numbers.begin(), m_numbers.end(), other.m_numbers.begin(), other.m_numbers.end());
    if (numbers != 0)
        return numbers;
    if (m_suffix.isEmpty() != other.m_suffix.isEmpty())
        return m_suffix.isEmpty() ? std::strong_ordering::greater : std::strong_ordering::less;
    return std::lexicographical_compare_three_way(m_suffix.begin(), m_suffix.end(),
                                                  other.m_suffix.begin(), other.m_suffix.end(),
                                                  &Version::compare);
}

} // namespace tovek
