// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/GlyphNet.h"

#include <QFont>
#include <QImage>
#include <QStringList>

#include <random>

namespace tovek {

struct GlyphSample
{
    GlyphNet::Glyph glyph;
    int kind = 0;
};

/// Draws lines of text in the installed fonts with the installed icons among them, looks at them
/// as the recogniser does, and says what each glyph shows. The same seed gives the same samples
/// where the same fonts and icons are installed.
class GlyphSamples
{
public:
    GlyphSamples(unsigned seed, const QString &iconFolder);

    const QStringList &families() const { return m_families; }
    qsizetype icons() const { return m_icons.size(); }
    std::vector<GlyphSample> take(std::size_t count);

private:
    struct Item
    {
        QRectF box;
        int kind = 0;
    };
    int number(int below);
    bool chance(double share);
    QFont font();
    char32_t character();
    QImage icon(int size);
    QImage control(int size, QColor color);
    void drawLine(QPainter &painter, int y, int width, const QFont &font, QColor color);
    void addSamples(const QImage &image, std::vector<GlyphSample> &samples);

    std::mt19937 m_random;
    QStringList m_families;
    QStringList m_icons;
    std::vector<Item> m_items; ///< on the picture that is being drawn
};

} // namespace tovek
