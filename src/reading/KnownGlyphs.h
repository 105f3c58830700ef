// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/KnownGaps.h"
#include "reading/PageReading.h"

#include <QByteArray>
#include <QHash>

#include <map>
#include <optional>

namespace tovek {

/// The characters of a page by their looks. A screen draws the same character in the same font
/// with the same pixels, so that of a large page an engine needs to read only a part: what looks
/// like what it has read, and is sure of, is the same. Constant between calls of `learn`.
class KnownGlyphs
{
public:
    /// What an engine read in a run, beside what was known in it.
    void learn(const std::vector<ReadPiece> &pieces);

    /// A stretch of a run from one blank to another.
    struct Word
    {
        QRect box;
        std::vector<InkSymbol> symbols; ///< empty where something in it is not known
    };
    /// The run's words; nothing where its blanks cannot be told.
    std::optional<std::vector<Word>> read(const InkMap &map, const PageRun &run) const;

private:
    using Votes = std::map<QString, int>;
    enum Witness : std::uint8_t { unasked, agrees, disagrees };
    /// One look.
    struct Glyph
    {
        std::vector<std::uint8_t> ink;
        double capHeight = 0;
        double confidence = 0; ///< the sum over all places where it was read
        int places = 0;
        QRect unit{}; ///< where it was read first
        LetterMetrics metrics{};
        /// Whether the network sees in it what was read there; asked for when it is needed first,
        /// by whichever thread.
        mutable std::uint8_t witness = unasked;
        Votes votes;
        std::map<std::pair<QString, QString>, Votes> between; ///< by the characters beside it
        std::map<std::pair<int, int>, Votes> amid; ///< by their kinds
    };
    struct Unit
    {
        QRect box;
        const Glyph *glyph = nullptr;
    };

    Glyph *find(const QByteArray &key, const std::vector<std::uint8_t> &ink, double capHeight);
    const Glyph *find(const QByteArray &key, const std::vector<std::uint8_t> &ink,
                      double capHeight) const;
    std::vector<Unit> unitsOf(const InkMap &ink, const PageRun &run) const;
    /// What a look is, wherever it stands; or beside these characters.
    static std::optional<QString> textOf(const Glyph &glyph);
    static bool isWitnessed(const Glyph &glyph);
    static std::optional<QString> textBetween(const Glyph &glyph, const QString &before,
                                              const QString &after);
    std::optional<bool> isBlank(const Unit &left, const Unit &right, double capHeight) const;
    void learnGlyph(const std::vector<InkSymbol> &symbols, std::size_t from, std::size_t to,
                    const LetterMetrics &metrics);
    Word wordOf(const std::vector<Unit> &units) const;

    QHash<QByteArray, std::vector<Glyph>> m_glyphs;
    KnownGaps m_gaps;
};

} // namespace tovek
