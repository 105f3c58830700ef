// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "text/ReadingOrder.h"

#include <cmath>
#include <numeric>

namespace tovek {

std::vector<int> readingOrder(const std::vector<Rect> &rects)
{
    std::vector<int> order(rects.size());
    if (order.empty())
        return order;
    std::iota(order.begin(), order.end(), 0);
    double heights = 0;
    for (const Rect &rect : rects)
        heights += rect.height;
    const double tolerance = heights / double(rects.size()) / 2;
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return rects[a].midY() > rects[b].midY(); });
    std::vector<int> lines(rects.size());
    int line = 0;
    double reference = rects[order.front()].midY();
    for (int index : order) {
        if (std::abs(rects[index].midY() - reference) > tolerance) {
            ++line;
            reference = rects[index].midY();
        }
        lines[index] = line;
    }
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        return lines[a] != lines[b] ? lines[a] < lines[b] : rects[a].minX() < rects[b].minX();
    });
    return order;
}

std::set<int> rangeBetween(int from, int to, const std::vector<int> &order)
{
    auto first = std::find(order.begin(), order.end(), from);
    auto last = std::find(order.begin(), order.end(), to);
    if (first == order.end() || last == order.end())
        return {};
    if (last < first)
        std::swap(first, last);
    return {first, last + 1};
}

} // namespace tovek
