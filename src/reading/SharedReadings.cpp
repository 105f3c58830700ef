// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/SharedReadings.h"

#include "reading/Scripts.h"
#include "reading/TextRuns.h"

#include <QHash>

#include <algorithm>
#include <cmath>
#include <map>

namespace tovek {

namespace {

/// Of 255; the same pixel of the same glyph differs by less, whatever the colours.
constexpr int mostDifference = 28;
/// A reading is right where it has so many times the votes of another.
constexpr double clearMajority = 1.5;
/// Characters that many fonts draw alike: the words around them tell more than a vote.
constexpr double clearAmongAlike = 6.0;
constexpr double leastSharedVotes = 1.5;
constexpr double doubtful = 0.3;

/// A unit in a picture's pieces: its first symbol and how many there are.
struct Unit
{
    std::size_t piece = 0;
    std::size_t first = 0;
    std::size_t count = 0;
};

struct Cluster
{
    const std::vector<std::uint8_t> *ink = nullptr; ///< of its first member
    double capHeight = 0;
    std::vector<Unit> members;
};

std::vector<Unit> unitsOf(const std::vector<InkSymbol> &symbols, std::size_t piece)
{
    std::vector<Unit> units;
    for (std::size_t i = 0; i < symbols.size(); ++i) {
        if (i > 0 && symbols[i].unit == symbols[i - 1].unit)
            ++units.back().count;
        else
            units.push_back({piece, i, 1});
    }
    return units;
}

QString textOf(const std::vector<InkSymbol> &symbols, const Unit &unit)
{
    QString text;
    for (std::size_t i = 0; i < unit.count; ++i)
        text += symbols[unit.first + i].text;
    return text;
}

double confidenceOf(const std::vector<InkSymbol> &symbols, const Unit &unit)
{
    double sum = 0;
    for (std::size_t i = 0; i < unit.count; ++i)
        sum += symbols[unit.first + i].confidence;
    return sum / double(unit.count);
}

/// A reading counts for less where something beside it was passed over or shares its ink: it may
/// belong to the neighbour.
double weightOf(const std::vector<InkSymbol> &symbols, const Unit &unit)
{
    const std::size_t from = unit.first > 2 ? unit.first - 2 : 0;
    const std::size_t to = std::min(unit.first + unit.count + 2, symbols.size());
    const bool isDoubtful = std::any_of(
        symbols.begin() + std::ptrdiff_t(from), symbols.begin() + std::ptrdiff_t(to),
        [](const InkSymbol &symbol) { return symbol.text.isEmpty() || symbol.shared > 1; });
    const double confidence = confidenceOf(symbols, unit) / 100;
    return confidence * confidence * (isDoubtful ? doubtful : 1);
}

/// The new reading of each unit that has one.
using Corrections = QHash<std::pair<std::size_t, std::size_t>, QString>;

void vote(const Cluster &cluster, const std::vector<ReadPiece> &pieces, Corrections &corrections)
{
    std::map<QString, double> votes;
    for (const Unit &unit : cluster.members) {
        votes[textOf(pieces[unit.piece].symbols, unit)] +=
            weightOf(pieces[unit.piece].symbols, unit);
    }
    const auto best =
        std::max_element(votes.begin(), votes.end(),
                         [](const auto &a, const auto &b) { return a.second < b.second; });
    if (best->first.isEmpty() || best->second < leastSharedVotes)
        return;
    static const QString bars = QStringLiteral("lI|");
    for (const Unit &unit : cluster.members) {
        const QString text = textOf(pieces[unit.piece].symbols, unit);
        if (bars.contains(text) && bars.contains(best->first) && !text.isEmpty())
            continue;
        // One shape in two scripts: only the word tells.
        if (isSameShape(text, best->first))
            continue;
        const double needed = isAlike(text, best->first) ? clearAmongAlike : clearMajority;
        if (text != best->first && best->second >= votes[text] * needed)
            corrections.insert({unit.piece, unit.first}, best->first);
    }
}

std::vector<InkSymbol> corrected(const std::vector<InkSymbol> &symbols, std::size_t piece,
                                 const Corrections &corrections)
{
    std::vector<InkSymbol> result;
    for (const Unit &unit : unitsOf(symbols, piece)) {
        const auto found = corrections.find({piece, unit.first});
        if (found == corrections.end()) {
            for (std::size_t i = 0; i < unit.count; ++i)
                result.push_back(symbols[unit.first + i]);
            continue;
        }
        const InkSymbol &first = symbols[unit.first];
        const int count = int(found->size());
        for (int i = 0; i < count; ++i) {
            InkSymbol symbol;
            symbol.text = found->mid(i, 1);
            symbol.unit = first.unit;
            symbol.box = sliceOf(first.unit, i, count);
            symbol.confidence = std::max(50.0, confidenceOf(symbols, unit));
            symbol.startsWord = i == 0 && first.startsWord;
            symbol.shared = count;
            result.push_back(symbol);
        }
    }
    // A word break that stands at something unread belongs to what follows.
    for (std::size_t i = 0; i + 1 < result.size(); ++i) {
        if (result[i].text.isEmpty() && result[i].startsWord)
            result[i + 1].startsWord = true;
    }
    std::erase_if(result, [](const InkSymbol &symbol) { return symbol.text.isEmpty(); });
    return result;
}

} // namespace

bool isAlike(const QString &a, const QString &b)
{
    static const QStringList groups{QStringLiteral("lI|1i"), QStringLiteral("0Oo"),
                                    QStringLiteral("'`,"), QStringLiteral("-_~\u2014")};
    return std::any_of(groups.begin(), groups.end(), [&](const QString &group) {
        return group.contains(a) && group.contains(b);
    });
}

bool looksLike(const std::vector<std::uint8_t> &a, const std::vector<std::uint8_t> &b)
{
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::abs(a[i] - b[i]) > mostDifference)
            return false;
    }
    return a.size() == b.size();
}

void takeGlyphs(std::vector<InkSymbol> &symbols, const InkMap &ink, const TextRun &run)
{
    for (const Unit &unit : unitsOf(symbols, 0)) {
        InkSymbol &first = symbols[unit.first];
        const QRect box = first.unit.translated(-run.box.topLeft());
        if (box.isEmpty() || !QRect(QPoint(0, 0), ink.size).contains(box))
            continue;
        first.glyph.reserve(std::size_t(box.width()) * box.height());
        for (int y = box.top(); y <= box.bottom(); ++y)
            first.glyph.insert(first.glyph.end(), ink.row(y) + box.left(),
                               ink.row(y) + box.right() + 1);
    }
}

void shareReadings(std::vector<ReadPiece> &pieces)
{
    QHash<QByteArray, std::vector<Cluster>> shapes;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const LetterMetrics &metrics = pieces[i].metrics;
        const double cap = metrics.capHeight;
        for (const Unit &unit : unitsOf(pieces[i].symbols, i)) {
            const InkSymbol &first = pieces[i].symbols[unit.first];
            if (first.glyph.empty())
                continue;
            const int above = int(std::lround(metrics.baseline)) - first.unit.bottom();
            const QByteArray key = QByteArray::number(first.unit.width()) + ' '
                + QByteArray::number(first.unit.height()) + ' ' + QByteArray::number(above);
            std::vector<Cluster> &clusters = shapes[key];
            auto found = std::find_if(clusters.begin(), clusters.end(), [&](const Cluster &one) {
                return std::abs(one.capHeight - cap) <= cap * sameFont
                    && looksLike(*one.ink, first.glyph);
            });
            if (found == clusters.end())
                found = clusters.insert(clusters.end(), {&first.glyph, cap, {}});
            found->members.push_back(unit);
        }
    }
    Corrections corrections;
    for (const std::vector<Cluster> &clusters : std::as_const(shapes)) {
        for (const Cluster &cluster : clusters)
            vote(cluster, pieces, corrections);
    }
    for (std::size_t i = 0; i < pieces.size(); ++i)
        pieces[i].symbols = corrected(pieces[i].symbols, i, corrections);
}

} // namespace tovek
