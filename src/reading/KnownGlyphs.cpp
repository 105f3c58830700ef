// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/KnownGlyphs.h"

#include "reading/InkSegments.h"
#include "reading/SharedReadings.h"
#include "reading/TextRuns.h"

#include <algorithm>
#include <cmath>

namespace tovek {

namespace {

/// What is less sure names nothing.
constexpr double sureOfGlyph = 85;
/// Half sure is what was named by its shape alone.
constexpr double namedByShape = 50;
/// Readings that a look must have, and how many of them must agree; beside certain characters
/// fewer are needed, but then all agree.
constexpr int leastVotes = 2;
constexpr double agreement = 0.98;
/// Of a clear majority, the part that may be read with a neighbour's mark.
constexpr int mostWithMore = 10;
/// Gaps that must have been seen, and the share of them that may be misread.
constexpr std::size_t leastGaps = 20;
constexpr double misread = 0.02;
/// The most pieces of one character, as the double quote has two.
constexpr std::size_t mostGlyphPieces = 3;

QByteArray keyOf(const QRect &unit, const LetterMetrics &metrics)
{
    const int above = int(std::lround(metrics.baseline)) - unit.bottom();
    return QByteArray::number(unit.width()) + ' ' + QByteArray::number(unit.height()) + ' '
        + QByteArray::number(above);
}

std::vector<std::uint8_t> inkOf(const InkMap &ink, const QRect &box)
{
    std::vector<std::uint8_t> pixels;
    pixels.reserve(std::size_t(box.width()) * box.height());
    for (int y = box.top(); y <= box.bottom(); ++y)
        pixels.insert(pixels.end(), ink.row(y) + box.left(), ink.row(y) + box.right() + 1);
    return pixels;
}

/// What all agree on; nothing where they do not. A reading with more around it ("'d" beside many
/// d) is the same, with a mark that belongs to its neighbour.
std::optional<QString> agreed(const std::map<QString, int> &votes, int least, double share)
{
    const auto best =
        std::max_element(votes.begin(), votes.end(),
                         [](const auto &a, const auto &b) { return a.second < b.second; });
    if (best == votes.end() || best->first.isEmpty())
        return std::nullopt;
    int all = 0;
    for (const auto &[text, count] : votes) {
        const bool hasMore = text.size() > best->first.size() && text.contains(best->first);
        all += hasMore && count * mostWithMore <= best->second ? 0 : count;
    }
    if (all < least || best->second < all * share)
        return std::nullopt;
    return best->first;
}

/// The text of the unit that begins at `i`, and how many symbols it has.
struct UnitText
{
    QString text;
    std::size_t count = 0;
    double least = 100;
};

UnitText unitAt(const std::vector<InkSymbol> &symbols, std::size_t i)
{
    UnitText unit;
    for (std::size_t k = i; k < symbols.size() && symbols[k].unit == symbols[i].unit; ++k) {
        unit.text += symbols[k].text;
        unit.least = std::min(unit.least, symbols[k].confidence);
        ++unit.count;
    }
    return unit;
}

int quarters(double capHeight)
{
    return int(std::lround(capHeight * 4));
}

} // namespace

void KnownGlyphs::learn(const std::vector<ReadPiece> &pieces)
{
    for (const ReadPiece &piece : pieces) {
        const auto &symbols = piece.symbols;
        Gaps &gaps = m_gaps[quarters(piece.metrics.capHeight)];
        for (std::size_t i = 0; i < symbols.size();) {
            const UnitText unit = unitAt(symbols, i);
            const std::size_t next = i + unit.count;
            // What was named from here says nothing new.
            const bool isRead = unit.least != namedByShape && !symbols[i].isByLook;
            if (i > 0 && isRead && !symbols[i - 1].isByLook) {
                const int gap = symbols[i].unit.left() - symbols[i - 1].unit.right() - 1;
                (symbols[i].startsWord ? gaps.blanks : gaps.letters).push_back(gap);
            }
            if (isRead && !symbols[i].glyph.empty()) {
                Glyph *glyph = find(keyOf(symbols[i].unit, piece.metrics), symbols[i].glyph,
                                    piece.metrics.capHeight);
                const QString text = unit.least >= sureOfGlyph ? unit.text : QString();
                ++glyph->votes[text];
                glyph->confidence += unit.least;
                ++glyph->places;
                const bool isFirst = i == 0 || symbols[i].startsWord;
                const bool isLast = next == symbols.size() || symbols[next].startsWord;
                const QString before = isFirst ? QString() : symbols[i - 1].text;
                const QString after = isLast ? QString() : symbols[next].text;
                ++glyph->between[{before, after}][text];
            }
            i = next;
        }
    }
}

KnownGlyphs::Glyph *KnownGlyphs::find(const QByteArray &key, const std::vector<std::uint8_t> &ink,
                                      double capHeight)
{
    if (const Glyph *glyph = std::as_const(*this).find(key, ink, capHeight))
        return const_cast<Glyph *>(glyph);
    std::vector<Glyph> &glyphs = m_glyphs[key];
    glyphs.push_back({ink, capHeight, 0, 0, {}, {}});
    return &glyphs.back();
}

const KnownGlyphs::Glyph *KnownGlyphs::find(const QByteArray &key,
                                            const std::vector<std::uint8_t> &ink,
                                            double capHeight) const
{
    const auto glyphs = m_glyphs.constFind(key);
    if (glyphs == m_glyphs.constEnd())
        return nullptr;
    const auto found = std::find_if(glyphs->begin(), glyphs->end(), [&](const Glyph &one) {
        return std::abs(one.capHeight - capHeight) <= capHeight * sameFont
            && looksLike(one.ink, ink);
    });
    return found == glyphs->end() ? nullptr : &*found;
}

std::optional<std::pair<int, int>> KnownGlyphs::gapsOf(double capHeight) const
{
    Gaps all;
    for (auto it = m_gaps.lower_bound(quarters(capHeight * (1 - sameFont)));
         it != m_gaps.end() && it->first <= quarters(capHeight * (1 + sameFont)); ++it) {
        all.letters.insert(all.letters.end(), it->second.letters.begin(), it->second.letters.end());
        all.blanks.insert(all.blanks.end(), it->second.blanks.begin(), it->second.blanks.end());
    }
    if (std::min(all.letters.size(), all.blanks.size()) < leastGaps)
        return std::nullopt;
    std::sort(all.letters.begin(), all.letters.end());
    std::sort(all.blanks.begin(), all.blanks.end());
    const int widestLetter =
        all.letters[std::size_t(double(all.letters.size() - 1) * (1 - misread))];
    const int narrowestBlank = all.blanks[std::size_t(double(all.blanks.size() - 1) * misread)];
    if (widestLetter >= narrowestBlank)
        return std::nullopt;
    return std::pair(widestLetter, narrowestBlank);
}

std::vector<KnownGlyphs::Unit> KnownGlyphs::unitsOf(const InkMap &ink, const PageRun &run) const
{
    const std::vector<QRect> segments = inkSegments(ink, run.text);
    const QPoint origin = run.text.box.topLeft();
    std::vector<Unit> units;
    for (std::size_t i = 0; i < segments.size();) {
        Unit unit{segments[i]};
        std::size_t pieces = 1;
        QRect box;
        for (std::size_t n = 1; n <= mostGlyphPieces && i + n <= segments.size(); ++n) {
            box |= segments[i + n - 1];
            const QRect inRun = box.translated(-origin);
            if (!QRect(QPoint(), ink.size).contains(inRun))
                break;
            const Glyph *glyph =
                find(keyOf(box, run.metrics), inkOf(ink, inRun), run.metrics.capHeight);
            // The most pieces that are known together; what is not known at all is one.
            if (glyph || n == 1) {
                unit = {box, glyph};
                pieces = n;
            }
        }
        units.push_back(unit);
        i += pieces;
    }
    return units;
}

KnownGlyphs::Word KnownGlyphs::wordOf(const std::vector<Unit> &units) const
{
    Word word;
    std::vector<QString> texts;
    bool isKnown = true;
    for (const Unit &unit : units) {
        word.box |= unit.box;
        const auto text =
            unit.glyph ? agreed(unit.glyph->votes, leastVotes, agreement) : std::nullopt;
        texts.push_back(text.value_or(QString()));
        isKnown = isKnown && unit.glyph;
    }
    for (std::size_t i = 0; isKnown && i < units.size(); ++i) {
        if (!texts[i].isEmpty())
            continue;
        // One look of two characters, such as l and I: the characters beside it tell.
        const QString before = i > 0 ? texts[i - 1].right(1) : QString();
        const QString after = i + 1 < units.size() ? texts[i + 1].left(1) : QString();
        const bool isTold =
            (i == 0 || !before.isEmpty()) && (i + 1 == units.size() || !after.isEmpty());
        const auto votes = units[i].glyph->between.find({before, after});
        const auto text = isTold && votes != units[i].glyph->between.end()
            ? agreed(votes->second, 1, 1)
            : std::nullopt;
        isKnown = text.has_value();
        texts[i] = text.value_or(QString());
    }
    if (!isKnown)
        return word;
    for (std::size_t i = 0; i < units.size(); ++i) {
        const int count = int(texts[i].size());
        for (int k = 0; k < count; ++k) {
            InkSymbol symbol{texts[i].mid(k, 1),
                             sliceOf(units[i].box, k, count),
                             units[i].glyph->confidence / units[i].glyph->places,
                             i == 0 && k == 0,
                             count,
                             units[i].box,
                             {}};
            symbol.isByLook = true;
            if (k == 0)
                symbol.glyph = units[i].glyph->ink; // one ink for all that look alike
            word.symbols.push_back(std::move(symbol));
        }
    }
    return word;
}

std::optional<std::vector<KnownGlyphs::Word>> KnownGlyphs::read(const InkMap &map,
                                                                const PageRun &run) const
{
    const auto gaps = gapsOf(run.metrics.capHeight);
    if (!gaps)
        return std::nullopt;
    std::vector<Unit> units = unitsOf(evenInk(map, run.text, run.metrics), run);
    std::vector<Word> words;
    std::vector<Unit> word;
    bool isDoubtful = false; // whether the word begins or ends where it does
    const auto finish = [&] {
        if (word.empty())
            return;
        words.push_back(wordOf(word));
        if (isDoubtful)
            words.back().symbols.clear();
        word.clear();
        isDoubtful = false;
    };
    for (Unit &unit : units) {
        const int gap = word.empty() ? 0 : unit.box.left() - word.back().box.right() - 1;
        if (!word.empty() && gap >= gaps->second)
            finish();
        isDoubtful = isDoubtful || (gap > gaps->first && !word.empty());
        word.push_back(unit);
    }
    finish();
    return words;
}

} // namespace tovek
