// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/overlay/FramePainter.h"

#include <cstring>
#include <cwchar>

namespace tovek {

namespace {

/// So many pixels take as long as a rectangle more: to paint, to tell the compositor, and there.
constexpr int pixelsOfARect = 1000;

/// Four pixels beside each other, two bytes in a lane.
using FourPixels = uint16_t __attribute__((vector_size(16)));

using FourWords = uint32_t __attribute__((vector_size(16)));

/// By factors that are the same in both lanes of a pixel.
FourPixels multiplied(FourPixels pixels, FourPixels factors)
{
    const auto products = [&factors](FourPixels bytes) {
        const FourPixels product = bytes * factors;
        return (product + (product >> 8) + 128) >> 8;
    };
    return products(pixels & 255) | products(pixels >> 8) << 8;
}

/// Premultiplied colours over others.
FourWords blended(FourWords below, FourWords colors)
{
    const FourWords factors = 255 - (colors >> 24);
    return FourWords(multiplied(FourPixels(below), FourPixels(factors | factors << 16))) + colors;
}

/// The first `count` of four pixels, and nothing.
FourWords loaded(const uint32_t *pixels, int count)
{
    FourWords words{};
    std::memcpy(&words, pixels, size_t(count) * sizeof *pixels);
    return words;
}

/// The library has the widest stores of the processor for words of this size.
void fillRow(uint32_t *row, int count, uint32_t color)
{
    static_assert(sizeof(wchar_t) == sizeof color);
    std::wmemset(reinterpret_cast<wchar_t *>(row), wchar_t(color), size_t(count));
}

/// `colors(x, n)`: those that lie over `n` pixels from `x` on.
template <typename Colors>
void blendRow(uint32_t *row, int count, const Colors &colors)
{
    int x = 0;
    for (; x + 3 < count; x += 4) {
        const FourWords sum = blended(loaded(row + x, 4), colors(x, 4));
        std::memcpy(row + x, &sum, sizeof sum);
    }
    const int rest = count - x;
    if (rest <= 0)
        return;
    const FourWords sum = blended(loaded(row + x, rest), colors(x, rest));
    std::memcpy(row + x, &sum, size_t(rest) * sizeof *row);
}

class RectanglePainter
{
public:
    RectanglePainter(const SharedPixels &frame, const QRect &part)
        : m_frame(frame)
        , m_part(part) { }

    void paintBelow(uint32_t veil, const QRect &hole) const;
    void operator()(const DisplayList::Fill &fill) const { paint(fill.rect, fill.color); }
    void operator()(const DisplayList::Fills &fills) const
    {
        for (const QRect &rect : *fills.rects)
            paint(rect, fills.color);
    }
    void operator()(const DisplayList::Decal &decal) const;

private:
    uint32_t *at(int x, int y) const
    {
        return reinterpret_cast<uint32_t *>(m_frame.data() + y * m_frame.bytesPerLine()) + x;
    }
    void paint(const QRect &rect, QRgb color) const;

    const SharedPixels &m_frame;
    const QRect m_part;
};

void RectanglePainter::paintBelow(uint32_t veil, const QRect &hole) const
{
    const uint32_t black = veil << 24;
    const QRect clear = veil > 0 ? hole & m_part : m_part;
    for (int y = m_part.top(); y <= m_part.bottom(); ++y) {
        const bool isClear = clear.top() <= y && y <= clear.bottom() && !clear.isEmpty();
        const int from = isClear ? clear.left() : m_part.right() + 1;
        const int to = isClear ? clear.right() + 1 : from;
        fillRow(at(m_part.left(), y), from - m_part.left(), black);
        fillRow(at(from, y), to - from, 0);
        fillRow(at(to, y), m_part.right() + 1 - to, black);
    }
}

void RectanglePainter::paint(const QRect &rect, QRgb color) const
{
    const QRect covered = rect & m_part;
    for (int y = covered.top(); y <= covered.bottom(); ++y) {
        uint32_t *row = at(covered.left(), y);
        if (qAlpha(color) == 255)
            fillRow(row, covered.width(), color);
        else
            blendRow(row, covered.width(), [color](int, int) { return FourWords{} + color; });
    }
}

void RectanglePainter::operator()(const DisplayList::Decal &decal) const
{
    const QRect covered = boundsOf(decal) & m_part;
    for (int y = covered.top(); y <= covered.bottom(); ++y) {
        const auto *from =
            reinterpret_cast<const QRgb *>(decal.image.constScanLine(y - decal.at.y()))
            + covered.left() - decal.at.x();
        blendRow(at(covered.left(), y), covered.width(),
                 [from](int x, int count) { return loaded(from + x, count); });
    }
}

} // namespace

void paintFrame(const SharedPixels &frame, const DisplayList &list, std::span<const QRect> damage)
{
    const auto veil = uint32_t(qBound(0, qRound(list.veil * 255), 255));
    std::vector<QRect> bounds(list.items.size());
    std::transform(list.items.begin(), list.items.end(), bounds.begin(),
                   [](const DisplayList::Item &item) { return boundsOf(item); });
    for (const QRect &rect : damage) {
        const QRect part = rect & QRect(QPoint(), frame.size());
        if (part.isEmpty())
            continue;
        const RectanglePainter painter(frame, part);
        painter.paintBelow(veil, list.clear);
        for (size_t i = 0; i < bounds.size(); ++i) {
            if (bounds[i].intersects(part))
                std::visit(painter, list.items[i]);
        }
    }
}

std::vector<QRect> joined(std::vector<QRect> rects)
{
    const auto area = [](const QRect &rect) { return qint64(rect.width()) * rect.height(); };
    for (size_t i = 0; i < rects.size(); ++i) {
        for (size_t other = i + 1; other < rects.size();) {
            const QRect both = rects[i] | rects[other];
            if (area(both) > area(rects[i]) + area(rects[other]) + pixelsOfARect) {
                ++other;
                continue;
            }
            rects[i] = both;
            rects[other] = rects.back();
            rects.pop_back();
            other = i + 1; // it has grown
        }
    }
    return rects;
}

} // namespace tovek
