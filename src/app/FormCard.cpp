// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/FormCard.h"

#include "foundation/Symbol.h"
#include "look/ModernStyle.h"
#include "look/ScaledLabel.h"

#include <QAbstractButton>
#include <QEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>

namespace tovek {

namespace {

constexpr double cornerRadius = 10;
constexpr int padding = 12;
constexpr int symbolSide = 18;
constexpr int symbolGap = 10;
constexpr double noteScale = 0.84;

/// Painted anew at every scale and in every palette.
class SymbolView : public QWidget
{
public:
    SymbolView(const QString &name, QWidget *parent)
        : QWidget(parent)
        , m_symbol(Symbol::named(name))
    {
        setFixedSize(symbolSide, symbolSide);
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const auto group = isEnabled() ? QPalette::Active : QPalette::Disabled;
        if (m_symbol)
            m_symbol->paint(painter, rect(), palette().color(group, QPalette::WindowText));
    }

private:
    std::optional<Symbol> m_symbol;
};

} // namespace

FormRow::FormRow(const QString &symbol, const QString &label, QWidget *parent)
    : QWidget(parent)
    , m_label(new QLabel(label, this))
    , m_note(new ScaledLabel({}, noteScale, this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(padding, 0, padding, 0);
    layout->setSpacing(symbolGap);
    layout->addWidget(new SymbolView(symbol, this));
    auto *texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addStretch();
    texts->addWidget(m_label);
    texts->addWidget(m_note);
    texts->addStretch();
    layout->addLayout(texts);
    layout->addStretch();
    m_note->hide();
    colorNote();
}

void FormRow::addControl(QWidget *control)
{
    auto *row = static_cast<QHBoxLayout *>(layout());
    row->addWidget(control);
    if (m_control)
        return;
    m_control = control;
    control->setAccessibleName(m_label->text());
    m_label->setBuddy(control);
}

void FormRow::setNote(const QString &note)
{
    m_note->setText(note);
    m_note->setVisible(!note.isEmpty());
    if (m_control)
        m_control->setAccessibleDescription(note);
}

void FormRow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        colorNote();
    QWidget::changeEvent(event);
}

void FormRow::mouseReleaseEvent(QMouseEvent *event)
{
    auto *button = qobject_cast<QAbstractButton *>(m_control);
    if (button && button->isCheckable() && event->button() == Qt::LeftButton
        && rect().contains(event->position().toPoint()))
        button->click();
}

void FormRow::colorNote()
{
    QPalette colors;
    colors.setColor(QPalette::WindowText, ModernStyle::warningTextColor(palette()));
    m_note->setPalette(colors);
}

FormCard::FormCard(int rowHeight, QWidget *parent)
    : QWidget(parent)
    , m_rowHeight(rowHeight)
    , m_rows(new QVBoxLayout(this))
{
    m_rows->setContentsMargins(0, 0, 0, 0);
    m_rows->setSpacing(0);
}

FormRow *FormCard::addRow(const QString &symbol, const QString &label)
{
    auto *row = new FormRow(symbol, label, this);
    row->setLeastHeight(m_rowHeight);
    m_rows->addWidget(row);
    return row;
}

void FormCard::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF ground = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(QPen(ModernStyle::separatorColor(palette()), 1));
    painter.setBrush(ModernStyle::cardColor(palette()));
    painter.drawRoundedRect(ground, cornerRadius, cornerRadius);
    const int begin = padding + symbolSide + symbolGap;
    const QRect line = QStyle::visualRect(layoutDirection(), rect(),
                                          QRect(begin, 0, width() - padding - begin, 1));
    for (int row = 1; row < m_rows->count(); ++row) {
        const double y = m_rows->itemAt(row)->geometry().top() + 0.5;
        painter.drawLine(QPointF(line.left(), y), QPointF(line.left() + line.width(), y));
    }
}

} // namespace tovek
