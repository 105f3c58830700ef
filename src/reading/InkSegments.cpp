// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/InkSegments.h"

#include <algorithm>

namespace tovek {

namespace {

/// In pixels and in box heights: level dashes differ by the soft edge of a neighbour at most.
constexpr double leastWave = 0.3;
constexpr double leastWaveShare = 0.1;
constexpr int narrowestWave = 5;

/// How far down the ink of some columns lies on average, from the box's top.
double centerOfInk(const InkMap &ink, const QRect &box)
{
    double sum = 0;
    double weighted = 0;
    for (int y = box.top(); y <= box.bottom(); ++y) {
        for (int x = box.left(); x <= box.right(); ++x) {
            sum += ink.at(x, y);
            weighted += double(ink.at(x, y)) * (y - box.top());
        }
    }
    return sum > 0 ? weighted / sum : 0;
}

/// Dashes that stand so close that their soft edges meet: cut where the ink thins out.
std::vector<QRect> separateDashes(const InkMap &ink, const QRect &box)
{
    if (isWave(ink, box))
        return {box};
    std::vector<int> columns;
    for (int x = box.left(); x <= box.right(); ++x) {
        int strongest = 0;
        for (int y = box.top(); y <= box.bottom(); ++y)
            strongest = std::max(strongest, int(ink.at(x, y)));
        columns.push_back(strongest);
    }
    const int full = *std::max_element(columns.begin(), columns.end());
    std::vector<QRect> parts;
    int start = 0;
    int highest = columns.front(); // of the part that begins at `start`
    for (int x = 1; x + 1 < int(columns.size()); ++x) {
        highest = std::max(highest, columns[x]);
        // What rises from one end on is one dash beside stronger ink, not two.
        const bool isValley = columns[x] <= columns[x - 1] && columns[x] < columns[x + 1]
            && columns[x] * 5 < std::min(full, highest) * 4;
        if (!isValley || x - start < box.height())
            continue;
        parts.push_back(QRect(box.left() + start, box.top(), x - start, box.height()));
        start = x + 1;
        highest = 0;
    }
    parts.push_back(box.adjusted(start, 0, 0, 0));
    return parts;
}

} // namespace

bool isWave(const InkMap &ink, const QRect &box)
{
    QRect left = box;
    left.setWidth(box.width() / 2);
    QRect right = box;
    right.setLeft(box.right() + 1 - left.width());
    return box.height() >= 2 && box.width() >= narrowestWave
        && centerOfInk(ink, right) - centerOfInk(ink, left)
        > std::max(leastWave, box.height() * leastWaveShare);
}

std::vector<QRect> inkSegments(const InkMap &ink, const TextRun &run)
{
    std::vector<QRect> boxes;
    for (const InkPatch &patch : inkPatches(ink, strokeInk)) {
        const bool isFlat = patch.box.width() >= patch.box.height() * 3;
        for (const QRect &box : isFlat ? separateDashes(ink, patch.box) : std::vector{patch.box})
            boxes.push_back(box.translated(run.box.topLeft()));
    }
    std::sort(boxes.begin(), boxes.end(),
              [](const QRect &a, const QRect &b) { return a.left() < b.left(); });
    std::vector<QRect> segments;
    for (const QRect &box : boxes) {
        if (!segments.empty()) {
            QRect &last = segments.back();
            const int overlap = std::min(last.right(), box.right()) - box.left() + 1;
            if (overlap * 2 > std::min(last.width(), box.width())) {
                last |= box;
                continue;
            }
        }
        segments.push_back(box);
    }
    return segments;
}

} // namespace tovek
