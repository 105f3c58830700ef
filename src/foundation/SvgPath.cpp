// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/SvgPath.h"

#include <cmath>

namespace tovek {

namespace {

constexpr double degrees = 180 / M_PI;

/// An elliptical arc without rotation, as SVG gives it: by its end point.
struct Arc
{
    double rx;
    double ry;
    bool isLarge;
    bool isClockwise; ///< on the screen, y down
    QPointF to;
};

/// Converts to a centre and angles as Qt takes them: counter-clockwise, in degrees.
void addArc(QPainterPath &path, const Arc &arc)
{
    const QPointF from = path.currentPosition();
    if (arc.rx == 0 || arc.ry == 0) {
        path.lineTo(arc.to);
        return;
    }
    // In the space in which the ellipse is the unit circle.
    const QPointF a(from.x() / arc.rx, from.y() / arc.ry);
    const QPointF b(arc.to.x() / arc.rx, arc.to.y() / arc.ry);
    const QPointF half = (b - a) / 2;
    const double squared = QPointF::dotProduct(half, half);
    if (squared == 0)
        return;
    // Radii that do not reach grow until they do.
    const double grown = std::max(1.0, std::sqrt(squared));
    const double height = std::sqrt(std::max(0.0, grown * grown / squared - 1));
    const double side = arc.isLarge == arc.isClockwise ? 1 : -1;
    const QPointF center = (a + b) / 2 + side * height * QPointF(half.y(), -half.x());
    const double start = std::atan2(-(a.y() - center.y()), a.x() - center.x()) * degrees;
    const double end = std::atan2(-(b.y() - center.y()), b.x() - center.x()) * degrees;
    double sweep = end - start;
    if (arc.isClockwise && sweep > 0)
        sweep -= 360;
    else if (!arc.isClockwise && sweep < 0)
        sweep += 360;
    const QRectF bounds((center.x() - grown) * arc.rx, (center.y() - grown) * arc.ry,
                        2 * grown * arc.rx, 2 * grown * arc.ry);
    path.arcTo(bounds, start, sweep);
}

class Reader
{
public:
    explicit Reader(QStringView data) : m_rest(data) { }

    std::optional<QPainterPath> path()
    {
        while (skipBlanks(), !m_rest.isEmpty()) {
            if (m_rest[0].isLetter()) {
                m_command = m_rest[0];
                m_rest = m_rest.mid(1);
                m_isFirst = true;
            }
            if (m_path.elementCount() == 0 && m_command.toLower() != QLatin1Char('m'))
                return std::nullopt;
            addSegment();
            if (m_isBroken)
                return std::nullopt;
            m_isFirst = false;
        }
        return m_path;
    }

private:
    void addSegment()
    {
        switch (m_command.toLower().toLatin1()) {
        case 'm': {
            const QPointF to = point();
            // Further pairs after a move are lines.
            m_isFirst ? m_path.moveTo(to) : m_path.lineTo(to);
            break;
        }
        case 'l':
            m_path.lineTo(point());
            break;
        case 'h':
            m_path.lineTo(number() + base().x(), m_path.currentPosition().y());
            break;
        case 'v':
            m_path.lineTo(m_path.currentPosition().x(), number() + base().y());
            break;
        case 'c': {
            const QPointF first = point();
            const QPointF second = point();
            m_path.cubicTo(first, second, point());
            break;
        }
        case 'q': {
            const QPointF control = point();
            m_path.quadTo(control, point());
            break;
        }
        case 'a':
            addArc(m_path, arc());
            break;
        case 'z':
            if (!m_isFirst)
                m_isBroken = true;
            m_path.closeSubpath();
            break;
        default:
            m_isBroken = true;
        }
    }

    Arc arc()
    {
        Arc arc{};
        arc.rx = std::abs(number());
        arc.ry = std::abs(number());
        if (number() != 0)
            m_isBroken = true;
        arc.isLarge = flag();
        arc.isClockwise = flag();
        arc.to = point();
        return arc;
    }

    QPointF base() const { return m_command.isLower() ? m_path.currentPosition() : QPointF(); }

    QPointF point()
    {
        const QPointF origin = base();
        const double x = number();
        return origin + QPointF(x, number());
    }

    /// One digit; arcs may leave out the blank behind it.
    bool flag()
    {
        skipBlanks();
        if (m_rest.isEmpty() || (m_rest[0] != QLatin1Char('0') && m_rest[0] != QLatin1Char('1'))) {
            m_isBroken = true;
            return false;
        }
        const bool isSet = m_rest[0] == QLatin1Char('1');
        m_rest = m_rest.mid(1);
        return isSet;
    }

    double number()
    {
        skipBlanks();
        qsizetype end = 0;
        bool hasPoint = false;
        while (end < m_rest.size()) {
            const QChar c = m_rest[end];
            const bool isSign = c == QLatin1Char('-') || c == QLatin1Char('+');
            const bool isPoint = c == QLatin1Char('.');
            if (isSign ? end > 0 : isPoint ? hasPoint : !c.isDigit())
                break;
            hasPoint |= isPoint;
            ++end;
        }
        bool isNumber = false;
        const double value = m_rest.left(end).toDouble(&isNumber);
        m_isBroken |= !isNumber;
        m_rest = m_rest.mid(end);
        return value;
    }

    void skipBlanks()
    {
        qsizetype count = 0;
        while (count < m_rest.size()
               && (m_rest[count].isSpace() || m_rest[count] == QLatin1Char(',')))
            ++count;
        m_rest = m_rest.mid(count);
    }

    QStringView m_rest;
    QPainterPath m_path;
    QChar m_command;
    bool m_isFirst = true; ///< of the segments of a command
    bool m_isBroken = false;
};

} // namespace

std::optional<QPainterPath> pathFromSvg(QStringView data)
{
    return Reader(data).path();
}

} // namespace tovek
