// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/GlyphNet.h"

#include <QFile>

#include <algorithm>
#include <cmath>
#include <cstring>

// The resources lie in a static library: without this call the linker would leave them out.
static void initGlyphNetResource()
{
    Q_INIT_RESOURCE(tovek);
}

namespace tovek {

namespace {

/// Sides and depths of what passes from layer to layer.
constexpr int firstSide = 14, firstDepth = 16;
constexpr int secondDepth = 24, secondPoolSide = 7;
constexpr int thirdDepth = 40, thirdPoolSide = 3;
constexpr int shapes = 3;
constexpr int flat = thirdPoolSide * thirdPoolSide * thirdDepth + shapes;
constexpr int hiddenSize = 96;
constexpr int firstKernel = 5, kernel = 3;

struct Shape
{
    int inputs, outputs;
};
constexpr std::array<Shape, GlyphNet::layerCount> layerShapes{
    {{firstKernel * firstKernel, firstDepth},
     {kernel * kernel * firstDepth, secondDepth},
     {kernel * kernel * secondDepth, thirdDepth},
     {flat, hiddenSize},
     {hiddenSize, GlyphNet::kinds}}};

/// A square picture of some values a pixel.
struct Plane
{
    const std::vector<float> &values;
    int side;
    int depth;
};

/// Blank around the picture; what comes out below 0 is 0. With the depth known to the compiler the
/// sums of one place stay in registers.
template <int depth>
void convolve(const GlyphLayer &layer, const Plane &in, int size, int stride,
              std::vector<float> &out)
{
    const int outSide = in.side / stride;
    const int reach = size / 2;
    out.resize(std::size_t(outSide) * outSide * depth);
    for (int place = 0; place < outSide * outSide; ++place) {
        std::array<float, depth> sums;
        std::copy_n(layer.biases.begin(), depth, sums.begin());
        for (int k = 0; k < size * size; ++k) {
            const int fromY = place / outSide * stride + k / size - reach;
            const int fromX = place % outSide * stride + k % size - reach;
            if (fromY < 0 || fromX < 0 || fromY >= in.side || fromX >= in.side)
                continue;
            const float *from =
                in.values.data() + (std::size_t(fromY) * in.side + fromX) * in.depth;
            const float *weights = layer.weights.data() + std::size_t(k) * in.depth * depth;
            for (int c = 0; c < in.depth; ++c, weights += depth) {
                if (from[c] == 0)
                    continue;
                for (int o = 0; o < depth; ++o)
                    sums[o] += from[c] * weights[o];
            }
        }
        float *to = out.data() + std::size_t(place) * depth;
        for (int o = 0; o < depth; ++o)
            to[o] = std::max(sums[o], 0.0F);
    }
}

/// The largest of two by two; an odd last row and column are left out.
void pool(const Plane &in, std::vector<float> &out)
{
    const int half = in.side / 2;
    out.assign(std::size_t(half) * half * in.depth, 0);
    for (int y = 0; y < half * 2; ++y) {
        for (int x = 0; x < half * 2; ++x) {
            const float *from = in.values.data() + (std::size_t(y) * in.side + x) * in.depth;
            float *to = out.data() + (std::size_t(y / 2) * half + x / 2) * in.depth;
            for (int c = 0; c < in.depth; ++c)
                to[c] = std::max(to[c], from[c]);
        }
    }
}

void connect(const GlyphLayer &layer, const std::vector<float> &in, std::vector<float> &out)
{
    out = layer.biases;
    for (int i = 0; i < layer.inputs; ++i) {
        if (in[i] == 0)
            continue;
        const float *weights = layer.weights.data() + std::size_t(i) * layer.outputs;
        for (int o = 0; o < layer.outputs; ++o)
            out[o] += in[i] * weights[o];
    }
}

GlyphNet::Answer probabilities(const std::vector<float> &out)
{
    GlyphNet::Answer answer;
    const float most = *std::max_element(out.begin(), out.end());
    float sum = 0;
    for (std::size_t i = 0; i < answer.size(); ++i)
        sum += answer[i] = std::exp(out[i] - most);
    for (float &one : answer)
        one /= sum;
    return answer;
}

/// The bytes of a layer: a scale and a bias for each output, then the weights.
std::size_t bytesIn(const Shape &shape)
{
    return std::size_t(shape.outputs) * 2 * sizeof(float)
        + std::size_t(shape.inputs) * shape.outputs;
}

} // namespace

GlyphNet::Layers GlyphNet::emptyLayers()
{
    Layers layers;
    for (std::size_t i = 0; i < layers.size(); ++i) {
        const auto [inputs, outputs] = layerShapes[i];
        layers[i] = {inputs, outputs, std::vector<float>(std::size_t(inputs) * outputs, 0),
                     std::vector<float>(std::size_t(outputs), 0)};
    }
    return layers;
}

std::optional<GlyphNet::Layers> GlyphNet::layersFrom(std::span<const std::uint8_t> bytes)
{
    std::size_t size = 0;
    for (const Shape &shape : layerShapes)
        size += bytesIn(shape);
    if (bytes.size() != size)
        return std::nullopt;
    Layers layers = emptyLayers();
    for (GlyphLayer &layer : layers) {
        std::vector<float> scales(std::size_t(layer.outputs));
        std::memcpy(scales.data(), bytes.data(), scales.size() * sizeof(float));
        bytes = bytes.subspan(scales.size() * sizeof(float));
        std::memcpy(layer.biases.data(), bytes.data(), layer.biases.size() * sizeof(float));
        bytes = bytes.subspan(layer.biases.size() * sizeof(float));
        for (std::size_t i = 0; i < layer.weights.size(); ++i)
            layer.weights[i] = float(std::int8_t(bytes[i])) * scales[i % scales.size()];
        bytes = bytes.subspan(layer.weights.size());
    }
    return layers;
}

std::vector<std::uint8_t> GlyphNet::bytesOf(const Layers &layers)
{
    std::vector<std::uint8_t> bytes;
    const auto append = [&bytes](const std::vector<float> &values) {
        const auto *from = reinterpret_cast<const std::uint8_t *>(values.data());
        bytes.insert(bytes.end(), from, from + values.size() * sizeof(float));
    };
    for (const GlyphLayer &layer : layers) {
        std::vector<float> scales(std::size_t(layer.outputs), 1e-9F);
        for (std::size_t i = 0; i < layer.weights.size(); ++i) {
            float &scale = scales[i % scales.size()];
            scale = std::max(scale, std::abs(layer.weights[i]) / 127);
        }
        append(scales);
        append(layer.biases);
        for (std::size_t i = 0; i < layer.weights.size(); ++i)
            bytes.push_back(std::uint8_t(
                std::int8_t(std::lround(layer.weights[i] / scales[i % scales.size()]))));
    }
    return bytes;
}

const GlyphNet &GlyphNet::trained()
{
    static const GlyphNet net = [] {
        initGlyphNetResource();
        QFile file(QStringLiteral(":/reading/glyphs.weights"));
        const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        auto layers = layersFrom(
            {reinterpret_cast<const std::uint8_t *>(bytes.constData()), std::size_t(bytes.size())});
        Q_ASSERT(layers);
        return GlyphNet(layers ? std::move(*layers) : emptyLayers());
    }();
    return net;
}

GlyphNet::Answer GlyphNet::classify(const Glyph &glyph) const
{
    Trace trace;
    return classify(glyph, trace);
}

GlyphNet::Answer GlyphNet::classify(const Glyph &glyph, Trace &trace) const
{
    trace.input.resize(glyph.ink.size());
    std::transform(glyph.ink.begin(), glyph.ink.end(), trace.input.begin(),
                   [](std::uint8_t ink) { return float(ink) / 255; });
    convolve<firstDepth>(m_layers[0], {trace.input, side, 1}, firstKernel, side / firstSide,
                         trace.first);
    convolve<secondDepth>(m_layers[1], {trace.first, firstSide, firstDepth}, kernel, 1,
                          trace.second);
    pool({trace.second, firstSide, secondDepth}, trace.secondPool);
    convolve<thirdDepth>(m_layers[2], {trace.secondPool, secondPoolSide, secondDepth}, kernel, 1,
                         trace.third);
    pool({trace.third, secondPoolSide, thirdDepth}, trace.thirdPool);
    trace.thirdPool.insert(trace.thirdPool.end(), glyph.shape.begin(), glyph.shape.end());
    connect(m_layers[3], trace.thirdPool, trace.hidden);
    for (float &value : trace.hidden)
        value = std::max(value, 0.0F);
    connect(m_layers[4], trace.hidden, trace.out);
    return probabilities(trace.out);
}

} // namespace tovek
