// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/CommandsTabView.h"

#include "app/FormCard.h"
#include "look/ModernStyle.h"

#include <QEvent>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tovek {

namespace {

constexpr int rowHeight = 46;
constexpr int margin = 16;
constexpr int hintSize = 11;
constexpr int lineWidth = 190;
constexpr quint32 printScreen = 105;

struct Row
{
    const char *symbol;
    const char *label;
    const char *option;
    KeyCombo suggested;
};

constexpr Row rows[] = {
    {"camera.viewfinder",
     QT_TRANSLATE_NOOP("ShortcutsTabView", "Start Capture"),
     "--capture",
     {printScreen, 0}},
    {"photo",
     QT_TRANSLATE_NOOP("ShortcutsTabView", "Capture Image"),
     "--capture-image",
     {printScreen, ComboModifier::shift}},
    {"text.viewfinder",
     QT_TRANSLATE_NOOP("ShortcutsTabView", "Capture Text"),
     "--capture-text",
     {printScreen, ComboModifier::control}},
};

} // namespace

CommandsTabView::CommandsTabView(const QString &program, const Binding &binding,
                                 const std::function<void(const QString &)> &copy, QWidget *parent)
    : QWidget(parent)
    , m_hint(new QLabel(this))
{
    auto *card = new FormCard(rowHeight, this);
    QString place;
    for (const Row &row : rows) {
        const auto bound =
            binding(row.suggested, program + QLatin1Char(' ') + QLatin1String(row.option));
        if (!bound)
            continue;
        place = bound->place;
        FormRow *form = card->addRow(QLatin1String(row.symbol), tr(row.label));
        auto *line = new QLineEdit(bound->line.simplified(), form);
        line->setReadOnly(true);
        line->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        line->setFixedWidth(lineWidth);
        line->setCursorPosition(0);
        line->setToolTip(bound->line);
        form->addControl(line);
        auto *button = new QPushButton(tr("Copy"), form);
        button->setAccessibleDescription(bound->line);
        form->addControl(button);
        connect(button, &QPushButton::clicked, button, [copy, button, text = bound->line] {
            copy(text);
            button->setText(tr("Copied"));
        });
    }
    m_hint->setText(tr("This desktop gives its keys to no program. To give one to Tovek, write a "
                       "line into:\n%1")
                        .arg(place));
    QFont small = m_hint->font();
    small.setPixelSize(hintSize);
    m_hint->setFont(small);
    m_hint->setAlignment(Qt::AlignCenter);
    m_hint->setWordWrap(true);
    m_hint->setTextInteractionFlags(Qt::TextSelectableByMouse);
    colorHint();

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, 8, margin, margin);
    layout->setSpacing(14);
    layout->addStretch();
    layout->addWidget(card);
    layout->addWidget(m_hint);
    layout->addStretch();
}

void CommandsTabView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        colorHint();
    QWidget::changeEvent(event);
}

void CommandsTabView::colorHint()
{
    QPalette colors;
    colors.setColor(QPalette::WindowText, ModernStyle::secondaryTextColor(palette()));
    m_hint->setPalette(colors);
}

} // namespace tovek
