// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/ShortcutsTabView.h"

#include "KeyboardShortcuts/ShortcutService.h"
#include "app/AppShortcuts.h"
#include "app/FormCard.h"
#include "app/SettingsWindow.h"
#include "app/ShortcutObserver.h"
#include "look/ModernStyle.h"
#include "look/ScaledLabel.h"
#include "platform/SystemShortcuts.h"

#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace tovek {

using KeyboardShortcuts::RecorderCocoa;
using KeyboardShortcuts::Shortcut;

namespace {

constexpr int rowHeight = 46;
constexpr int margin = 16;
constexpr double hintScale = 0.84;
constexpr int tablesDelay = 300; // ms
constexpr int giveBackDelay = 5000; // ms
constexpr Shortcut printScreen{105, 0};
const char hint[] = QT_TRANSLATE_NOOP(
    "ShortcutsTabView", "Click to record a shortcut, then press your desired key combination");

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

QString rowTitle(const KeyboardShortcuts::Name &name)
{
    const auto found = std::find_if(std::begin(rows), std::end(rows),
                                    [&](const Row &row) { return row.name() == name; });
    return found == std::end(rows) ? name.rawValue : ShortcutsTabView::tr(found->label);
}

} // namespace

ShortcutsTabView::ShortcutsTabView(KeyboardShortcuts::ShortcutService &service,
                                   const KeyboardShortcuts::RecorderSetup &setup, QWidget *parent)
    : QWidget(parent)
    , m_service(service)
    , m_systemShortcuts(setup.systemShortcuts)
    , m_observer(new ShortcutObserver(service.notifications(), this))
    , m_hint(new ScaledLabel({}, hintScale, this))
{
    KeyboardShortcuts::RecorderSetup ours = setup;
    ours.titleOf = &rowTitle;
    ours.holderOf = [this](const Shortcut &shortcut) { return explanation(shortcut); };
    auto *card = new FormCard(rowHeight, this);
    for (const Row &row : rows) {
        FormRow *place = card->addRow(QLatin1String(row.symbol), tr(row.label));
        auto *recorder = new RecorderCocoa(row.name(), service, ours, place);
        m_rows.push_back(place);
        if (!m_usePrint)
            addUsePrint(recorder, place);
        place->addControl(recorder);
    }
    m_hint->setAlignment(Qt::AlignCenter);
    m_hint->setTextFormat(Qt::PlainText);
    m_hint->setWordWrap(true);
    colorHint();

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, 8, margin, margin);
    layout->setSpacing(14);
    layout->addStretch();
    layout->addWidget(card);
    layout->addWidget(m_hint);
    layout->addStretch();

    connect(m_observer, &ShortcutObserver::changed, this, [this] {
        m_wantsPrint = false;
        givePrintBack();
        showUsePrint();
        showRefusals();
    });
    m_registrationToken = service.notifications().observe(
        KeyboardShortcuts::registrationDidChange, [this](const QVariantMap &) { showRefusals(); });
    showUsePrint();
    setHint(usualHint());
}

void ShortcutsTabView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        colorHint();
    QWidget::changeEvent(event);
}

void ShortcutsTabView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    setHint(m_hint->text());
}

void ShortcutsTabView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_service.retryRefused();
    if (m_systemShortcuts)
        m_systemShortcuts->refresh();
    // Time for the desktop's tables, for which the window shall not wait.
    QTimer::singleShot(tablesDelay, this, [this] {
        tellWhatPrintCosts();
        showRefusals();
        givePrintBack();
    });
}

void ShortcutsTabView::addUsePrint(RecorderCocoa *recorder, QWidget *row)
{
    m_usePrint = new QPushButton(tr("Use Print"), row);
    m_usePrint->setToolTip(tr("Start a capture with the Print Screen key"));
    m_usePrint->setAccessibleDescription(m_usePrint->toolTip());
    static_cast<QBoxLayout *>(row->layout())->addWidget(m_usePrint);
    // It stands on the left of the recorder.
    setTabOrder(m_usePrint, recorder);
    connect(m_usePrint, &QPushButton::clicked, recorder, [this, recorder] { usePrint(*recorder); });
}

void ShortcutsTabView::tellWhatPrintCosts()
{
    constexpr KeyCombo print{quint32(printScreen.carbonKeyCode),
                             quint32(printScreen.carbonModifiers)};
    const bool isTakeable =
        m_taken.store && m_systemShortcuts && m_systemShortcuts->canTakeAway(print);
    const auto use = isTakeable ? m_systemShortcuts->use(print) : std::nullopt;
    m_printCosts = use ? tr("“Use Print” takes the key from %1, which gets it back when the "
                            "shortcut is cleared.")
                             .arg(use->user)
                       : QString();
    const QString purpose = tr("Start a capture with the Print Screen key");
    m_usePrint->setToolTip(use ? purpose + QStringLiteral(". ") + m_printCosts : purpose);
    m_usePrint->setAccessibleDescription(m_usePrint->toolTip());
}

void ShortcutsTabView::takePrintFromDesktop()
{
    const QString taken = m_systemShortcuts->takeAway(
        {quint32(printScreen.carbonKeyCode), quint32(printScreen.carbonModifiers)});
    if (!taken.isEmpty())
        m_taken.store(taken);
}

bool ShortcutsTabView::isPrintIdle() const
{
    const bool isUsed = std::any_of(std::begin(rows), std::end(rows), [this](const Row &row) {
        return m_service.shortcut(row.name()) == printScreen;
    });
    return !isUsed && m_taken.stored && !m_taken.stored().isEmpty();
}

void ShortcutsTabView::givePrintBack()
{
    if (!isPrintIdle())
        return;
    // The desktop takes it only when ours has gone, for which hot keys may take some seconds.
    QTimer::singleShot(giveBackDelay, this, [this] {
        if (!isPrintIdle() || !m_systemShortcuts)
            return;
        const QString taken = m_taken.stored();
        m_taken.store({});
        m_systemShortcuts->giveBack(taken);
        tellWhatPrintCosts();
        showRefusals();
    });
}

void ShortcutsTabView::usePrint(RecorderCocoa &recorder)
{
    if (!m_printCosts.isEmpty())
        takePrintFromDesktop();
    recorder.record(printScreen);
    m_wantsPrint = !m_service.shortcut(recorder.shortcutName());
    showRefusals();
}

void ShortcutsTabView::showUsePrint()
{
    const bool hasAny = std::any_of(std::begin(rows), std::end(rows), [this](const Row &row) {
        return m_service.shortcut(row.name()).has_value();
    });
    m_usePrint->setVisible(!hasAny);
}

void ShortcutsTabView::showRefusals()
{
    QString text = m_wantsPrint ? explanation(printScreen) : QString();
    for (size_t index = 0; index < m_rows.size(); ++index) {
        const auto shortcut = m_service.shortcut(rows[index].name());
        const bool isRefused = shortcut && m_service.isRefused(*shortcut);
        m_rows[index]->setNote(isRefused ? tr("Held by another program") : QString());
        if (isRefused && text.isEmpty())
            text = explanation(*shortcut);
    }
    setHint(text.isEmpty() ? usualHint() : text);
}

QString ShortcutsTabView::usualHint() const
{
    QString text = tr(hint);
    if (m_usePrint->isVisibleTo(this) && !m_printCosts.isEmpty())
        text += QStringLiteral(". ") + m_printCosts;
    if (!m_service.reportsRelease())
        text +=
            tr(". On this desktop a capture starts when the keys go down, not when they come up.");
    return text.replace(QStringLiteral(".."), QStringLiteral("."));
}

void ShortcutsTabView::setHint(const QString &text)
{
    m_hint->setText(text);
    // The window asks for the least height, which a layout does not derive from the width.
    const int room = std::max(width(), SettingsWindow::contentSize.width()) - 2 * margin;
    m_hint->setFixedHeight(std::max(0, m_hint->heightForWidth(room)));
}

QString ShortcutsTabView::explanation(const Shortcut &shortcut) const
{
    QString keys = m_service.description(shortcut);
    if (shortcut == printScreen)
        keys = tr("Print (%1)").arg(keys);
    const auto use = m_systemShortcuts ? m_systemShortcuts->use(
                         {quint32(shortcut.carbonKeyCode), quint32(shortcut.carbonModifiers)})
                                       : std::nullopt;
    if (use)
        return tr("%1 is used by %2. Take it away in %3, or record other keys here.")
            .arg(keys, use->user, use->place);
    const QString holder = m_service.likelyHolder();
    if (holder.isEmpty())
        return tr("%1 is held by another program. Take it away there, or record other keys here.")
            .arg(keys);
    return tr("%1 is held by another program, probably the window manager %2. Take it away in its "
              "settings, or record other keys here.")
        .arg(keys, holder);
}

void ShortcutsTabView::colorHint()
{
    QPalette colors;
    colors.setColor(QPalette::WindowText, ModernStyle::secondaryTextColor(palette()));
    m_hint->setPalette(colors);
}

} // namespace tovek
