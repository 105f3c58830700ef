// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/PictureGlyphs.h"

#include "reading/GlyphNet.h"
#include "reading/GlyphView.h"
#include "reading/Plausibility.h"

#include <algorithm>

namespace tovek {

namespace {

/// The most characters that the engine reads into a picture by itself.
constexpr std::size_t mostInPicture = 4;
/// Between other words only what the engine is less sure of is looked at: few icons stand there.
constexpr double sureWord = 98;
/// What takes a word for a picture; a dash or a dot shows less of itself than a letter.
constexpr float likelyPicture = 0.5F;
constexpr float likelyPictureOfMarks = 0.8F;
/// What takes one end of a longer word for one, and its least height and width in cap heights:
/// the marks at a word's ends are smaller than icons.
constexpr float certainPicture = 0.9F;
constexpr double leastGlyphIconHeight = 0.8;
constexpr double leastIconWidth = 0.6;
/// In cap heights: an icon stands farther from its label than letters from each other.
constexpr double leastIconGap = 0.2;

/// The scripts that the network has seen.
bool isKnown(const QString &text)
{
    const auto characters = text.toStdU32String();
    return std::all_of(characters.begin(), characters.end(), [](char32_t c) {
        const QChar::Script script = QChar::script(c);
        return script == QChar::Script_Common || script == QChar::Script_Latin
            || script == QChar::Script_Greek || script == QChar::Script_Cyrillic;
    });
}

int kindOf(const InkSymbol &symbol)
{
    if (symbol.shared > 1)
        return GlyphNet::severalLetters;
    const char16_t c = symbol.text.size() == 1 ? symbol.text.at(0).unicode() : u'\0';
    return c > u' ' && c <= u'~' ? c - u'!' : GlyphNet::otherLetter;
}

} // namespace

PictureGlyphs::View PictureGlyphs::viewOf(const InkSymbol &symbol, const LetterMetrics &metrics)
{
    const GlyphNet::Glyph glyph = glyphView(symbol.glyph, symbol.unit, metrics);
    const int kind = kindOf(symbol);
    QByteArray key(reinterpret_cast<const char *>(glyph.ink.data()), qsizetype(glyph.ink.size()));
    key += char(kind);
    const auto seen = m_seen.constFind(key);
    if (seen != m_seen.constEnd())
        return *seen;
    const GlyphNet::Answer answer = m_net.classify(glyph);
    return *m_seen.insert(key, {answer[GlyphNet::picture], answer[std::size_t(kind)]});
}

bool PictureGlyphs::isPicture(const std::vector<InkSymbol> &symbols, std::size_t from,
                              std::size_t to, const LetterMetrics &metrics)
{
    QString text;
    float picture = 0;
    float character = 0;
    int units = 0;
    for (std::size_t i = from; i < to; ++i) {
        text += symbols[i].text;
        if (symbols[i].glyph.empty())
            continue;
        const View view = viewOf(symbols[i], metrics);
        picture += view.picture;
        character += view.character;
        ++units;
    }
    if (units == 0 || !isKnown(text))
        return false;
    const float least = isMarks(text) ? likelyPictureOfMarks : likelyPicture;
    return picture > least * float(units) && picture > character;
}

bool PictureGlyphs::isIcon(const InkSymbol &symbol, const LetterMetrics &metrics)
{
    return !symbol.glyph.empty() && isKnown(symbol.text)
        && symbol.unit.height() >= metrics.capHeight * leastGlyphIconHeight
        && symbol.unit.width() >= metrics.capHeight * leastIconWidth
        && viewOf(symbol, metrics).picture > certainPicture;
}

void PictureGlyphs::erase(std::vector<InkSymbol> &symbols, const LetterMetrics &metrics)
{
    std::vector<bool> isErased(symbols.size(), false);
    for (std::size_t from = 0, to = 0; from < symbols.size(); from = to) {
        to = from + 1;
        double confidence = symbols[from].confidence;
        for (; to < symbols.size() && !symbols[to].startsWord; ++to)
            confidence += symbols[to].confidence;
        const bool isAtEnd = from == 0 || to == symbols.size();
        const bool isSure = confidence >= sureWord * double(to - from);
        if (to - from <= mostInPicture && (isAtEnd || !isSure)
            && isPicture(symbols, from, to, metrics))
            std::fill(isErased.begin() + std::ptrdiff_t(from),
                      isErased.begin() + std::ptrdiff_t(to), true);
    }
    for (const bool isFirst : {true, false}) {
        if (symbols.size() < 2)
            break;
        // All characters that share the ink at that end.
        const std::size_t end = isFirst ? 0 : symbols.size() - 1;
        std::size_t unit = end;
        while (unit > 0 && symbols[unit - 1].unit == symbols[end].unit)
            --unit;
        std::size_t next = unit;
        while (isFirst && next < symbols.size() && symbols[next].unit == symbols[unit].unit)
            ++next;
        if (!isFirst && unit > 0)
            next = unit - 1;
        if (next == unit || next == symbols.size())
            continue;
        const int gap = isFirst ? symbols[next].unit.left() - symbols[unit].unit.right() - 1
                                : symbols[unit].unit.left() - symbols[next].unit.right() - 1;
        if (gap < metrics.capHeight * leastIconGap || !isIcon(symbols[unit], metrics))
            continue;
        for (std::size_t i = unit; i < symbols.size() && symbols[i].unit == symbols[unit].unit; ++i)
            isErased[i] = true;
    }
    std::vector<InkSymbol> kept;
    bool startsWord = false;
    for (std::size_t i = 0; i < symbols.size(); ++i) {
        startsWord = startsWord || symbols[i].startsWord;
        if (isErased[i])
            continue;
        kept.push_back(std::move(symbols[i]));
        kept.back().startsWord = startsWord;
        startsWord = false;
    }
    symbols = std::move(kept);
}

} // namespace tovek
