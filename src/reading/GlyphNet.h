// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tovek {

/// One layer of the network: `outputs` sums over `inputs` values each.
struct GlyphLayer
{
    int inputs = 0;
    int outputs = 0;
    std::vector<float> weights; ///< those of the first input for all outputs, then the next
    std::vector<float> biases;
};

/// A small network that has seen the characters of many fonts and the icons of many desktops, and
/// says what a glyph shows.
class GlyphNet
{
public:
    static constexpr int side = 28;
    /// A glyph with its capital's height scaled to 14 rows, standing on row 20, in the middle.
    struct Glyph
    {
        std::array<std::uint8_t, std::size_t(side) * side> ink{};
        /// The small letters' height and the glyph's width in cap heights; 1 / cap height.
        std::array<float, 3> shape{};
    };

    // What it can say: the printable characters of ASCII from '!' on, then these.
    static constexpr int characters = 94;
    static constexpr int otherLetter = 94;
    static constexpr int severalLetters = 95;
    static constexpr int picture = 96;
    static constexpr int kinds = 97;
    using Answer = std::array<float, kinds>; ///< probabilities

    /// What passes from layer to layer.
    struct Trace
    {
        std::vector<float> input, first, second, secondPool, third, thirdPool, hidden, out;
    };
    static constexpr int layerCount = 5;
    using Layers = std::array<GlyphLayer, layerCount>;

    /// With all weights 0.
    static Layers emptyLayers();
    /// Nothing when the bytes are not as written by `bytesOf`.
    static std::optional<Layers> layersFrom(std::span<const std::uint8_t> bytes);
    /// A byte a weight.
    static std::vector<std::uint8_t> bytesOf(const Layers &layers);

    explicit GlyphNet(Layers layers) : m_layers(std::move(layers)) { }
    /// Trained by scripts/train-glyphs, and built into the program.
    static const GlyphNet &trained();

    Answer classify(const Glyph &glyph) const;
    /// The same, with all that lies between; for training.
    Answer classify(const Glyph &glyph, Trace &trace) const;
    Layers &layers() { return m_layers; }

private:
    Layers m_layers;
};

} // namespace tovek
