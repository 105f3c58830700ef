// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/Icons.h"

#include "reading/InkSegments.h"

#include <algorithm>

namespace tovek {

namespace {

/// In cap heights of the label. Pieces of an icon stand closer than the first; the label farther
/// away than the second.
constexpr double pieceGap = 0.18;
constexpr double labelGap = 0.28;
constexpr double narrowest = 0.75;
constexpr double widest = 2.2;
/// How far every side reaches above the baseline and below it.
constexpr double leastAbove = 0.8;
constexpr double leastBelow = 0.12;
constexpr double leastIconHeight = 1.15;
/// Of the icon's width, what its widest piece takes: a pair of brackets has none as wide.
constexpr double widestPiece = 0.6;

/// How far the strokes between two columns reach up and down.
QRect extentOf(const InkMap &ink, const QRect &box)
{
    QRect extent;
    for (int y = box.top(); y <= box.bottom(); ++y) {
        for (int x = box.left(); x <= box.right(); ++x) {
            if (ink.at(x, y) >= strokeInk)
                extent |= QRect(x, y, 1, 1);
        }
    }
    return extent;
}

bool reachesBeyondLine(const QRect &extent, const LetterMetrics &label)
{
    const double cap = label.capHeight;
    const double above = label.baseline - extent.top();
    const double below = extent.bottom() + 1 - label.baseline;
    return !extent.isEmpty() && above >= cap * leastAbove && below >= cap * leastBelow
        && above + below >= cap * leastIconHeight;
}

/// The strokes before the first gap that is wider than one between letters; all where there is
/// none.
std::size_t firstGroup(const std::vector<InkPatch> &patches, double gap)
{
    int right = patches.front().box.right();
    for (std::size_t i = 1; i < patches.size(); ++i) {
        if (patches[i].box.left() - right - 1 >= std::max(1.0, gap))
            return i;
        right = std::max(right, patches[i].box.right());
    }
    return patches.size();
}

} // namespace

std::optional<int> labelAfterIcon(const InkMap &ink, const TextRun &strokes)
{
    std::vector<InkPatch> patches = strokes.patches;
    std::sort(patches.begin(), patches.end(),
              [](const auto &a, const auto &b) { return a.box.left() < b.box.left(); });
    const double rough = letterMetrics(strokes).capHeight;
    const std::size_t count = firstGroup(patches, rough * pieceGap);
    if (count == patches.size())
        return std::nullopt;
    QRect icon;
    int widestWidth = 0;
    for (std::size_t i = 0; i < count; ++i) {
        icon |= patches[i].box;
        widestWidth = std::max(widestWidth, patches[i].box.width());
    }
    TextRun label{{}, {patches.begin() + std::ptrdiff_t(count), patches.end()}};
    for (const InkPatch &patch : label.patches)
        label.box |= patch.box;
    const LetterMetrics metrics = letterMetrics(label);
    const double cap = metrics.capHeight;
    const int gap = label.box.left() - icon.right() - 1;
    if (gap < cap * labelGap || icon.width() < cap * narrowest || icon.width() > cap * widest
        || widestWidth < icon.width() * widestPiece)
        return std::nullopt;
    QRect left = icon.translated(-strokes.box.topLeft());
    QRect right = left;
    left.setWidth(icon.width() / 2);
    right.setLeft(left.right() + 1);
    // The baseline in the run's own piece of the map.
    LetterMetrics own = metrics;
    own.baseline -= strokes.box.top();
    if (!reachesBeyondLine(extentOf(ink, left), own)
        || !reachesBeyondLine(extentOf(ink, right), own))
        return std::nullopt;
    return icon.right() + 1 + gap / 2;
}

std::pair<TextRun, TextRun> dividedAt(const TextRun &run, int x)
{
    std::pair<TextRun, TextRun> parts;
    for (const InkPatch &patch : run.patches) {
        TextRun &part = patch.box.center().x() < x ? parts.first : parts.second;
        part.patches.push_back(patch);
        part.box |= patch.box;
    }
    return parts;
}

} // namespace tovek
