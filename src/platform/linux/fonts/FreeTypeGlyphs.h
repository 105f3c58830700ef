// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/fonts/FontFiles.h"

#include <memory>

namespace tovek {

/// Draws the glyphs of the desktop's fonts as its programs draw them.
class FreeTypeGlyphs : public GlyphSource
{
public:
    FreeTypeGlyphs();
    ~FreeTypeGlyphs() override;
    FreeTypeGlyphs(const FreeTypeGlyphs &) = delete;
    FreeTypeGlyphs &operator=(const FreeTypeGlyphs &) = delete;

    const std::vector<FixedFont> &fonts() override;
    std::optional<Glyph> glyph(std::size_t font, const GlyphStyle &style, FontFace face,
                               char32_t character) override;
    void letGo() override;

private:
    struct Faces;
    void list();

    std::unique_ptr<Faces> m_faces; ///< null when nothing is open
    std::vector<FontFiles> m_files; ///< one a font
    std::vector<FixedFont> m_fonts;
};

} // namespace tovek
