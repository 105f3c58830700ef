// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/Scripts.h"

#include <algorithm>

namespace tovek {

namespace {

/// Of the letters: an icon beside a Latin label is sometimes read as one ideograph.
constexpr double leastShareOfWords = 0.25;

/// From here on marks too stand in an ideograph's cell.
constexpr char32_t firstIdeograph = 0x2E80;

/// Letters that every font draws alike, in the same order.
const QString cyrillicTwins = QStringLiteral("АВЕКМНОРСТХУІЈЅаеорсухіјѕ");
const QString twinsOfCyrillic = QStringLiteral("ABEKMHOPCTXYIJSaeopcyxijs");
const QString greekTwins = QStringLiteral("ΑΒΕΖΗΙΚΜΝΟΡΤΥΧο");
const QString twinsOfGreek = QStringLiteral("ABEZHIKMNOPTYXo");

QChar latinOf(QChar c)
{
    if (const auto at = cyrillicTwins.indexOf(c); at >= 0)
        return twinsOfCyrillic.at(at);
    if (const auto at = greekTwins.indexOf(c); at >= 0)
        return twinsOfGreek.at(at);
    return c;
}

QChar twinOf(QChar c, QChar::Script script)
{
    const bool isGreek = script == QChar::Script_Greek;
    const auto at = (isGreek ? twinsOfGreek : twinsOfCyrillic).indexOf(c);
    return at < 0 ? c : (isGreek ? greekTwins : cyrillicTwins).at(at);
}

bool hasTwin(QChar c)
{
    return twinsOfCyrillic.contains(c) || twinsOfGreek.contains(c);
}

bool isLeftToRightLetter(char32_t c)
{
    return QChar::isLetter(c) && QChar::direction(c) == QChar::DirL;
}

bool isRightToLeftLetter(char32_t c)
{
    return QChar::direction(c) == QChar::DirR || QChar::direction(c) == QChar::DirAL;
}

bool hasLeftToRightLetter(const QString &word)
{
    const auto characters = word.toStdU32String();
    return std::any_of(characters.begin(), characters.end(), isLeftToRightLetter)
        && !isRightToLeft(word);
}

/// Digits go from left to right, and after a Latin word they follow it on its right.
bool continuesLeftToRight(const QString &word)
{
    const auto characters = word.toStdU32String();
    return std::none_of(characters.begin(), characters.end(), isRightToLeftLetter)
        && std::any_of(characters.begin(), characters.end(),
                       [](char32_t c) { return QChar::isLetterOrNumber(c); });
}

} // namespace

Script scriptOf(char32_t character)
{
    switch (QChar::script(character)) {
    case QChar::Script_Unknown:
    case QChar::Script_Inherited:
    case QChar::Script_Common:
        return character >= firstIdeograph ? Script::words : Script::none;
    case QChar::Script_Latin:
    case QChar::Script_Greek:
    case QChar::Script_Cyrillic:
    case QChar::Script_Armenian:
    case QChar::Script_Georgian:
        return Script::letters;
    default:
        return Script::words;
    }
}

Script scriptOf(const QString &text)
{
    Script script = Script::none;
    for (const char32_t c : text.toStdU32String()) {
        const Script one = scriptOf(c);
        if (one == Script::words)
            return one;
        if (one == Script::letters)
            script = one;
    }
    return script;
}

bool isIdeographic(const QString &text)
{
    return std::any_of(text.begin(), text.end(),
                       [](QChar c) { return c.unicode() >= firstIdeograph; });
}

bool isDividedByBlanks(const QString &text)
{
    int divided = 0;
    int all = 0;
    for (const char32_t c : text.toStdU32String()) {
        const auto script = QChar::script(c);
        all += scriptOf(c) == Script::words;
        divided += script == QChar::Script_Hangul || script == QChar::Script_Thai
            || script == QChar::Script_Lao || script == QChar::Script_Khmer
            || script == QChar::Script_Myanmar;
    }
    return divided * 2 > all;
}

bool hasOtherThanLatin(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) {
        return c.isLetter() && c.script() != QChar::Script_Latin
            && c.script() != QChar::Script_Common;
    });
}

bool isReadByWords(const QString &text)
{
    int letters = 0;
    int words = 0;
    for (const char32_t c : text.toStdU32String()) {
        const Script script = scriptOf(c);
        letters += script == Script::letters;
        words += script == Script::words;
    }
    return words > 0 && words >= (letters + words) * leastShareOfWords;
}

bool isRightToLeft(const QString &text)
{
    int balance = 0;
    for (const char32_t c : text.toStdU32String())
        balance += isRightToLeftLetter(c) ? 1 : isLeftToRightLetter(c) ? -1 : 0;
    return balance > 0;
}

std::vector<std::size_t> readingOrderOf(const std::vector<QString> &words)
{
    // One word from right to left is enough: a line of them may hold more Latin than its own.
    const bool isReversed = std::any_of(words.begin(), words.end(), isRightToLeft);
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < words.size();) {
        std::size_t end = i + 1;
        if (isReversed && hasLeftToRightLetter(words[i])) {
            while (end < words.size() && continuesLeftToRight(words[end]))
                ++end;
        }
        const auto at = isReversed ? order.begin() : order.end();
        std::vector<std::size_t> group;
        for (; i < end; ++i)
            group.push_back(i);
        order.insert(at, group.begin(), group.end());
    }
    return order;
}

bool isSameShape(const QString &a, const QString &b)
{
    return a.size() == 1 && b.size() == 1 && a != b && (latinOf(a.at(0)) == latinOf(b.at(0)));
}

QString inOneScript(const QString &word)
{
    int latin = 0;
    int other = 0;
    int onlyLatin = 0;
    int onlyOther = 0;
    auto script = QChar::Script_Latin;
    for (const QChar c : word) {
        if (!c.isLetter())
            continue;
        if (c.script() == QChar::Script_Latin) {
            ++latin;
            onlyLatin += !hasTwin(c);
        } else if (c.script() == QChar::Script_Cyrillic || c.script() == QChar::Script_Greek) {
            ++other;
            onlyOther += latinOf(c) == c;
            script = c.script();
        }
    }
    if (latin == 0 || other == 0 || onlyLatin == onlyOther)
        return word;
    QString result;
    for (const QChar c : word)
        result += onlyLatin > onlyOther ? latinOf(c) : twinOf(c, script);
    return result;
}

QString withMarksBehind(const QString &seen)
{
    static const QString marks = QStringLiteral(".,;:!?()[]{}");
    qsizetype count = 0;
    while (count < seen.size() && marks.contains(seen.at(count)))
        ++count;
    // Brackets around the word stand on both sides of it, and a sign alone is no end.
    if (count == seen.size() || (count > 0 && marks.contains(seen.back())))
        return seen;
    QString behind = seen.mid(count);
    for (qsizetype i = count; i-- > 0;)
        behind += QChar(QChar::mirroredChar(seen.at(i).unicode()));
    return behind;
}

QString withoutDirectionMarks(const QString &text)
{
    QString result;
    for (const QChar c : text) {
        const ushort code = c.unicode();
        const bool isMark = code == 0x200E || code == 0x200F || code == 0x061C
            || (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
        if (!isMark)
            result += c;
    }
    return result;
}

} // namespace tovek
