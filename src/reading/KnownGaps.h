// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <map>
#include <optional>

namespace tovek {

/// Which gaps of a page stand between letters and which between words, in pixels, as an engine
/// read them in letters of about the same size.
class KnownGaps
{
public:
    struct Gap
    {
        int width = 0;
        QString before; ///< the character on its left, and that on its right
        QString after;
    };
    void learn(double capHeight, const Gap &gap, bool isBlank);

    struct Limits
    {
        int widestLetter = 0;
        int narrowestBlank = 0; ///< wider; what lies between them may be either
    };
    /// Nothing where the two cannot be told apart, or too few were met.
    std::optional<Limits> limits(double capHeight) const;
    /// What a gap is, whatever its width says, by those between the same characters.
    std::optional<bool> isBlank(double capHeight, const Gap &gap) const;

private:
    struct Counts
    {
        int letters = 0;
        int blanks = 0;

        void add(const Counts &other);
    };
    struct Width
    {
        Counts all;
        std::map<std::pair<QString, QString>, Counts> between; ///< by the characters beside it
    };
    using Widths = std::map<int, Width>;
    template <typename Use>
    void forSize(double capHeight, Use use) const;

    std::map<int, Widths> m_widths; ///< by quarters of the cap height
};

} // namespace tovek
