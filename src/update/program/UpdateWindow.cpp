// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/program/UpdateWindow.h"

#include "foundation/Symbol.h"
#include "foundation/SystemColors.h"
#include "look/ModernStyle.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

#include <algorithm>

namespace tovek {

namespace {

constexpr int iconSide = 56;
constexpr int bodyWidth = 380;
constexpr int smallestButton = 92;
constexpr int buttonPadding = 14;
constexpr double titleScale = 1.1;

/// Drawn for the screen that it is on.
class IconView : public QWidget
{
public:
    IconView(UpdateWindow::Icon icon, QWidget *parent)
        : QWidget(parent)
        , m_icon(icon == UpdateWindow::Icon::program
                     ? Symbol::fromFile(QStringLiteral(":/org.tovek.Tovek.svg"))
                     : Symbol::named(QStringLiteral("exclamationmark.triangle.fill")))
    {
        setFixedSize(iconSide, iconSide);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (m_icon)
            m_icon->paint(painter, rect(), SystemColors::orange);
    }

private:
    std::optional<Symbol> m_icon;
};

QLabel *textLabel(QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setFixedWidth(bodyWidth);
    return label;
}

} // namespace

UpdateWindow::UpdateWindow(Icon icon, const QString &title, const QString &text)
    : m_title(textLabel(this))
    , m_text(textLabel(this))
    , m_body(new QVBoxLayout)
    , m_buttons(new QHBoxLayout)
{
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint
                   | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
    QFont bold = m_title->font();
    bold.setPointSizeF(bold.pointSizeF() * titleScale);
    bold.setWeight(QFont::DemiBold);
    m_title->setFont(bold);
    m_body->setSpacing(6);
    m_body->addWidget(m_title);
    m_body->addWidget(m_text);

    auto *top = new QHBoxLayout;
    top->setSpacing(16);
    top->addWidget(new IconView(icon, this), 0, Qt::AlignTop);
    auto *column = new QVBoxLayout;
    column->addLayout(m_body);
    column->addStretch();
    top->addLayout(column);
    m_buttons->setSpacing(8);
    m_buttons->addStretch();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 20, 20, 16);
    layout->setSpacing(16);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addLayout(top);
    layout->addLayout(m_buttons);
    setText(title, text);
}

void UpdateWindow::setText(const QString &title, const QString &text)
{
    m_title->setText(title);
    m_text->setText(text);
    m_text->setVisible(!text.isEmpty());
    for (QLabel *label : {m_title, m_text})
        label->setMinimumHeight(std::max(0, label->heightForWidth(bodyWidth)));
    setWindowTitle(title);
    setAccessibleName(title);
    setAccessibleDescription(text);
}

void UpdateWindow::addBody(QWidget *body)
{
    m_body->addSpacing(4);
    m_body->addWidget(body);
}

QPushButton *UpdateWindow::addButton(const QString &text, Side side, bool isDefault)
{
    auto *button = new QPushButton(text, this);
    button->setMinimumWidth(
        std::max(smallestButton, fontMetrics().horizontalAdvance(text) + 2 * buttonPadding));
    button->setAutoDefault(isDefault);
    button->setDefault(isDefault);
    if (side == Side::left)
        m_buttons->insertWidget(m_leftButtons++, button);
    else
        m_buttons->addWidget(button);
    if (isDefault)
        button->setFocus();
    return button;
}

} // namespace tovek
