// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/ShortcutsTabView.h"

#include "KeyboardShortcuts/ShortcutService.h"
#include "app/AppShortcuts.h"
#include "app/FormCard.h"
#include "look/ModernStyle.h"

#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace tovek {

using KeyboardShortcuts::RecorderCocoa;

namespace {

constexpr int rowHeight = 46;
constexpr int margin = 16;
constexpr int hintSize = 11;
constexpr KeyboardShortcuts::Shortcut printScreen{105, 0};

struct Row
{
    const char *symbol;
    const char *label;
    const KeyboardShortcuts::Name &(*name)();
};

constexpr Row rows[] = {
    {"camera.viewfinder", QT_TRANSLATE_NOOP("ShortcutsTabView", "Start Capture"),
     &AppShortcuts::captureScreenshot},
    {"photo", QT_TRANSLATE_NOOP("ShortcutsTabView", "Capture Image"), &AppShortcuts::captureImage},
    {"text.viewfinder", QT_TRANSLATE_NOOP("ShortcutsTabView", "Capture Text"),
     &AppShortcuts::captureText},
};

} // namespace

ShortcutsTabView::ShortcutsTabView(KeyboardShortcuts::ShortcutService &service,
                                   const KeyboardShortcuts::RecorderSetup &setup, QWidget *parent)
    : QWidget(parent)
    , m_service(service)
    , m_hint(new QLabel(tr("Click to record a shortcut, then press your desired key combination"),
                        this))
{
    auto *card = new FormCard(rowHeight, this);
    for (const Row &row : rows) {
        FormRow *place = card->addRow(QLatin1String(row.symbol), tr(row.label));
        auto *recorder = new RecorderCocoa(row.name(), service, setup, place);
        if (!m_usePrint)
            addUsePrint(recorder, place);
        place->addControl(recorder);
    }
    QFont small = m_hint->font();
    small.setPixelSize(hintSize);
    m_hint->setFont(small);
    m_hint->setAlignment(Qt::AlignCenter);
    colorHint();

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, 8, margin, margin);
    layout->setSpacing(14);
    layout->addStretch();
    layout->addWidget(card);
    layout->addWidget(m_hint);
    layout->addStretch();

    m_shortcutToken =
        service.notifications().observe(KeyboardShortcuts::shortcutByNameDidChange,
                                        [this](const QVariantMap &) { showUsePrint(); });
    showUsePrint();
}

void ShortcutsTabView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        colorHint();
    QWidget::changeEvent(event);
}

void ShortcutsTabView::addUsePrint(RecorderCocoa *recorder, QWidget *row)
{
    m_usePrint = new QPushButton(tr("Use Print"), row);
    m_usePrint->setToolTip(tr("Start a capture with the Print Screen key"));
    m_usePrint->setAccessibleDescription(m_usePrint->toolTip());
    static_cast<QBoxLayout *>(row->layout())->addWidget(m_usePrint);
    // It stands on the left of the recorder.
    setTabOrder(m_usePrint, recorder);
    connect(m_usePrint, &QPushButton::clicked, recorder,
            [recorder] { recorder->record(printScreen); });
}

void ShortcutsTabView::showUsePrint()
{
    const bool hasAny = std::any_of(std::begin(rows), std::end(rows), [this](const Row &row) {
        return m_service.shortcut(row.name()).has_value();
    });
    m_usePrint->setVisible(!hasAny);
}

void ShortcutsTabView::colorHint()
{
    QPalette colors;
    colors.setColor(QPalette::WindowText, ModernStyle::secondaryTextColor(palette()));
    m_hint->setPalette(colors);
}

} // namespace tovek
