// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/overlay/FramePainter.h"

#include <cstring>

namespace tovek {

namespace {

/// Each byte times `factor` / 255, rounded.
uint32_t multiplied(uint32_t pixel, uint32_t factor)
{
    constexpr uint32_t lowBytes = 0x00ff00ff;
    constexpr uint32_t halves = 0x00800080;
    const auto products = [factor](uint32_t bytes) {
        const uint32_t product = bytes * factor;
        return product + ((product >> 8) & lowBytes) + halves;
    };
    return ((products(pixel & lowBytes) >> 8) & lowBytes)
        | (products((pixel >> 8) & lowBytes) & ~lowBytes);
}

/// Four pixels beside each other, two bytes in a lane.
using FourPixels = uint16_t __attribute__((vector_size(16)));

FourPixels multiplied(FourPixels pixels, uint16_t factor)
{
    const auto products = [factor](FourPixels bytes) {
        const FourPixels product = bytes * factor;
        return (product + (product >> 8) + 128) >> 8;
    };
    return products(pixels & 255) | products(pixels >> 8) << 8;
}

/// Multiplies a row, and adds a premultiplied colour.
void blendRow(uint32_t *row, int count, uint32_t factor, uint32_t color)
{
    using Words = uint32_t __attribute__((vector_size(16)));
    int x = 0;
    for (; x + 3 < count; x += 4) {
        FourPixels four;
        std::memcpy(&four, row + x, sizeof four);
        four = multiplied(four, uint16_t(factor));
        const Words sum = Words(four) + color;
        std::memcpy(row + x, &sum, sizeof sum);
    }
    for (; x < count; ++x)
        row[x] = multiplied(row[x], factor) + color;
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
        std::fill(at(m_part.left(), y), at(from, y), black);
        std::fill(at(from, y), at(to, y), 0);
        std::fill(at(to, y), at(m_part.right() + 1, y), black);
    }
}

void RectanglePainter::paint(const QRect &rect, QRgb color) const
{
    const QRect covered = rect & m_part;
    for (int y = covered.top(); y <= covered.bottom(); ++y) {
        uint32_t *row = at(covered.left(), y);
        if (qAlpha(color) == 255)
            std::fill_n(row, covered.width(), color);
        else
            blendRow(row, covered.width(), 255 - uint32_t(qAlpha(color)), color);
    }
}

void RectanglePainter::operator()(const DisplayList::Decal &decal) const
{
    const QRect covered = boundsOf(decal) & m_part;
    for (int y = covered.top(); y <= covered.bottom(); ++y) {
        uint32_t *row = at(covered.left(), y);
        const auto *from =
            reinterpret_cast<const QRgb *>(decal.image.constScanLine(y - decal.at.y()))
            + covered.left() - decal.at.x();
        for (int x = 0; x < covered.width(); ++x) {
            if (qAlpha(from[x]) == 255)
                row[x] = from[x];
            else if (from[x] != 0)
                row[x] = multiplied(row[x], 255 - uint32_t(qAlpha(from[x]))) + from[x];
        }
    }
}

} // namespace

void paintFrame(const SharedPixels &frame, const DisplayList &list, const QRegion &damage)
{
    const auto veil = uint32_t(qBound(0, qRound(list.veil * 255), 255));
    for (const QRect &rect : damage &QRect(QPoint(), frame.size())) {
        const RectanglePainter painter(frame, rect);
        painter.paintBelow(veil, list.clear);
        for (const DisplayList::Item &item : list.items)
            std::visit(painter, item);
    }
}

} // namespace tovek
