// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/LineStrip.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tovek {

namespace {

/// White beside the text. With more of it the network sees marks where there are none.
constexpr double marginRows = 4;
/// Of the strongest ink around: what has less is in another colour, what has hardly any is noise.
constexpr double fainter = 0.6;
constexpr double faintest = 0.25;
/// A line with fewer than two letter heights of text is never scaled beyond this.
constexpr double largestScale = 8;

/// Weights of four neighbouring samples for a position between the middle two.
std::array<float, 4> cubicWeights(float t)
{
    const float t2 = t * t;
    const float t3 = t2 * t;
    return {(-t3 + 2 * t2 - t) / 2, (3 * t3 - 5 * t2 + 2) / 2, (-3 * t3 + 4 * t2 + t) / 2,
            (t3 - t2) / 2};
}

/// One output sample: where its weights start in the input, and the weights.
struct Tap
{
    int first = 0;
    std::vector<float> weights;
};

/// Cubic interpolation when enlarging; the mean over the covered pixels when reducing.
std::vector<Tap> taps(int count, double origin, double step)
{
    std::vector<Tap> result(std::size_t(std::max(0, count)));
    for (int i = 0; i < count; ++i) {
        Tap &tap = result[i];
        if (step <= 1) {
            const double center = origin + (i + 0.5) * step - 0.5;
            const double base = std::floor(center);
            const auto weights = cubicWeights(float(center - base));
            tap.first = int(base) - 1;
            tap.weights.assign(weights.begin(), weights.end());
            continue;
        }
        const double from = origin + i * step;
        const double to = from + step;
        tap.first = int(std::floor(from));
        for (int x = tap.first; x < to; ++x)
            tap.weights.push_back(
                float((std::min<double>(x + 1, to) - std::max<double>(x, from)) / step));
    }
    return result;
}

} // namespace

InkMap evenInk(const InkMap &map, const TextRun &run, const LetterMetrics &metrics)
{
    const QRect &box = run.box;
    const int reach = int(metrics.capHeight);
    std::vector<int> peaks(std::size_t(box.width()), 1);
    for (const InkPatch &patch : run.patches) {
        for (int x = patch.box.left(); x <= patch.box.right(); ++x)
            peaks[x - box.left()] = std::max(peaks[x - box.left()], patch.peak);
    }
    InkMap even;
    even.size = box.size();
    even.contrast.resize(std::size_t(box.width()) * box.height());
    for (int x = 0; x < box.width(); ++x) {
        const auto from = peaks.begin() + std::max(0, x - reach);
        const auto to = peaks.begin() + std::min(box.width(), x + reach + 1);
        const int around = *std::max_element(from, to);
        // A character in a fainter colour than its neighbours.
        const int own = peaks[x];
        const bool isFainter = own < around * fainter && own > around * faintest;
        const int peak = isFainter ? own : around;
        for (int y = 0; y < box.height(); ++y)
            even.contrast[std::size_t(y) * box.width() + x] =
                std::uint8_t(std::min(255, map.at(box.left() + x, box.top() + y) * 255 / peak));
    }
    return even;
}

LineStrip lineStrip(const InkMap &ink, const TextRun &run, const LetterMetrics &metrics)
{
    LineStrip strip;
    const QRect &box = run.box;
    strip.scale = std::min(LineStrip::capRows / metrics.capHeight, largestScale);
    const double margin = marginRows / strip.scale;
    strip.left = box.left() - margin;
    strip.width = int(std::ceil((box.width() + 2 * margin) * strip.scale));

    const double step = 1 / strip.scale;
    const std::vector<Tap> across = taps(strip.width, -margin, step);
    std::vector<float> wide(std::size_t(strip.width) * box.height(), 0);
    for (int y = 0; y < box.height(); ++y) {
        const std::uint8_t *from = ink.row(y);
        float *to = wide.data() + std::size_t(y) * strip.width;
        for (int x = 0; x < strip.width; ++x) {
            const Tap &tap = across[x];
            for (std::size_t k = 0; k < tap.weights.size(); ++k) {
                const int at = tap.first + int(k);
                if (at >= 0 && at < box.width())
                    to[x] += tap.weights[k] * from[at];
            }
        }
    }
    const std::vector<Tap> down =
        taps(LineStrip::height, metrics.baseline - box.top() - LineStrip::baselineRow * step, step);
    strip.grey.assign(std::size_t(strip.width) * LineStrip::height, 255);
    std::vector<float> row(std::size_t(strip.width), 0);
    for (int y = 0; y < LineStrip::height; ++y) {
        std::fill(row.begin(), row.end(), 0.0F);
        const Tap &tap = down[y];
        for (std::size_t k = 0; k < tap.weights.size(); ++k) {
            const int at = tap.first + int(k);
            if (at < 0 || at >= box.height())
                continue;
            const float *from = wide.data() + std::size_t(at) * strip.width;
            for (int x = 0; x < strip.width; ++x)
                row[x] += tap.weights[k] * from[x];
        }
        std::uint8_t *to = strip.grey.data() + std::size_t(y) * strip.width;
        for (int x = 0; x < strip.width; ++x)
            to[x] = std::uint8_t(255 - std::lround(std::clamp(row[x], 0.0F, 255.0F)));
    }
    return strip;
}

} // namespace tovek
