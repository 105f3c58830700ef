// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <vector>

namespace tovek {

/// What the engine's answer for a stretch of text is good for.
enum class Script {
    none, ///< digits and marks alone
    letters, ///< Latin, Greek, Cyrillic: letters stand side by side and each has ink of its own
    words, ///< Arabic, Hindi, Thai, Chinese ...: letters join, reorder or are no letters at all
};

/// Of one code point. Marks and digits that every script has are none.
Script scriptOf(char32_t character);
/// Of the letters in the text; `words` where it has any such letter.
Script scriptOf(const QString &text);

/// Whether an ideograph, kana, hangul or a mark of theirs is in the text.
bool isIdeographic(const QString &text);

/// Whether most letters are of a script that has blanks, but not where the engine divides: it
/// gives Korean by syllables and Thai by letters.
bool isDividedByBlanks(const QString &text);

/// In letter heights: no gap between two letters or syllables is as wide as a blank.
inline constexpr double narrowestBlankBetweenWords = 0.2;

/// Whether a letter is none of the Latin ones.
bool hasOtherThanLatin(const QString &text);

/// True for text in which letters of `words` have a part that a misread icon has not.
bool isReadByWords(const QString &text);

/// Whether the letters that decide about direction go from right to left for the most part.
bool isRightToLeft(const QString &text);

/// The reading order of words that stand side by side, as indices; `words` from left to right. In a
/// line from right to left, words in Latin letters keep their order among each other.
std::vector<std::size_t> readingOrderOf(const std::vector<QString> &words);

/// A number or Latin word as it stands in a line from right to left, given as it is seen from the
/// left: the marks that end it there stand before it.
QString withMarksBehind(const QString &seen);

/// Whether two characters are drawn alike in different scripts, such as a Latin and a Cyrillic e.
bool isSameShape(const QString &a, const QString &b);

/// A word in letters of one script: where it mixes Latin with Cyrillic or Greek ones, those that
/// are drawn alike in both follow the others.
QString inOneScript(const QString &word);

/// Without the invisible marks that only turn the direction of writing.
QString withoutDirectionMarks(const QString &text);

} // namespace tovek
