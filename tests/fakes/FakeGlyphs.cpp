// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeGlyphs.h"

#include <random>

namespace tovek {

namespace {

constexpr int stem = 1;
constexpr int longestBar = 4;

/// Capitals and digits are seven rows high, small letters five, some of them with a descender;
/// marks are short.
QRect boxOf(char32_t character)
{
    const bool isSmall = character >= U'a' && character <= U'z';
    const bool isDescending =
        isSmall && (character == U'g' || character == U'p' || character == U'q');
    const bool isMark = character < U'0';
    const int top = isMark ? -3 : isSmall ? -5 : -7;
    return QRect(QPoint(stem, top), QPoint(stem + longestBar, isDescending ? 1 : -1));
}

std::optional<Glyph> drawn(int font, FontFace face, char32_t character)
{
    const bool hasAccent = character == 0xe9;
    if (hasAccent)
        character = U'e';
    if (character < 0x21 || character > 0x7e || face == FontFace::italic)
        return std::nullopt;
    Glyph glyph{boxOf(character), {}};
    std::mt19937 random(unsigned(font) * 1000 + unsigned(character));
    for (int y = glyph.box.top(); y <= glyph.box.bottom(); ++y) {
        const int bar = int(random() % (longestBar + 1));
        for (int x = stem; x <= stem + longestBar; ++x)
            glyph.ink.push_back(x <= stem + bar ? 255 : 0);
    }
    if (hasAccent) {
        glyph.box.setTop(glyph.box.top() - 2);
        glyph.ink.insert(glyph.ink.begin(), 2 * std::size_t(glyph.box.width()), 0);
        glyph.ink[2] = 255;
    }
    if (face == FontFace::bold) {
        // A second stem before the first.
        Glyph bold{glyph.box.adjusted(-1, 0, 0, 0), {}};
        for (int y = bold.box.top(); y <= bold.box.bottom(); ++y) {
            for (int x = bold.box.left(); x <= bold.box.right(); ++x)
                bold.ink.push_back(x < stem ? 255 : glyph.at(x, y));
        }
        return bold;
    }
    return glyph;
}

} // namespace

FakeGlyphs::FakeGlyphs(std::vector<int> installed) : m_numbers(std::move(installed))
{
    for (const int number : m_numbers)
        m_fonts.push_back({QStringLiteral("font %1").arg(number), true, cellWidth});
}

std::optional<Glyph> FakeGlyphs::glyph(std::size_t font, const GlyphStyle &, FontFace face,
                                       char32_t character)
{
    ++glyphsDrawn;
    return drawn(m_numbers.at(font), face, character);
}

void writeText(QImage &image, QPoint leftBaseline, const QString &text, int font,
               const FakeInk &ink)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QPoint pen = leftBaseline + QPoint(int(i) * FakeGlyphs::cellWidth, 0);
        const auto glyph = drawn(font, ink.face, text[i].unicode());
        for (int y = -FakeGlyphs::rowPitch + 3; y < 3; ++y) {
            for (int x = 0; x < FakeGlyphs::cellWidth; ++x) {
                const bool isInk = (glyph && glyph->box.contains(x, y) && glyph->at(x, y) > 0)
                    || (ink.isUnderlined && y == 1);
                if (image.rect().contains(pen + QPoint(x, y)))
                    image.setPixelColor(pen + QPoint(x, y), isInk ? ink.ink : ink.paper);
            }
        }
    }
}

} // namespace tovek
