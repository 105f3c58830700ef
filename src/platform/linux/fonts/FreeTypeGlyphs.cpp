// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/fonts/FreeTypeGlyphs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ft2build.h>
#include <map>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace tovek {

namespace {

/// The usual filter of subpixel text, in 256ths over five subpixels.
constexpr std::array<int, 5> lcdFilter{8, 77, 86, 77, 8};
constexpr int subpixels = 3;

FT_Int32 loadFlags(const GlyphStyle &style)
{
    switch (style.hinting) {
    case Hinting::none:
        return FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP;
    case Hinting::light:
        return FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP;
    case Hinting::full:
        return (style.isSubpixel ? FT_LOAD_TARGET_LCD : FT_LOAD_TARGET_NORMAL) | FT_LOAD_NO_BITMAP;
    case Hinting::mono:
        return FT_LOAD_TARGET_MONO | (style.size > 0 ? FT_LOAD_NO_BITMAP : 0);
    }
    return FT_LOAD_DEFAULT;
}

Glyph glyphIn(const FT_GlyphSlot slot)
{
    const FT_Bitmap &bitmap = slot->bitmap;
    Glyph glyph{{slot->bitmap_left, -slot->bitmap_top, int(bitmap.width), int(bitmap.rows)}, {}};
    glyph.ink.reserve(std::size_t(bitmap.width) * bitmap.rows);
    for (int y = 0; y < int(bitmap.rows); ++y) {
        const unsigned char *row = bitmap.buffer + std::ptrdiff_t(y) * bitmap.pitch;
        for (int x = 0; x < int(bitmap.width); ++x)
            glyph.ink.push_back(bitmap.pixel_mode == FT_PIXEL_MODE_MONO
                                    ? (row[x / 8] & (0x80 >> (x % 8)) ? 255 : 0)
                                    : row[x]);
    }
    return glyph;
}

/// What is three times as wide as it should be, filtered and brought to its width: the mean of
/// the three colours that subpixel text has.
Glyph ofSubpixels(const Glyph &wide)
{
    const int reach = int(lcdFilter.size()) / 2 + subpixels - 1;
    const int left = int(std::floor((wide.box.left() - reach) / double(subpixels)));
    const int right = int(std::floor((wide.box.right() + reach) / double(subpixels)));
    Glyph glyph{{left, wide.box.top(), right - left + 1, wide.box.height()}, {}};
    for (int y = wide.box.top(); y <= wide.box.bottom(); ++y) {
        for (int x = left; x <= right; ++x) {
            int sum = 0;
            for (int part = 0; part < subpixels; ++part) {
                for (int tap = 0; tap < int(lcdFilter.size()); ++tap) {
                    const int from = x * subpixels + part + tap - int(lcdFilter.size()) / 2;
                    if (from >= wide.box.left() && from <= wide.box.right())
                        sum += lcdFilter[std::size_t(tap)] * wide.at(from, y);
                }
            }
            glyph.ink.push_back(std::uint8_t(std::min(255, sum / (256 * subpixels))));
        }
    }
    return glyph;
}

/// Drawn a second time a pixel further on, as terminals make up a bold bitmap font.
Glyph smeared(const Glyph &glyph)
{
    Glyph bold{glyph.box.adjusted(0, 0, 1, 0), {}};
    for (int y = bold.box.top(); y <= bold.box.bottom(); ++y) {
        for (int x = bold.box.left(); x <= bold.box.right(); ++x) {
            const int here = x <= glyph.box.right() ? glyph.at(x, y) : 0;
            const int before = x > glyph.box.left() ? glyph.at(x - 1, y) : 0;
            bold.ink.push_back(std::uint8_t(std::max(here, before)));
        }
    }
    return bold;
}

/// As the font library's users make up a bold outline: stronger by a 24th of the em.
void embolden(FT_GlyphSlot slot, FT_Face face)
{
    FT_Outline_Embolden(&slot->outline,
                        FT_MulFix(face->units_per_EM, face->size->metrics.y_scale) / 24);
}

} // namespace

/// The library and the faces that are open in it.
struct FreeTypeGlyphs::Faces
{
    struct Open
    {
        FT_Face face = nullptr;
        double size = -1;
    };
    FT_Library library = nullptr;
    std::map<std::pair<QByteArray, int>, Open> open;

    Faces()
    {
        if (FT_Init_FreeType(&library) != 0)
            library = nullptr;
    }
    ~Faces()
    {
        for (auto &[file, face] : open)
            FT_Done_Face(face.face);
        if (library)
            FT_Done_FreeType(library);
    }
    Faces(const Faces &) = delete;
    Faces &operator=(const Faces &) = delete;

    /// In the given size; null when it cannot be opened.
    FT_Face faceOf(const FaceFile &file, double size)
    {
        if (!library || file.path.isEmpty())
            return nullptr;
        Open &entry = open[{file.path, file.index}];
        if (!entry.face
            && FT_New_Face(library, file.path.constData(), file.index, &entry.face) != 0)
            entry.face = nullptr;
        // Plain ASCII is no encoding that the library would choose by itself.
        if (entry.face && !entry.face->charmap && entry.face->num_charmaps > 0)
            FT_Set_Charmap(entry.face, entry.face->charmaps[0]);
        if (entry.face && entry.size != size) {
            const int error = size > 0
                ? FT_Set_Char_Size(entry.face, 0, FT_F26Dot6(std::lround(size * 64)), 72, 72)
                : FT_Select_Size(entry.face, 0);
            if (error != 0)
                return nullptr;
            entry.size = size;
        }
        return entry.face;
    }
};

FreeTypeGlyphs::FreeTypeGlyphs() = default;
FreeTypeGlyphs::~FreeTypeGlyphs() = default;

const std::vector<FixedFont> &FreeTypeGlyphs::fonts()
{
    if (!m_faces)
        list();
    return m_fonts;
}

void FreeTypeGlyphs::list()
{
    m_faces = std::make_unique<Faces>();
    for (FontFiles &files : coreFonts())
        m_files.push_back(std::move(files));
    for (FontFiles &files : configuredFonts()) {
        const FT_Face face = m_faces->faceOf(files.own, files.font.isBitmap ? 0 : 16);
        if (!face || FT_Load_Char(face, 'x', FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP) != 0)
            continue;
        files.font.advance = files.font.isBitmap
            ? double(face->glyph->advance.x) / 64
            : double(face->glyph->linearHoriAdvance) / 65536 / 16;
        m_files.push_back(std::move(files));
    }
    for (const FontFiles &files : m_files)
        m_fonts.push_back(files.font);
}

std::optional<Glyph> FreeTypeGlyphs::glyph(std::size_t font, const GlyphStyle &style,
                                           FontFace wanted, char32_t character)
{
    if (font >= fonts().size())
        return std::nullopt;
    const FontFiles &files = m_files[font];
    const bool isMadeUp = wanted == FontFace::bold && files.bold.path.isEmpty();
    const FaceFile &file = wanted == FontFace::italic ? files.italic
        : wanted == FontFace::bold && !isMadeUp       ? files.bold
                                                      : files.own;
    const FT_Face face = m_faces->faceOf(file, style.size);
    const FT_UInt index = face ? FT_Get_Char_Index(face, character) : 0;
    if (index == 0 || FT_Load_Glyph(face, index, loadFlags(style)) != 0)
        return std::nullopt;
    const FT_GlyphSlot slot = face->glyph;
    if (slot->format == FT_GLYPH_FORMAT_OUTLINE) {
        if (isMadeUp)
            embolden(slot, face);
        const FT_Matrix wide{subpixels * 0x10000L, 0, 0, 0x10000L};
        if (style.isSubpixel)
            FT_Outline_Transform(&slot->outline, &wide);
        if (FT_Render_Glyph(
                slot, style.hinting == Hinting::mono ? FT_RENDER_MODE_MONO : FT_RENDER_MODE_NORMAL)
            != 0)
            return std::nullopt;
        const Glyph drawn = glyphIn(slot);
        return style.isSubpixel && !drawn.isEmpty() ? ofSubpixels(drawn) : drawn;
    }
    const Glyph drawn = glyphIn(slot);
    return isMadeUp && !drawn.isEmpty() ? smeared(drawn) : drawn;
}

void FreeTypeGlyphs::letGo()
{
    m_faces = nullptr;
    m_files.clear();
    m_files.shrink_to_fit();
    m_fonts.clear();
    m_fonts.shrink_to_fit();
}

} // namespace tovek
