// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/fonts/LookNames.h"

#include <algorithm>
#include <cmath>

namespace tovek {

namespace {

constexpr char16_t firstCharacter = u'!'; ///< that the network knows
/// Votes for what was never read, so that nothing is impossible; the same for the network.
constexpr double unreadVotes = 0.02;
constexpr double unseenLook = 0.001;
/// Cells that the engine passes over hold a character only where the network is so sure.
constexpr double surelySeen = 0.8;
/// A look with fewer cells is too rare to be told from a bold or touched one of its namesake.
constexpr int leastCellsOfOwn = 4;
/// Of their scores: what one look must have more than another to bear its name with more right.
constexpr double moreRight = 0.5;
/// A name that nobody bears must be seen so well, or read so often; the first of the two where the
/// look's own name was not even read in most cells.
constexpr double likelySeen = 0.3;
constexpr double mostlySeen = 0.5;
constexpr double oftenRead = 0.3;

struct NameGuess
{
    QString name;
    double share = 0; ///< of the engine's readings
    double seen = 0; ///< by the network
    double score = 0;
};

double seenAs(const CellLook &look, const QString &name)
{
    if (name.size() != 1)
        return 0;
    const char16_t c = name.at(0).unicode();
    if (c >= firstCharacter && c < firstCharacter + GlyphNet::characters)
        return look.seen[std::size_t(c - firstCharacter)];
    // Signs beyond ASCII are rarer than letters, and look like anything to an engine.
    const double other = look.seen[GlyphNet::otherLetter];
    return name.at(0).isLetter() ? other : other / 10;
}

/// The likeliest first. The network is asked with less weight: it sees one cell only.
std::vector<NameGuess> guessesFor(const CellLook &look)
{
    double all = unreadVotes;
    for (const auto &[name, votes] : look.votes)
        all += votes;
    std::map<QString, double> names = look.votes;
    names.erase(QString());
    for (char16_t c = firstCharacter; c < firstCharacter + GlyphNet::characters; ++c)
        names.try_emplace(QChar(c), 0);
    std::vector<NameGuess> guesses;
    for (const auto &[name, votes] : names) {
        const double share = (votes + unreadVotes) / all;
        const double seen = seenAs(look, name);
        guesses.push_back(
            {name, share, seen, std::log(share) + std::log(std::max(seen, unseenLook)) / 2});
    }
    std::sort(guesses.begin(), guesses.end(),
              [](const NameGuess &a, const NameGuess &b) { return a.score > b.score; });
    return guesses;
}

bool isEmpty(const CellLook &look, const NameGuess &best)
{
    double all = 0;
    for (const auto &[name, votes] : look.votes)
        all += votes;
    const auto passedOver = look.votes.find(QString());
    return passedOver != look.votes.end() && passedOver->second * 2 > all && best.seen < surelySeen;
}

using Owners = std::map<QString, double>; ///< the best score of a name

/// What the look is called when another has its name; null where it keeps it.
const NameGuess *freeName(const std::vector<NameGuess> &guesses, const Owners &owners)
{
    const NameGuess &own = guesses.front();
    const bool isTaken = owners.at(own.name) >= own.score + moreRight;
    if (!isTaken && own.share > mostlySeen)
        return nullptr;
    const double least = std::max(isTaken ? likelySeen : mostlySeen, own.seen);
    for (const NameGuess &other : guesses) {
        // Case is told by the height, which the network sees badly in small text.
        if (other.name.toLower() == own.name.toLower())
            continue;
        const bool isRead = isTaken && other.share > std::max(oftenRead, own.share);
        if ((other.seen > least || isRead) && !owners.contains(other.name))
            return &other;
    }
    return nullptr;
}

} // namespace

std::vector<QString> namesOf(const std::vector<CellLook> &looks)
{
    std::vector<QString> names;
    std::vector<std::vector<NameGuess>> guesses;
    Owners owners;
    for (const CellLook &look : looks) {
        guesses.push_back(guessesFor(look));
        const NameGuess &best = guesses.back().front();
        names.push_back(isEmpty(look, best) ? QString() : best.name);
        if (names.back().isEmpty())
            continue;
        double &score = owners.try_emplace(best.name, best.score).first->second;
        score = std::max(score, best.score);
    }
    for (std::size_t i = 0; i < looks.size(); ++i) {
        if (names[i].isEmpty() || looks[i].cells < leastCellsOfOwn)
            continue;
        if (const NameGuess *other = freeName(guesses[i], owners)) {
            names[i] = other->name;
            owners[other->name] = other->score;
        }
    }
    return names;
}

} // namespace tovek
