// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/AlertSheet.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QIconEngine>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>

namespace KeyboardShortcuts {

namespace {

constexpr int textWidth = 300;
constexpr int iconSize = 44;
constexpr int smallestButton = 92;
const QColor warningColor(0xff, 0x9f, 0x0a);

/// A triangle with an exclamation mark; sharp at every scale, whatever icons the desktop has.
class WarningIcon : public QIconEngine
{
public:
    void paint(QPainter *painter, const QRect &rect, QIcon::Mode, QIcon::State) override
    {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / 44.0, rect.height() / 44.0);
        QPainterPath triangle;
        triangle.moveTo(22, 7);
        triangle.lineTo(39, 37);
        triangle.lineTo(5, 37);
        triangle.closeSubpath();
        painter->setPen(QPen(warningColor, 6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->setBrush(warningColor);
        painter->drawPath(triangle);
        painter->setPen(QPen(Qt::white, 3.6, Qt::SolidLine, Qt::RoundCap));
        painter->drawLine(QPointF(22, 17), QPointF(22, 26));
        painter->drawPoint(QPointF(22, 33));
        painter->restore();
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }
    QIconEngine *clone() const override { return new WarningIcon; } // the icon owns it
};

QLabel *textLabel(const QString &text, double scale, QFont::Weight weight, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * scale);
    font.setWeight(weight);
    label->setFont(font);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setFixedWidth(textWidth);
    label->setMinimumHeight(label->heightForWidth(textWidth));
    return label;
}

} // namespace

AlertSheet::AlertSheet(const Content &content, QWidget &owner) : QDialog(owner.window())
{
    setAttribute(Qt::WA_DeleteOnClose);
    const bool hasWindow = !owner.isWindow() && owner.window()->isVisible();
    setWindowModality(hasWindow ? Qt::WindowModal : Qt::ApplicationModal);
    setWindowTitle(owner.window()->windowTitle());
    setAccessibleName(content.message);
    setAccessibleDescription(content.information);

    auto *texts = new QVBoxLayout;
    texts->setSpacing(6);
    texts->addWidget(textLabel(content.message, 1, QFont::DemiBold, this));
    if (!content.information.isEmpty())
        texts->addWidget(textLabel(content.information, 0.92, QFont::Normal, this));
    texts->addStretch();

    auto *icon = new QLabel(this);
    const bool isWarning = content.style == Style::warning;
    const QIcon picture = isWarning ? QIcon(new WarningIcon) : QApplication::windowIcon();
    icon->setPixmap(picture.pixmap(QSize(iconSize, iconSize), devicePixelRatioF()));
    icon->setVisible(!picture.isNull());
    auto *top = new QHBoxLayout;
    top->setSpacing(16);
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addLayout(texts);

    auto *bottom = new QHBoxLayout;
    bottom->setSpacing(8);
    bottom->addStretch();
    for (const QString &text : content.buttons) {
        auto *button = new QPushButton(text, this);
        button->setMinimumWidth(smallestButton);
        button->setAutoDefault(true);
        button->setDefault(m_buttons.isEmpty());
        const int number = int(m_buttons.size());
        connect(button, &QPushButton::clicked, this, [this, number] { done(number); });
        bottom->insertWidget(1, button);
        m_buttons.append(button);
    }
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 20, 20, 16);
    layout->setSpacing(18);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addLayout(top);
    layout->addLayout(bottom);
    if (!m_buttons.isEmpty())
        m_buttons.first()->setFocus();
}

} // namespace KeyboardShortcuts
