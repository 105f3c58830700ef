// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/overlay/FramePainter.h"

#include <cstring>

namespace tovek {

namespace {

/// One pixel, or two beside each other.
template <typename Pixels>
constexpr Pixels lowBytes = Pixels(0x00ff00ff00ff00ff);
template <typename Pixels>
constexpr Pixels halves = Pixels(0x0080008000800080);

/// Each byte times `factor` / 255, rounded.
template <typename Pixels>
Pixels multiplied(Pixels pixels, uint32_t factor)
{
    const auto products = [factor](Pixels bytes) {
        const Pixels product = bytes * factor;
        return product + ((product >> 8) & lowBytes<Pixels>)+halves<Pixels>;
    };
    return ((products(pixels & lowBytes<Pixels>) >> 8) & lowBytes<Pixels>)
        | (products((pixels >> 8) & lowBytes<Pixels>) & ~lowBytes<Pixels>);
}

/// Multiplies a row, and adds a premultiplied colour.
void blendRow(uint32_t *to, const uint32_t *from, int count, uint32_t factor, uint32_t color)
{
    const uint64_t colors = uint64_t(color) << 32 | color;
    int x = 0;
    for (; x + 1 < count; x += 2) {
        uint64_t two;
        std::memcpy(&two, from + x, sizeof two);
        two = multiplied(two, factor) + colors;
        std::memcpy(to + x, &two, sizeof two);
    }
    if (x < count)
        to[x] = multiplied(from[x], factor) + color;
}

class RectanglePainter
{
public:
    RectanglePainter(const SharedPixels &frame, const SharedPixels &frozen, const QRect &part)
        : m_frame(frame)
        , m_frozen(frozen)
        , m_part(part)
    {
    }

    void paintBelow(uint32_t veil, const QRect &hole) const;
    void operator()(const DisplayList::Fill &fill) const { paint(fill.rect, fill.color); }
    void operator()(const DisplayList::Fills &fills) const
    {
        for (const QRect &rect : *fills.rects)
            paint(rect, fills.color);
    }
    void operator()(const DisplayList::Decal &decal) const;

private:
    static uint32_t *at(const SharedPixels &pixels, int x, int y)
    {
        return reinterpret_cast<uint32_t *>(pixels.data() + y * pixels.bytesPerLine()) + x;
    }
    void paint(const QRect &rect, QRgb color) const;

    const SharedPixels &m_frame;
    const SharedPixels &m_frozen;
    const QRect m_part;
};

void RectanglePainter::paintBelow(uint32_t veil, const QRect &hole) const
{
    const QRect clear = veil > 0 ? hole & m_part : m_part;
    for (int y = m_part.top(); y <= m_part.bottom(); ++y) {
        const bool isClear = clear.top() <= y && y <= clear.bottom() && !clear.isEmpty();
        const int from = isClear ? clear.left() : m_part.right() + 1;
        const int to = isClear ? clear.right() + 1 : from;
        const auto veiled = [&](int left, int right) {
            blendRow(at(m_frame, left, y), at(m_frozen, left, y), right - left, 255 - veil,
                     veil << 24);
        };
        veiled(m_part.left(), from);
        std::memcpy(at(m_frame, from, y), at(m_frozen, from, y), size_t(to - from) * 4);
        veiled(to, m_part.right() + 1);
    }
}

void RectanglePainter::paint(const QRect &rect, QRgb color) const
{
    const QRect covered = rect & m_part;
    for (int y = covered.top(); y <= covered.bottom(); ++y) {
        uint32_t *row = at(m_frame, covered.left(), y);
        if (qAlpha(color) == 255)
            std::fill_n(row, covered.width(), color);
        else
            blendRow(row, row, covered.width(), 255 - uint32_t(qAlpha(color)), color);
    }
}

void RectanglePainter::operator()(const DisplayList::Decal &decal) const
{
    const QRect covered = boundsOf(decal) & m_part;
    for (int y = covered.top(); y <= covered.bottom(); ++y) {
        uint32_t *row = at(m_frame, covered.left(), y);
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

void paintFrame(const SharedPixels &frame, const SharedPixels &frozen, const DisplayList &list,
                const QRegion &damage)
{
    Q_ASSERT(frame.size() == frozen.size());
    const auto veil = uint32_t(qBound(0, qRound(list.veil * 255), 255));
    for (const QRect &rect : damage &QRect(QPoint(), frame.size())) {
        const RectanglePainter painter(frame, frozen, rect);
        painter.paintBelow(veil, list.clear);
        for (const DisplayList::Item &item : list.items)
            std::visit(painter, item);
    }
}

} // namespace tovek
