// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Symbol.h"

#include "foundation/Log.h"
#include "foundation/SvgPath.h"

#include <QFile>
#include <QPainter>
#include <QXmlStreamReader>

#include <cmath>

// The resources lie in a static library: without this call the linker would leave them out.
static void initResources()
{
    Q_INIT_RESOURCE(tovek);
}

namespace tovek {

class Symbol::Parser
{
public:
    explicit Parser(QIODevice &device) : m_xml(&device) { }

    std::optional<Symbol> parse()
    {
        Symbol symbol;
        std::vector<Style> styles{Style()};
        while (!m_xml.atEnd()) {
            const auto token = m_xml.readNext();
            if (token == QXmlStreamReader::StartElement) {
                styles.push_back(styled(styles.back()));
                if (m_xml.name() == QLatin1String("svg"))
                    symbol.m_size = QSizeF(number("width"), number("height"));
                else if (m_xml.name() != QLatin1String("g"))
                    add(symbol, styles.back());
            } else if (token == QXmlStreamReader::EndElement) {
                styles.pop_back();
            }
        }
        if (m_xml.hasError() || m_isBroken || symbol.m_size.isEmpty())
            return std::nullopt;
        return symbol;
    }

private:
    QStringView text(const char *name) const
    {
        return m_xml.attributes().value(QLatin1String(name));
    }

    double number(const char *name, double missing = 0) const
    {
        return text(name).isEmpty() ? missing : text(name).toDouble();
    }

    Ink ink(const char *name, const char *opacity, const Ink &inherited) const
    {
        Ink ink = inherited;
        const QStringView value = text(name);
        if (!value.isEmpty()) {
            ink.isNone = value == QLatin1String("none");
            ink.fixed = value.startsWith(QLatin1Char('#')) ? QColor(value.toString()) : QColor();
        }
        ink.opacity = number(opacity, inherited.opacity);
        return ink;
    }

    Style styled(const Style &inherited) const
    {
        Style style = inherited;
        style.fill = ink("fill", "fill-opacity", inherited.fill);
        style.stroke = ink("stroke", "stroke-opacity", inherited.stroke);
        style.strokeWidth = number("stroke-width", inherited.strokeWidth);
        if (!text("fill-rule").isEmpty()) {
            style.fillRule =
                text("fill-rule") == QLatin1String("evenodd") ? Qt::OddEvenFill : Qt::WindingFill;
        }
        return style;
    }

    void add(Symbol &symbol, const Style &style)
    {
        const std::optional<QPainterPath> path = shape();
        m_isBroken |= !path;
        if (!path)
            return;
        symbol.m_shapes.push_back({*path, style});
        symbol.m_shapes.back().path.setFillRule(style.fillRule);
    }

    std::optional<QPainterPath> shape()
    {
        const QStringView element = m_xml.name();
        QPainterPath path;
        if (element == QLatin1String("path"))
            return pathFromSvg(text("d"));
        if (element == QLatin1String("circle")) {
            path.addEllipse(QPointF(number("cx"), number("cy")), number("r"), number("r"));
        } else if (element == QLatin1String("rect")) {
            path.addRoundedRect(QRectF(number("x"), number("y"), number("width"), number("height")),
                                number("rx"), number("rx"));
        } else if (element == QLatin1String("line")) {
            path.moveTo(number("x1"), number("y1"));
            path.lineTo(number("x2"), number("y2"));
        } else if (element == QLatin1String("polyline")) {
            return pathFromSvg(QString(QLatin1Char('M') + text("points").toString()));
        } else {
            return std::nullopt;
        }
        return path;
    }

    QXmlStreamReader m_xml;
    bool m_isBroken = false;
};

std::optional<Symbol> Symbol::named(const QString &name)
{
    return fromFile(QStringLiteral(":/symbols/%1.svg").arg(name));
}

std::optional<Symbol> Symbol::fromFile(const QString &path)
{
    initResources();
    QFile file(path);
    std::optional<Symbol> symbol;
    if (file.open(QIODevice::ReadOnly))
        symbol = read(file);
    if (!symbol)
        logLine(QStringLiteral("Failed to read symbol %1").arg(path));
    return symbol;
}

std::optional<Symbol> Symbol::read(QIODevice &device)
{
    return Parser(device).parse();
}

void Symbol::paint(QPainter &painter, const QRectF &into, const QColor &color) const
{
    const double scale = std::min(into.width() / m_size.width(), into.height() / m_size.height());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(into.center());
    painter.scale(scale, scale);
    painter.translate(-m_size.width() / 2, -m_size.height() / 2);
    for (const Shape &shape : m_shapes) {
        const Style &style = shape.style;
        if (!style.fill.isNone)
            painter.fillPath(shape.path, style.fill.mixed(color));
        if (!style.stroke.isNone) {
            painter.strokePath(shape.path,
                               QPen(style.stroke.mixed(color), style.strokeWidth, Qt::SolidLine,
                                    Qt::RoundCap, Qt::RoundJoin));
        }
    }
    painter.restore();
}

QImage Symbol::image(double side, double scale, const QColor &color) const
{
    const int pixels = int(std::ceil(side * scale));
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    image.setDevicePixelRatio(scale);
    QPainter painter(&image);
    paint(painter, QRectF(0, 0, side, side), color);
    return image;
}

QImage symbolImage(const QString &name, const QColor &color, double points, double devicePixelRatio)
{
    // The grid has air around the drawing, which the font's size has not.
    constexpr double gridPerPoint = 1.2;
    const std::optional<Symbol> symbol = Symbol::named(name);
    return symbol ? symbol->image(points * gridPerPoint, devicePixelRatio, color) : QImage();
}

QColor Symbol::Ink::mixed(const QColor &current) const
{
    QColor color = fixed.isValid() ? fixed : current;
    color.setAlphaF(color.alphaF() * float(opacity));
    return color;
}

} // namespace tovek
