// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

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
    /// One look.
    struct Glyph
    {
        std::vector<std::uint8_t> ink;
        double capHeight = 0;
        double confidence = 0; ///< the sum over all places where it was read
        int places = 0;
        Votes votes;
        std::map<std::pair<QString, QString>, Votes> between; ///< by the characters beside it
    };
    /// The gaps between letters, and those where words begin, of one size.
    struct Gaps
    {
        std::vector<int> letters, blanks;
    };
    struct Unit
    {
        QRect box;
        const Glyph *glyph = nullptr;
    };

    Glyph *find(const QByteArray &key, const std::vector<std::uint8_t> &ink, double capHeight);
    const Glyph *find(const QByteArray &key, const std::vector<std::uint8_t> &ink,
                      double capHeight) const;
    /// The widest gap between letters and the narrowest blank.
    std::optional<std::pair<int, int>> gapsOf(double capHeight) const;
    std::vector<Unit> unitsOf(const InkMap &ink, const PageRun &run) const;
    Word wordOf(const std::vector<Unit> &units) const;

    QHash<QByteArray, std::vector<Glyph>> m_glyphs;
    std::map<int, Gaps> m_gaps; ///< by quarters of the cap height
};

} // namespace tovek
