// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/StrokedSegment.h"

#include <QPainter>

#include <array>
#include <cmath>

namespace tovek {

namespace {

/// Pixels in a piece: about as much time goes into the call that draws it as into its pixels.
constexpr double pieceArea = 1024;
constexpr double shortestPiece = 16;
/// From the centre of a pixel to its corner, and a little more.
constexpr double pixelReach = 0.75;

/// The part of a pixel that lies inside an edge. `depth` is how far inside it the centre is;
/// `large` and `small` are the sizes of the edge normal's coordinates.
double areaInside(double depth, double large, double small)
{
    const double full = (large + small) / 2;
    if (std::abs(depth) >= full)
        return depth > 0 ? 1 : 0;
    if (std::abs(depth) <= (large - small) / 2)
        return 0.5 + depth / large;
    const double rest = full - std::abs(depth);
    const double corner = rest * rest / (2 * large * small);
    return depth > 0 ? 1 - corner : corner;
}

/// How much of each pixel a segment covers.
class Coverage
{
public:
    explicit Coverage(const StrokedSegment &segment)
        : m_from(segment.from)
        , m_length(std::hypot(segment.to.x() - segment.from.x(), segment.to.y() - segment.from.y()))
        , m_radius(segment.width / 2)
    {
        if (m_length > 0)
            m_direction = (segment.to - segment.from) / m_length;
        m_large = std::max(std::abs(m_direction.x()), std::abs(m_direction.y()));
        m_small = std::min(std::abs(m_direction.x()), std::abs(m_direction.y()));
    }

    double of(QPointF center) const
    {
        const QPointF way = center - m_from;
        const double along = QPointF::dotProduct(way, m_direction);
        const double beside = way.x() * m_direction.y() - way.y() * m_direction.x();
        if (along < pixelReach || along > m_length - pixelReach)
            return ofEnd(way);
        return areaInside(m_radius - beside, m_large, m_small)
            + areaInside(m_radius + beside, m_large, m_small) - 1;
    }

private:
    double distanceTo(QPointF way) const
    {
        const double along = std::clamp(QPointF::dotProduct(way, m_direction), 0.0, m_length);
        const QPointF beside = way - along * m_direction;
        return std::sqrt(QPointF::dotProduct(beside, beside));
    }
    /// The mean of smaller pixels, on which the round end is as good as straight.
    double ofEnd(QPointF way) const
    {
        constexpr int fine = 4;
        double sum = 0;
        for (int y = 0; y < fine; ++y) {
            for (int x = 0; x < fine; ++x) {
                const QPointF at = way + QPointF((x + 0.5) / fine - 0.5, (y + 0.5) / fine - 0.5);
                sum += std::clamp(0.5 + fine * (m_radius - distanceTo(at)), 0.0, 1.0);
            }
        }
        return sum / (fine * fine);
    }

    QPointF m_from;
    double m_length;
    double m_radius;
    QPointF m_direction;
    double m_large;
    double m_small;
};

/// The colour at each coverage of 0 to 255, premultiplied.
std::array<QRgb, 256> shadesOf(QRgb color)
{
    std::array<QRgb, 256> shades{};
    for (size_t i = 0; i < shades.size(); ++i) {
        const int alpha = (qAlpha(color) * int(i) + 127) / 255;
        shades[i] = qPremultiply(qRgba(qRed(color), qGreen(color), qBlue(color), alpha));
    }
    return shades;
}

QRect pixelsAround(QPointF a, QPointF b, double reach)
{
    const QPointF out(reach, reach);
    const QPointF least(std::min(a.x(), b.x()), std::min(a.y(), b.y()));
    const QPointF most(std::max(a.x(), b.x()), std::max(a.y(), b.y()));
    return QRectF(least - out, most + out).toAlignedRect();
}

/// Fills a piece with what lies along the segment, in lines across its longer direction.
class PieceFiller
{
public:
    PieceFiller(const StrokedSegment &segment, const QColor &color)
        : m_segment(segment)
        , m_coverage(segment)
        , m_shades(shadesOf(color.rgba()))
        , m_way(segment.to - segment.from)
        , m_isWide(std::abs(m_way.x()) >= std::abs(m_way.y()))
    {
        const double length = std::hypot(m_way.x(), m_way.y());
        const double major = std::abs(m_isWide ? m_way.x() : m_way.y());
        m_across = (segment.width / 2 + pixelReach) * (major > 0 ? length / major : 1);
    }

    bool isWide() const { return m_isWide; }
    /// What the stroke can touch of a strip across its longer direction.
    QRect trimmed(QRect strip) const
    {
        const auto [first, firstEnd] = minorRange(m_isWide ? strip.left() : strip.top(), strip);
        const auto [last, lastEnd] = minorRange(m_isWide ? strip.right() : strip.bottom(), strip);
        if (m_isWide) {
            strip.setTop(std::min(first, last));
            strip.setBottom(std::max(firstEnd, lastEnd));
        } else {
            strip.setLeft(std::min(first, last));
            strip.setRight(std::max(firstEnd, lastEnd));
        }
        return strip;
    }
    QImage fill(const QRect &piece) const
    {
        QImage image(piece.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        auto *const pixels = reinterpret_cast<QRgb *>(image.bits());
        const int first = m_isWide ? piece.left() : piece.top();
        const int last = m_isWide ? piece.right() : piece.bottom();
        for (int major = first; major <= last; ++major) {
            const auto [from, to] = minorRange(major, piece);
            for (int minor = from; minor <= to; ++minor) {
                const QPoint at = m_isWide ? QPoint(major, minor) : QPoint(minor, major);
                const double part = m_coverage.of(QPointF(at) + QPointF(0.5, 0.5));
                const QPoint in = at - piece.topLeft();
                // Never negative; the library's rounding would be a call for each pixel.
                const auto shade = size_t(255 * part + 0.5); // NOLINT(bugprone-incorrect-roundings)
                pixels[qsizetype(in.y()) * piece.width() + in.x()] = m_shades[shade];
            }
        }
        return image;
    }

private:
    /// What the stroke can touch of one line of pixels, cut to the piece; first and last.
    std::pair<int, int> minorRange(int major, const QRect &piece) const
    {
        const QPointF &from = m_segment.from;
        const double way = m_isWide ? m_way.x() : m_way.y();
        const double step = way == 0 ? 0 : (m_isWide ? m_way.y() : m_way.x()) / way;
        // Beyond the ends the stroke does not go on.
        const double least = m_isWide ? from.x() : from.y();
        const double at =
            std::clamp(major + 0.5, std::min(least, least + way), std::max(least, least + way));
        const double middle = (m_isWide ? from.y() : from.x()) + step * (at - least);
        const int lowest = m_isWide ? piece.top() : piece.left();
        const int highest = m_isWide ? piece.bottom() : piece.right();
        return {std::max(lowest, int(std::floor(middle - m_across))),
                std::min(highest, int(std::ceil(middle + m_across)))};
    }

    const StrokedSegment &m_segment;
    Coverage m_coverage;
    std::array<QRgb, 256> m_shades;
    QPointF m_way;
    bool m_isWide;
    double m_across; ///< from the middle of the stroke to beyond its edge, along a line of pixels
};

/// The length along the longer direction that makes pieces of the area.
int pieceLength(const StrokedSegment &segment)
{
    const QPointF way = segment.to - segment.from;
    const double longer = std::max(std::abs(way.x()), std::abs(way.y()));
    const double slope = longer > 0 ? std::min(std::abs(way.x()), std::abs(way.y())) / longer : 0;
    const double across = segment.width + 2 * pixelReach;
    // length * (slope * length + across) = area, in a form that holds for no slope as well.
    const double length =
        2 * pieceArea / (across + std::sqrt(across * across + 4 * slope * pieceArea));
    return int(std::max(shortestPiece, length));
}

} // namespace

void paintSegment(QPainter &painter, const StrokedSegment &segment, const QColor &color,
                  const QRect &within)
{
    const QRect all =
        pixelsAround(segment.from, segment.to, segment.width / 2 + pixelReach) & within;
    if (all.isEmpty())
        return;
    const PieceFiller filler(segment, color);
    const int length = pieceLength(segment);
    const QPoint step = filler.isWide() ? QPoint(length, 0) : QPoint(0, length);
    const QSize size = filler.isWide() ? QSize(length, all.height()) : QSize(all.width(), length);
    painter.save();
    painter.resetTransform();
    for (QRect strip(all.topLeft(), size); strip.intersects(all); strip.translate(step)) {
        const QRect piece = filler.trimmed(strip & all);
        if (!piece.isEmpty())
            painter.drawImage(piece.topLeft(), filler.fill(piece));
    }
    painter.restore();
}

} // namespace tovek
