// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/fonts/Glyph.h"

#include <QString>

#include <optional>

namespace tovek {

enum class Hinting : std::uint8_t { none, light, full, mono };

/// How a program draws the glyphs of a font.
struct GlyphStyle
{
    double size = 0; ///< pixels an em; a bitmap font has one size, and this is 0
    Hinting hinting = Hinting::mono;
    bool isSubpixel = false; ///< spread over a screen's subpixels, taken together again

    bool operator==(const GlyphStyle &) const = default;
};

/// An installed font whose characters are equally wide.
struct FixedFont
{
    QString name; ///< tells it from all others
    bool isBitmap = false;
    double advance = 0; ///< of a character: pixels in a bitmap font, else ems

    bool operator==(const FixedFont &) const = default;
};

/// Which of a family's faces: a family without a bold one gets it as desktops make it up, from
/// its regular one.
enum class FontFace : std::uint8_t { own, bold, italic };

/// The glyphs of the fonts that are installed. One thread at a time.
class GlyphSource
{
public:
    virtual ~GlyphSource() = default;
    /// The likeliest first: the desktop's own fixed font, regular faces before bold ones.
    virtual const std::vector<FixedFont> &fonts() = 0;
    /// `font` as an index of fonts(); the box from the pen's place on the baseline. Nothing when
    /// the font has no such glyph or face; empty for a blank.
    virtual std::optional<Glyph> glyph(std::size_t font, const GlyphStyle &style, FontFace face,
                                       char32_t character) = 0;
    /// Lets go of the files and of all memory. What is asked for later is opened again.
    virtual void letGo() = 0;
};

} // namespace tovek
