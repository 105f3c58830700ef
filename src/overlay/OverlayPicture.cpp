// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/OverlayPicture.h"

#include "foundation/SystemColors.h"
#include "overlay/SizeLabel.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace tovek {

namespace {

constexpr double cornerRadius = 4;
constexpr double borderWidth = 2;
constexpr double handleOffset = 6;
constexpr double handleStart = 8;
constexpr double handleEnd = 18;
constexpr double handleWidth = 2.5;
constexpr int labelFontSize = 12;
constexpr double labelPaddingX = 6;
constexpr double labelPaddingY = 3;
constexpr double labelRadius = 6;
constexpr qsizetype mostDecals = 400;

enum Kind { cornerKind = 0, handleKind = 4, boxKind = 8 };

/// The four corners in drawing order, with the direction in which the selection lies.
struct Corner
{
    bool isRight;
    bool isTop;
};
constexpr Corner corners[] = {{false, false}, {true, false}, {false, true}, {true, true}};

QRgb premultiplied(const QColor &color, double alpha)
{
    const int a = qRound(255 * alpha);
    return qPremultiply(qRgba(color.red(), color.green(), color.blue(), a));
}

quint64 nextDecalKey()
{
    static quint64 last = 0;
    return ++last;
}

/// Whole pixels and what is left; positions that miss a pixel by a rounding error hit it.
struct Split
{
    explicit Split(double position)
        : whole(int(std::floor(position + 1e-4)))
        , rest(position - whole < 1e-3 ? 0 : position - whole)
    {
    }
    int whole;
    double rest;
};

/// A stretch of pixels that a line covers to the same degree.
struct Run
{
    int from;
    int length;
    double coverage;
};

/// How the span [low, high) covers whole pixels: at most three runs.
std::vector<Run> runsOf(double low, double high)
{
    std::vector<Run> runs;
    const Split first(low);
    const Split last(high);
    int from = first.whole;
    if (first.rest > 0) {
        runs.push_back({from, 1, std::min(1.0, high - first.whole) - first.rest});
        ++from;
    }
    if (last.whole > from)
        runs.push_back({from, last.whole - from, 1.0});
    if (last.rest > 0 && last.whole >= from)
        runs.push_back({last.whole, 1, last.rest});
    return runs;
}

/// One corner handle around its point of origin, arms along +x and +y.
QPainterPath handlePath(double scale)
{
    QPainterPath path;
    path.moveTo(handleStart * scale, 0);
    path.lineTo(handleEnd * scale, 0);
    path.cubicTo(0, 0, 0, 0, 0, handleEnd * scale);
    path.lineTo(0, handleStart * scale);
    return path;
}

template <typename Draw>
DisplayList::Decal drawn(QSize size, Draw draw)
{
    DisplayList::Decal made;
    made.key = nextDecalKey();
    made.image = QImage(size, QImage::Format_ARGB32_Premultiplied);
    made.image.fill(Qt::transparent);
    QPainter painter(&made.image);
    painter.setRenderHint(QPainter::Antialiasing);
    draw(painter);
    return made;
}

} // namespace

struct OverlayArtist::Frame
{
    explicit Frame(const OverlayPicture &of)
        : picture(of)
        , scale(of.space.scale)
        , selection(of.space.pixelsFromRect(*of.selection))
        , color(colorOf(of.captureMode))
        , outside(int(std::ceil(scale * borderWidth / 2)) + 1)
        , inside(int(std::ceil(scale * (cornerRadius + borderWidth / 2))) + 1)
    {
    }

    Split x(Corner corner) const
    {
        return Split(corner.isRight ? selection.right() : selection.left());
    }
    Split y(Corner corner) const
    {
        return Split(corner.isTop ? selection.top() : selection.bottom());
    }

    const OverlayPicture &picture;
    double scale;
    QRectF selection; ///< native pixels, y down
    QColor color;
    int outside; ///< how far a corner's decal reaches out of the selection
    int inside; ///< and into it
};

QColor colorOf(CaptureMode mode)
{
    switch (mode) {
    case CaptureMode::normal:
        return SystemColors::white;
    case CaptureMode::copyImage:
        return SystemColors::blue;
    case CaptureMode::copyText:
        return SystemColors::orange;
    }
    Q_UNREACHABLE();
}

OverlayArtist::OverlayArtist(const QFont &font) : m_font(font)
{
    m_font.setWeight(QFont::Medium);
}

DisplayList OverlayArtist::draw(const OverlayPicture &picture)
{
    if (m_scale != picture.space.scale || m_decals.size() > mostDecals) {
        m_decals.clear();
        m_glyphs = {};
        m_scale = picture.space.scale;
        measureLabelFont(m_scale);
    }
    DisplayList list;
    list.veil = picture.dimmingOpacity;
    if (!picture.selection)
        return list;
    const Frame frame(picture);
    list.clear =
        QRect(QPoint(Split(frame.selection.left()).whole, Split(frame.selection.top()).whole),
              QPoint(Split(frame.selection.right()).whole - 1,
                     Split(frame.selection.bottom()).whole - 1));
    list.items.reserve(24 + picture.content.size());
    const int least = 2 * frame.inside + 1;
    if (list.clear.width() < least || list.clear.height() < least)
        drawSmallBorder(frame, list);
    else
        drawBorder(frame, list);
    if (picture.captureMode == CaptureMode::normal)
        drawHandles(frame, list);
    drawLabel(frame, list);
    list.items.insert(list.items.end(), picture.content.begin(), picture.content.end());
    return list;
}

void OverlayArtist::warmUp(const QFont &font)
{
    OverlayPicture picture;
    picture.space = {{640, 480}, 1};
    picture.selection = Rect{100, 100, 320, 240};
    OverlayArtist(font).draw(picture);
}

template <typename Draw>
DisplayList::Decal OverlayArtist::decal(const Key &key, QSize size, Draw draw)
{
    const auto kept = m_decals.constFind(key);
    if (kept != m_decals.constEnd())
        return *kept;
    return *m_decals.insert(key, drawn(size, draw));
}

/// The rounded border, and the veil between its corners and those of the sharp hole below it.
static void paintBorder(QPainter &painter, const QRectF &rect, const QRect &hole, double scale,
                        double veil, const QColor &color)
{
    QPainterPath path;
    path.addRoundedRect(rect, cornerRadius * scale, cornerRadius * scale);
    painter.setClipRect(hole);
    painter.fillRect(hole, QColor::fromRgbF(0, 0, 0, float(veil)));
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.fillPath(path, Qt::black);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setClipping(false);
    painter.strokePath(path, QPen(color, borderWidth * scale));
}

void OverlayArtist::drawSmallBorder(const Frame &frame, DisplayList &list)
{
    // Too small for corners that do not touch. Drawn anew for each size, hence not kept.
    const QRect bounds = list.clear.adjusted(-frame.outside - 1, -frame.outside - 1,
                                             frame.outside + 1, frame.outside + 1);
    DisplayList::Decal border = drawn(bounds.size(), [&](QPainter &painter) {
        painter.translate(-bounds.topLeft());
        paintBorder(painter, frame.selection, list.clear, frame.scale, list.veil, frame.color);
    });
    border.at = bounds.topLeft();
    list.items.emplace_back(border);
}

void OverlayArtist::drawBorder(const Frame &frame, DisplayList &list)
{
    const int side = frame.outside + frame.inside;
    for (size_t i = 0; i < std::size(corners); ++i) {
        const Corner corner = corners[i];
        const Split x = frame.x(corner);
        const Split y = frame.y(corner);
        const int left = corner.isRight ? frame.inside : frame.outside;
        const int top = corner.isTop ? frame.outside : frame.inside;
        const Key key{cornerKind + int(i),
                      {x.rest, y.rest, list.veil, double(frame.picture.captureMode)}};
        auto made = decal(key, QSize(side, side), [&](QPainter &painter) {
            const double far = 1000;
            const QRectF rect(QPointF(left + x.rest - (corner.isRight ? far : 0),
                                      top + y.rest - (corner.isTop ? 0 : far)),
                              QSizeF(far, far));
            const QRect hole(left - (corner.isRight ? int(far) : 0),
                             top - (corner.isTop ? 0 : int(far)), int(far), int(far));
            paintBorder(painter, rect, hole, frame.scale, list.veil, frame.color);
        });
        made.at = QPoint(x.whole - left, y.whole - top);
        list.items.emplace_back(made);
    }

    const double half = frame.scale * borderWidth / 2;
    const int left = Split(frame.selection.left()).whole + frame.inside;
    const int right = Split(frame.selection.right()).whole - frame.inside;
    const int top = Split(frame.selection.top()).whole + frame.inside;
    const int bottom = Split(frame.selection.bottom()).whole - frame.inside;
    for (const double y : {frame.selection.top(), frame.selection.bottom()}) {
        for (const Run &run : runsOf(y - half, y + half))
            list.items.emplace_back(DisplayList::Fill{{left, run.from, right - left, run.length},
                                                      premultiplied(frame.color, run.coverage)});
    }
    for (const double x : {frame.selection.left(), frame.selection.right()}) {
        for (const Run &run : runsOf(x - half, x + half))
            list.items.emplace_back(DisplayList::Fill{{run.from, top, run.length, bottom - top},
                                                      premultiplied(frame.color, run.coverage)});
    }
}

void OverlayArtist::drawHandles(const Frame &frame, DisplayList &list)
{
    const int out = int(std::ceil((handleOffset + handleWidth / 2) * frame.scale)) + 1;
    const int in = int(std::ceil((handleEnd - handleOffset + handleWidth / 2) * frame.scale)) + 1;
    for (size_t i = 0; i < std::size(corners); ++i) {
        const Corner corner = corners[i];
        const Split x = frame.x(corner);
        const Split y = frame.y(corner);
        const int left = corner.isRight ? in : out;
        const int top = corner.isTop ? out : in;
        const double opacity = frame.picture.handleOpacities[i];
        const Key key{handleKind + int(i),
                      {x.rest, y.rest, opacity, double(frame.picture.captureMode)}};
        auto made = decal(key, QSize(out + in, out + in), [&](QPainter &painter) {
            const double sx = corner.isRight ? -1 : 1;
            const double sy = corner.isTop ? 1 : -1;
            painter.translate(left + x.rest - sx * handleOffset * frame.scale,
                              top + y.rest - sy * handleOffset * frame.scale);
            painter.scale(sx, sy);
            QColor color = frame.color;
            color.setAlphaF(float(opacity));
            painter.strokePath(
                handlePath(frame.scale),
                QPen(color, handleWidth * frame.scale, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        });
        made.at = QPoint(x.whole - left, y.whole - top);
        list.items.emplace_back(made);
    }
}

void OverlayArtist::measureLabelFont(double scale)
{
    m_labelFont = m_font;
    m_labelFont.setPixelSize(qRound(labelFontSize * scale));
    const QFontMetricsF metrics(m_labelFont);
    double widest = 0;
    for (char digit = '0'; digit <= '9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
    m_digitWidth = int(std::ceil(widest));
    m_signWidth = int(std::ceil(metrics.horizontalAdvance(QChar(0xd7))));
    m_blankWidth = int(std::ceil(metrics.horizontalAdvance(QLatin1Char(' '))));
    m_textHeight = int(std::ceil(metrics.height()));
}

const DisplayList::Decal &OverlayArtist::labelGlyph(QChar c, int width)
{
    DisplayList::Decal &glyph =
        m_glyphs[c.isDigit() ? size_t(c.digitValue()) : m_glyphs.size() - 1];
    if (glyph.image.isNull()) {
        glyph = drawn(QSize(width, m_textHeight), [&](QPainter &painter) {
            painter.setFont(m_labelFont);
            painter.setPen(Qt::white);
            painter.drawText(QRect(0, 0, width, m_textHeight), Qt::AlignCenter, QString(c));
        });
    }
    return glyph;
}

void OverlayArtist::drawLabel(const Frame &frame, DisplayList &list)
{
    const double scale = frame.scale;
    const QString text = sizeLabelText(*frame.picture.selection, scale);
    const auto widthOf = [this](QChar c) {
        return c.isDigit() ? m_digitWidth : c.isSpace() ? m_blankWidth : m_signWidth;
    };
    int textWidth = 0;
    for (const QChar c : text)
        textWidth += widthOf(c);
    const Size box{textWidth / scale + 2 * labelPaddingX, m_textHeight / scale + 2 * labelPaddingY};
    const QRectF place = frame.picture.space.pixelsFromRect(sizeLabelFrame(
        *frame.picture.selection, frame.picture.space.size, box, frame.picture.isToolbarAtTop));
    const int margin = int(std::ceil(scale / 2));
    const QSize size(qRound(place.width()), qRound(place.height()));
    const QPoint at(qRound(place.x()), qRound(place.y()));
    auto back = decal({boxKind, {double(size.width()), double(size.height()), 0, 0}},
                      size + QSize(2 * margin, 2 * margin), [&](QPainter &painter) {
                          painter.translate(margin, margin);
                          painter.setBrush(QColor(255, 255, 255, 77));
                          painter.setPen(QPen(QColor(255, 255, 255, 128), scale));
                          painter.drawRoundedRect(QRectF(QPointF(), size), labelRadius * scale,
                                                  labelRadius * scale);
                      });
    back.at = at - QPoint(margin, margin);
    list.items.emplace_back(back);

    int x = at.x() + qRound(labelPaddingX * scale);
    const int y = at.y() + qRound(labelPaddingY * scale);
    for (const QChar c : text) {
        const int width = widthOf(c);
        if (!c.isSpace()) {
            DisplayList::Decal glyph = labelGlyph(c, width);
            glyph.at = QPoint(x, y);
            list.items.emplace_back(glyph);
        }
        x += width;
    }
}

} // namespace tovek
