// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/TextBlock.h"

#include <QFont>
#include <QPainter>
#include <QTextLayout>

namespace tovek {

namespace {

/// Wide enough for any line; a layout without a width would not place its glyphs.
constexpr double unboundedWidth = 1 << 20;

std::unique_ptr<QTextLayout> laidOut(const QString &text, const QFont &font)
{
    auto layout = std::make_unique<QTextLayout>(text, font);
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setWrapMode(QTextOption::NoWrap);
    option.setUseDesignMetrics(true);
    option.setTextDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    layout->setTextOption(option);
    layout->setCacheEnabled(true);
    layout->beginLayout();
    QTextLine line = layout->createLine();
    line.setLeadingIncluded(true);
    line.setLineWidth(unboundedWidth);
    layout->endLayout();
    return layout;
}

bool runsRightToLeft(const QTextLayout &layout)
{
    return layout.text().isRightToLeft();
}

} // namespace

TextBlock::TextBlock(const QString &text, const QFont &font)
{
    for (const QString &paragraph : text.split(QLatin1Char('\n'))) {
        m_lines.push_back(laidOut(paragraph, font));
        const QTextLine line = m_lines.back()->lineAt(0);
        m_size.width = std::max(m_size.width, line.naturalTextWidth());
        m_size.height += line.height();
    }
    double y = 0;
    for (const auto &layout : m_lines) {
        QTextLine line = layout->lineAt(0);
        const double slack = m_size.width - line.naturalTextWidth();
        line.setPosition({runsRightToLeft(*layout) ? slack : 0, y});
        y += line.height();
    }
}

TextBlock::~TextBlock() = default;
TextBlock::TextBlock(TextBlock &&) noexcept = default;

void TextBlock::draw(QPainter &painter, QPointF topLeft, const QColor &color) const
{
    painter.setPen(color);
    for (const auto &layout : m_lines)
        layout->draw(&painter, topLeft);
}

} // namespace tovek
