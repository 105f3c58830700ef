// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/RunReading.h"

#include <QByteArray>
#include <QHash>

namespace tovek {

class GlyphNet;

/// Finds icons, arrows and grips among what was read, with the help of a network. One page; it
/// remembers what it has seen there.
class PictureGlyphs
{
public:
    /// The net must outlive it.
    explicit PictureGlyphs(const GlyphNet &net) : m_net(net) { }

    /// Erases short words that are pictures, and an icon that was read into the label behind or
    /// before it. The symbols of one run, with their glyphs, their words begun.
    void erase(std::vector<InkSymbol> &symbols, const LetterMetrics &metrics);

private:
    /// How sure it is that a unit is a picture, and that it is the character that was read.
    struct View
    {
        float picture = 0;
        float character = 0;
    };
    View viewOf(const InkSymbol &symbol, const LetterMetrics &metrics);
    bool isPicture(const std::vector<InkSymbol> &symbols, std::size_t from, std::size_t to,
                   const LetterMetrics &metrics);
    bool isIcon(const InkSymbol &symbol, const LetterMetrics &metrics);

    const GlyphNet &m_net;
    QHash<QByteArray, View> m_seen;
};

} // namespace tovek
