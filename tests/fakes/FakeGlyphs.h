// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/fonts/GlyphSource.h"

#include <QColor>
#include <QImage>

namespace tovek {

/// Bitmap fonts that are installed nowhere: each character of ASCII, and the e with an accent,
/// is a stem with bars of its own. Fonts differ by their number only.
class FakeGlyphs : public GlyphSource
{
public:
    static constexpr int cellWidth = 7;
    static constexpr int rowPitch = 12;

    /// `installed` are the numbers of the fonts that there are.
    explicit FakeGlyphs(std::vector<int> installed);

    const std::vector<FixedFont> &fonts() override { return m_fonts; }
    std::optional<Glyph> glyph(std::size_t font, const GlyphStyle &style, FontFace face,
                               char32_t character) override;
    void letGo() override { ++timesLetGo; }

    int glyphsDrawn = 0;
    int timesLetGo = 0;

private:
    std::vector<int> m_numbers;
    std::vector<FixedFont> m_fonts;
};

/// How text is written on a picture.
struct FakeInk
{
    QColor paper = Qt::white;
    QColor ink = Qt::black;
    FontFace face = FontFace::own;
    bool isUnderlined = false;
};

/// Writes one line in the cells from `left` on with the font of that number.
void writeText(QImage &image, QPoint leftBaseline, const QString &text, int font,
               const FakeInk &ink = {});

} // namespace tovek
