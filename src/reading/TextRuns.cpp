// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/TextRuns.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace tovek {

namespace {

using PatchList = std::vector<InkPatch>;

/// Letters taller than this are not read; larger patches are pictures.
constexpr int tallestLetter = 110;
/// In letter heights: a wider gap separates columns. A blank between words is about half as wide.
constexpr double columnGap = 1.7;
/// A run of so few patches shows too little of its line.
constexpr std::size_t mostMarks = 4;
/// Small letters are about this much lower than capitals.
constexpr double capToXHeight = 1.37;

bool canBeText(const InkPatch &patch)
{
    const QRect &box = patch.box;
    if (box.height() > tallestLetter || box.width() > 12 * tallestLetter)
        return false;
    const bool isHollow =
        box.width() > 24 && box.height() > 24 && patch.area < 0.08 * box.width() * box.height();
    return !isHollow;
}

/// The height that half of the ink's width does not exceed: dots and dashes hardly count.
int typicalHeight(const PatchList &patches)
{
    std::map<int, int> widths;
    int total = 0;
    for (const InkPatch &patch : patches) {
        widths[patch.box.height()] += patch.box.width();
        total += patch.box.width();
    }
    int sum = 0;
    for (const auto &[height, width] : widths) {
        sum += width;
        if (sum * 2 >= total)
            return height;
    }
    return 1;
}

QRect boundsOf(const PatchList &patches)
{
    QRect box;
    for (const InkPatch &patch : patches)
        box |= patch.box;
    return box;
}

/// How tall a band counts beside another one. One that holds several lines (a side bar beside tall
/// icons) is told by its letters: a whole line above it is not their dots.
int heightOf(const PatchList &band)
{
    return std::min(boundsOf(band).height(), 2 * typicalHeight(band));
}

/// Dots and accents are cut from their letters where a line has nothing as tall: they go back to
/// the band close below (or above) that is much taller.
std::vector<PatchList> joinedDots(std::vector<PatchList> bands)
{
    for (std::size_t i = 0; i + 1 < bands.size();) {
        const QRect upper = boundsOf(bands[i]);
        const QRect lower = boundsOf(bands[i + 1]);
        const int gap = lower.top() - upper.bottom() - 1;
        const int taller = std::max(heightOf(bands[i]), heightOf(bands[i + 1]));
        const int smaller = std::min(upper.height(), lower.height());
        if (smaller * 2 < taller && gap * 3 <= taller && taller <= tallestLetter) {
            bands[i].insert(bands[i].end(), bands[i + 1].begin(), bands[i + 1].end());
            bands.erase(bands.begin() + std::ptrdiff_t(i) + 1);
            i = i > 0 ? i - 1 : 0;
        } else {
            ++i;
        }
    }
    return bands;
}

std::vector<PatchList> bandsOf(PatchList patches)
{
    std::sort(patches.begin(), patches.end(),
              [](const auto &a, const auto &b) { return a.box.top() < b.box.top(); });
    std::vector<PatchList> bands;
    int bottom = -1;
    for (const InkPatch &patch : patches) {
        if (bands.empty() || patch.box.top() > bottom + 1)
            bands.emplace_back();
        bands.back().push_back(patch);
        bottom = std::max(bottom, patch.box.bottom());
    }
    return joinedDots(std::move(bands));
}

std::vector<PatchList> columnsOf(PatchList patches, int gap)
{
    std::sort(patches.begin(), patches.end(),
              [](const auto &a, const auto &b) { return a.box.left() < b.box.left(); });
    std::vector<PatchList> columns;
    int right = 0;
    for (const InkPatch &patch : patches) {
        if (columns.empty() || patch.box.left() - right - 1 > gap)
            columns.emplace_back();
        columns.back().push_back(patch);
        right = columns.back().size() == 1 ? patch.box.right() : std::max(right, patch.box.right());
    }
    return columns;
}

/// Lines that stand so close that no empty row lies between them: every patch goes to the line
/// whose middle is nearest. Lines are found as the peaks of the ink's height profile.
std::vector<PatchList> touchingLines(const PatchList &patches, int letterHeight)
{
    const QRect box = boundsOf(patches);
    std::vector<int> profile(std::size_t(box.height()), 0);
    for (const InkPatch &patch : patches) {
        if (patch.box.height() > letterHeight * 2)
            continue;
        for (int y = patch.box.top(); y <= patch.box.bottom(); ++y)
            profile[y - box.top()] += patch.box.width();
    }
    std::vector<int> middles;
    const int highest = *std::max_element(profile.begin(), profile.end());
    int start = -1;
    for (int y = 0; y <= box.height(); ++y) {
        const bool isInside = y < box.height() && profile[y] * 2 >= highest;
        if (isInside && start < 0)
            start = y;
        if (!isInside && start >= 0) {
            if (y - start >= letterHeight / 2)
                middles.push_back(box.top() + (start + y) / 2);
            start = -1;
        }
    }
    if (middles.size() < 2)
        return {patches};
    std::vector<PatchList> lines(middles.size());
    for (const InkPatch &patch : patches) {
        const auto distance = [&](int middle) { return std::abs(patch.box.center().y() - middle); };
        const auto nearest = std::min_element(middles.begin(), middles.end(), [&](int a, int b) {
            return distance(a) < distance(b);
        });
        lines[nearest - middles.begin()].push_back(patch);
    }
    std::erase_if(lines, [](const PatchList &line) { return line.empty(); });
    return lines;
}

/// Icons and the sides of frames that hold lines of text together: apart from what they stand
/// beside, when that is text. Brackets and bars are less than this much taller than letters.
std::vector<PatchList> withoutTallPatches(const PatchList &patches, int letterHeight)
{
    std::vector<PatchList> parts(2);
    for (const InkPatch &patch : patches)
        parts[patch.box.height() > letterHeight * 2.2 ? 1 : 0].push_back(patch);
    std::erase_if(parts, [](const PatchList &part) { return part.empty(); });
    return parts;
}

void cut(const PatchList &patches, std::vector<TextRun> &runs)
{
    const auto recurse = [&runs](const std::vector<PatchList> &parts) {
        for (const PatchList &part : parts)
            cut(part, runs);
    };
    std::vector<PatchList> bands = bandsOf(patches);
    if (bands.size() > 1)
        return recurse(bands);
    const int letterHeight = typicalHeight(patches);
    std::vector<PatchList> columns = columnsOf(patches, int(std::ceil(letterHeight * columnGap)));
    if (columns.size() > 1)
        return recurse(columns);
    if (std::vector<PatchList> parts = withoutTallPatches(patches, letterHeight); parts.size() > 1)
        return recurse(parts);
    if (boundsOf(patches).height() > letterHeight * 2.1) {
        std::vector<PatchList> lines = touchingLines(patches, letterHeight);
        if (lines.size() > 1)
            return recurse(lines);
    }
    TextRun run{boundsOf(patches), std::move(columns.front())};
    runs.push_back(std::move(run));
}

/// The value with the most weight, where neighbouring values count for half.
int weightiest(const std::map<int, double> &weights)
{
    double best = -1;
    int value = 0;
    for (const auto &[candidate, weight] : weights) {
        const auto at = [&](int v) {
            const auto found = weights.find(v);
            return found == weights.end() ? 0.0 : found->second;
        };
        const double sum = weight + (at(candidate - 1) + at(candidate + 1)) / 2;
        if (sum > best) {
            best = sum;
            value = candidate;
        }
    }
    return value;
}

/// Marks stand off the baseline or are no letter's height; what has a letter's place and another
/// height is text in another size.
bool canStandOn(const TextRun &run, const LetterMetrics &line)
{
    const double cap = line.capHeight;
    const double slack = 0.6 + cap * 0.1;
    const auto isLetterHigh = [&](double height) {
        return height >= cap - slack || std::abs(height - line.xHeight) <= slack;
    };
    if (line.baseline - run.box.top() > cap * 1.3 + 1
        || run.box.bottom() + 1 - line.baseline > cap * 0.4 + 1)
        return false;
    return std::all_of(run.patches.begin(), run.patches.end(), [&](const InkPatch &patch) {
        const double bottom = patch.box.bottom() + 1 - line.baseline;
        const bool isSmall = patch.box.height() < cap * 0.4;
        return isSmall || std::abs(bottom) > 1 + cap * 0.05 || isLetterHigh(patch.box.height());
    });
}

/// The metrics of the nearest run beside this one whose line it stands on.
const LetterMetrics *lineBeside(const TextRun &run, const std::vector<PageRun> &runs)
{
    const LetterMetrics *found = nullptr;
    int nearest = std::numeric_limits<int>::max();
    const QRect &box = run.box;
    for (const PageRun &one : runs) {
        const QRect &other = one.text.box;
        if (&one.text == &run || !one.metrics.isCertain || other.top() > box.bottom()
            || other.bottom() < box.top())
            continue;
        const int distance = std::max({0, other.left() - box.right(), box.left() - other.right()});
        if (distance < nearest && canStandOn(run, one.metrics)) {
            nearest = distance;
            found = &one.metrics;
        }
    }
    return found;
}

/// Those of one of the runs, after what is certain of the others.
LetterMetrics settled(const PageRun &run, const std::vector<PageRun> &runs)
{
    LetterMetrics metrics = run.metrics;
    if (metrics.isCertain)
        return metrics;
    if (run.text.patches.size() <= mostMarks) {
        if (const LetterMetrics *line = lineBeside(run.text, runs))
            return *line;
    }
    int asCapitals = 0;
    int asSmall = 0;
    for (const PageRun &other : runs) {
        if (!other.metrics.isCertain)
            continue;
        asCapitals += std::abs(other.metrics.capHeight - metrics.capHeight) < 0.75;
        asSmall += std::abs(other.metrics.xHeight - metrics.capHeight) < 0.75;
    }
    if (asSmall > asCapitals) {
        metrics.xHeight = metrics.capHeight;
        metrics.capHeight = metrics.xHeight * capToXHeight;
    }
    return metrics;
}

} // namespace

bool isLetterHigh(const InkPatch &patch)
{
    return patch.box.height() >= lowestLetter;
}

bool isDashWide(const InkPatch &patch)
{
    constexpr int narrowestDash = 4;
    return patch.box.width() >= std::max(narrowestDash, patch.box.height() * 2);
}

TextRun partOf(const TextRun &run, const QRect &box)
{
    TextRun part;
    for (const InkPatch &patch : run.patches) {
        const int center = patch.box.center().x();
        if (center < box.left() || center > box.right())
            continue;
        part.patches.push_back(patch);
        part.box |= patch.box;
    }
    return part;
}

std::vector<TextRun> textRuns(const std::vector<InkPatch> &patches)
{
    PatchList text;
    std::copy_if(patches.begin(), patches.end(), std::back_inserter(text), canBeText);
    std::vector<TextRun> runs;
    if (!text.empty())
        cut(text, runs);
    return runs;
}

LetterMetrics letterMetrics(const TextRun &run)
{
    std::map<int, double> bottoms;
    for (const InkPatch &patch : run.patches) {
        if (patch.box.height() * 10 >= run.box.height() * 4)
            bottoms[patch.box.bottom() + 1] += patch.box.width();
    }
    LetterMetrics metrics;
    if (bottoms.empty()) {
        metrics.baseline = run.box.bottom() + 1;
        metrics.capHeight = run.box.height();
        metrics.xHeight = metrics.capHeight / capToXHeight;
        return metrics;
    }
    const int baseline = weightiest(bottoms);
    std::map<int, double> heights;
    for (const InkPatch &patch : run.patches) {
        const int height = baseline - patch.box.top();
        if (std::abs(patch.box.bottom() + 1 - baseline) <= 1 + run.box.height() / 16
            && height * 10 >= run.box.height() * 4)
            heights[height] += patch.box.width();
    }
    const int common = weightiest(heights);
    // Letters clearly taller or lower than the most common ones, but within a font's proportions.
    const auto weightBetween = [&](double low, double high, double &mean) {
        double weight = 0;
        double sum = 0;
        for (const auto &[height, width] : heights) {
            if (height >= common * low && height <= common * high) {
                weight += width;
                sum += width * height;
            }
        }
        mean = weight > 0 ? sum / weight : 0;
        return weight;
    };
    double taller = 0;
    double lower = 0;
    const double tallerWeight = weightBetween(1.18, 1.6, taller);
    const double lowerWeight = weightBetween(0.62, 0.84, lower);
    metrics.baseline = baseline;
    if (tallerWeight > 0 && tallerWeight >= lowerWeight) {
        metrics.capHeight = taller;
        metrics.xHeight = common;
        metrics.isCertain = true;
    } else if (lowerWeight > 0) {
        metrics.capHeight = common;
        metrics.xHeight = lower;
        metrics.isCertain = true;
    } else {
        metrics.capHeight = common;
        metrics.xHeight = common / capToXHeight;
    }
    return metrics;
}

void settleMetrics(std::vector<PageRun> &runs)
{
    std::vector<LetterMetrics> metrics;
    std::transform(runs.begin(), runs.end(), std::back_inserter(metrics),
                   [&runs](const PageRun &run) { return settled(run, runs); });
    for (std::size_t i = 0; i < runs.size(); ++i)
        runs[i].metrics = metrics[i];
}

} // namespace tovek
