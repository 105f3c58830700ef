// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/KnownGlyphs.h"

#include "reading/GlyphView.h"
#include "reading/InkSegments.h"
#include "reading/SharedReadings.h"
#include "reading/TextRuns.h"

#include <algorithm>
#include <atomic>
#include <cmath>

namespace tovek {

namespace {

/// What is less sure names nothing.
constexpr double sureOfGlyph = 85;
/// Half sure is what was named by its shape alone.
constexpr double namedByShape = 50;
/// Readings that a look must have; with the network of glyphs for a witness one is enough.
constexpr int leastVotes = 2;
constexpr float sureWitness = 0.5F;
/// The same of a look of two characters, beside others of certain kinds.
constexpr int leastAmid = 4;
/// The share of a look's readings that may be other than the rest: of characters that fonts draw
/// alike, and of those that no font does, where the engine was mistaken.
constexpr double mostAlike = 0.02;
constexpr double mostMistaken = 0.25;
/// Of a clear majority, the part that may be read with a neighbour's mark.
constexpr int mostWithMore = 10;
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
std::optional<QString> agreed(const std::map<QString, int> &votes, int least)
{
    const auto best =
        std::max_element(votes.begin(), votes.end(),
                         [](const auto &a, const auto &b) { return a.second < b.second; });
    if (best == votes.end() || best->first.isEmpty())
        return std::nullopt;
    int all = 0;
    int alike = 0;
    for (const auto &[text, count] : votes) {
        const bool hasMore = text.size() > best->first.size() && text.contains(best->first);
        all += hasMore && count * mostWithMore <= best->second ? 0 : count;
        alike += text != best->first && !text.isEmpty() && isAlike(text, best->first) ? count : 0;
    }
    if (all < least || alike > all * mostAlike || all - best->second > all * mostMistaken)
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

/// The kind of a character beside another; none at a word's end.
int neighbourKind(const QString &text)
{
    const QChar c = text.isEmpty() ? QChar(' ') : text.at(0);
    return c.isSpace() ? 0 : c.isLower() ? 1 : c.isUpper() ? 2 : c.isDigit() ? 3 : 4;
}

/// Whether the network sees in a glyph what was read there. Of letters that run together it sees
/// only that they are several; bars and rings it cannot tell from each other.
bool showsText(const GlyphNet::Glyph &glyph, const QString &text)
{
    static const QString oneShape = QStringLiteral("lI|10Oo");
    if (text.isEmpty() || oneShape.contains(text))
        return false;
    const char16_t c = text.size() == 1 ? text.at(0).unicode() : u'\0';
    const int kind = text.size() > 1 ? GlyphNet::severalLetters
        : c > u' ' && c <= u'~'      ? c - u'!'
                                     : GlyphNet::otherLetter;
    return GlyphNet::trained().classify(glyph)[std::size_t(kind)] >= sureWitness;
}

/// What most readings are, whoever agrees.
QString usualText(const std::map<QString, int> &votes)
{
    const auto best =
        std::max_element(votes.begin(), votes.end(),
                         [](const auto &a, const auto &b) { return a.second < b.second; });
    return best == votes.end() ? QString() : best->first;
}

int gapBetween(const QRect &left, const QRect &right)
{
    return right.left() - left.right() - 1;
}

} // namespace

void KnownGlyphs::learn(const std::vector<ReadPiece> &pieces)
{
    for (const ReadPiece &piece : pieces) {
        const auto &symbols = piece.symbols;
        for (std::size_t i = 0; i < symbols.size();) {
            const UnitText unit = unitAt(symbols, i);
            // What was named from here says nothing new.
            const bool isRead = unit.least != namedByShape && !symbols[i].isByLook;
            if (i > 0 && isRead && !symbols[i - 1].isByLook)
                m_gaps.learn(piece.metrics.capHeight,
                             {gapBetween(symbols[i - 1].unit, symbols[i].unit), symbols[i - 1].text,
                              symbols[i].text},
                             symbols[i].startsWord);
            if (isRead && !symbols[i].glyph.empty())
                learnGlyph(symbols, i, i + unit.count, piece.metrics);
            i += unit.count;
        }
    }
}

void KnownGlyphs::learnGlyph(const std::vector<InkSymbol> &symbols, std::size_t from,
                             std::size_t to, const LetterMetrics &metrics)
{
    const InkSymbol &first = symbols[from];
    const UnitText unit = unitAt(symbols, from);
    const QString text = unit.least >= sureOfGlyph ? unit.text : QString();
    Glyph *glyph = find(keyOf(first.unit, metrics), first.glyph, metrics.capHeight);
    if (glyph->places == 0) {
        glyph->unit = first.unit;
        glyph->metrics = metrics;
    }
    ++glyph->votes[text];
    glyph->confidence += unit.least;
    ++glyph->places;
    const bool isFirst = from == 0 || first.startsWord;
    const bool isLast = to == symbols.size() || symbols[to].startsWord;
    const QString before = isFirst ? QString() : symbols[from - 1].text;
    const QString after = isLast ? QString() : symbols[to].text;
    ++glyph->between[{before, after}][text];
    ++glyph->amid[{neighbourKind(before), neighbourKind(after)}][text];
}

KnownGlyphs::Glyph *KnownGlyphs::find(const QByteArray &key, const std::vector<std::uint8_t> &ink,
                                      double capHeight)
{
    if (const Glyph *glyph = std::as_const(*this).find(key, ink, capHeight))
        return const_cast<Glyph *>(glyph);
    std::vector<Glyph> &glyphs = m_glyphs[key];
    Glyph &added = glyphs.emplace_back();
    added.ink = ink;
    added.capHeight = capHeight;
    return &added;
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

bool KnownGlyphs::isWitnessed(const Glyph &glyph)
{
    const std::atomic_ref<std::uint8_t> witness(glyph.witness);
    if (witness == unasked)
        witness = showsText(glyphView(glyph.ink, glyph.unit, glyph.metrics), usualText(glyph.votes))
            ? agrees
            : disagrees;
    return witness == agrees;
}

std::optional<QString> KnownGlyphs::textOf(const Glyph &glyph)
{
    return agreed(glyph.votes, glyph.places == 1 && isWitnessed(glyph) ? 1 : leastVotes);
}

std::optional<QString> KnownGlyphs::textBetween(const Glyph &glyph, const QString &before,
                                                const QString &after)
{
    const auto exactly = glyph.between.find({before, after});
    if (exactly != glyph.between.end()) {
        if (const auto text = agreed(exactly->second, 1))
            return text;
    }
    const auto roughly = glyph.amid.find({neighbourKind(before), neighbourKind(after)});
    return roughly == glyph.amid.end() ? std::nullopt : agreed(roughly->second, leastAmid);
}

KnownGlyphs::Word KnownGlyphs::wordOf(const std::vector<Unit> &units) const
{
    Word word;
    std::vector<QString> texts;
    bool isKnown = true;
    for (const Unit &unit : units) {
        word.box |= unit.box;
        texts.push_back(unit.glyph ? textOf(*unit.glyph).value_or(QString()) : QString());
        isKnown = isKnown && unit.glyph;
    }
    const auto neighbour = [&](std::size_t i) {
        return texts[i].isEmpty() ? usualText(units[i].glyph->votes) : texts[i];
    };
    for (std::size_t i = 0; isKnown && i < units.size(); ++i) {
        if (!texts[i].isEmpty())
            continue;
        // One look of two characters, such as l and I: the characters beside it tell.
        const QString before = i > 0 ? neighbour(i - 1).right(1) : QString();
        const QString after = i + 1 < units.size() ? neighbour(i + 1).left(1) : QString();
        const bool isTold =
            (i == 0 || !before.isEmpty()) && (i + 1 == units.size() || !after.isEmpty());
        const auto text = isTold ? textBetween(*units[i].glyph, before, after) : std::nullopt;
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

std::optional<bool> KnownGlyphs::isBlank(const Unit &left, const Unit &right,
                                         double capHeight) const
{
    if (!left.glyph || !right.glyph)
        return std::nullopt;
    return m_gaps.isBlank(capHeight,
                          {gapBetween(left.box, right.box), usualText(left.glyph->votes).right(1),
                           usualText(right.glyph->votes).left(1)});
}

std::optional<std::vector<KnownGlyphs::Word>> KnownGlyphs::read(const InkMap &map,
                                                                const PageRun &run) const
{
    const auto limits = m_gaps.limits(run.metrics.capHeight);
    if (!limits)
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
        if (!word.empty()) {
            const int gap = gapBetween(word.back().box, unit.box);
            std::optional<bool> isBlankHere = gap >= limits->narrowestBlank;
            if (gap > limits->widestLetter && gap < limits->narrowestBlank)
                isBlankHere = isBlank(word.back(), unit, run.metrics.capHeight);
            isDoubtful = isDoubtful || !isBlankHere;
            if (isBlankHere.value_or(false))
                finish();
        }
        word.push_back(unit);
    }
    finish();
    return words;
}

} // namespace tovek
