// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

#include <cstdint>
#include <vector>

namespace tovek {

enum class Surface : std::uint8_t { other, background, rule };

/// A picture divided into flat areas: backgrounds and rules are told from the rest, which may be
/// ink. A background is wider than any stroke, or a plate: a small flat area such as a badge or a
/// button that has something written in its middle.
class Surfaces
{
public:
    /// In 32 bits a pixel; must outlive this.
    explicit Surfaces(const QImage &image);

    Surface at(int x, int y) const { return m_kinds[areaAt(x, y)]; }
    /// The number of the flat area that the pixel belongs to.
    std::uint32_t areaAt(int x, int y) const
    {
        return m_areaNumbers[std::size_t(y) * m_image.width() + x];
    }

    /// A background and the pixels that it reaches to.
    struct Background
    {
        std::uint32_t area = 0;
        QRect box;
    };
    const std::vector<Background> &backgrounds() const { return m_backgrounds; }

private:
    std::uint32_t label();
    void measure(std::uint32_t areas);
    bool isPlate(std::uint32_t number, QRgb color, const QRect &box) const;

    const QImage &m_image;
    std::vector<std::uint32_t> m_areaNumbers;
    std::vector<Surface> m_kinds; ///< one an area
    std::vector<Background> m_backgrounds;
};

} // namespace tovek
