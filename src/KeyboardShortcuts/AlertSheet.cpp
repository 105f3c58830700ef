// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/AlertSheet.h"

#include "KeyboardShortcuts/WarningIcon.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>

namespace KeyboardShortcuts {

namespace {

constexpr int textWidth = 300;
constexpr int iconSize = 44;
constexpr int smallestButton = 92;

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
    setWindowTitle(content.message);
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
    const QIcon picture = isWarning ? warningIcon() : QApplication::windowIcon();
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
