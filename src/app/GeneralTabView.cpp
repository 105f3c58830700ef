// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/GeneralTabView.h"

#include "KeyboardShortcuts/AlertSheet.h"
#include "app/FormCard.h"
#include "app/SwitchControl.h"
#include "capture/SaveLocation.h"
#include "foundation/AskAside.h"
#include "foundation/Log.h"
#include "foundation/Settings.h"
#include "foundation/WhenReady.h"
#include "look/ModernStyle.h"
#include "look/ScaledLabel.h"
#include "platform/FrontmostApp.h"
#include "platform/LoginItem.h"
#include "update/UpdaterManager.h"

#include <QDir>
#include <QEvent>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace tovek {

namespace {

constexpr int cardRowHeight = 38;
constexpr int tabMargin = 16;
constexpr int smallestPath = 56;
constexpr double pathScale = 0.92;
/// A folder answers in less than a millisecond; it then shows with the window.
constexpr std::chrono::milliseconds folderPatience(50);

} // namespace

/// One line of secondary text that takes what room there is. Where it is too long, its end stays.
class GeneralTabView::ElidedLabel : public QWidget
{
public:
    explicit ElidedLabel(QWidget *parent) : QWidget(parent)
    {
        setSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::Preferred);
    }
    QSize sizeHint() const override { return {smallestPath, fontMetrics().height()}; }
    void setText(const QString &text)
    {
        m_text = text;
        setAccessibleName(text);
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setFont(ScaledLabel::scaled(font(), pathScale));
        painter.setPen(ModernStyle::secondaryTextColor(palette()));
        // Beside its button; a path reads from left to right in every language.
        painter.setLayoutDirection(Qt::LeftToRight);
        painter.drawText(rect(),
                         Qt::AlignVCenter | (isRightToLeft() ? Qt::AlignLeft : Qt::AlignRight),
                         painter.fontMetrics().elidedText(m_text, Qt::ElideLeft, width()));
    }

private:
    QString m_text;
};

GeneralTabView::GeneralTabView(const Services &services, QWidget *parent)
    : QWidget(parent)
    , m_services(services)
    , m_chooser(services.folderDialog)
{
    auto *card = new FormCard(cardRowHeight, this);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(tabMargin, 4, tabMargin, tabMargin - 4);
    layout->addStretch();
    layout->addWidget(card);
    layout->addStretch();

    UserDefaults &defaults = m_services.defaults;
    m_loginRow = card->addRow(QStringLiteral("sun.horizon"), tr("Launch at login"));
    m_launchAtLogin = addSwitch(m_loginRow, m_services.loginItem.isEnabled());
    connect(m_launchAtLogin, &QAbstractButton::clicked, this, &GeneralTabView::setLaunchAtLogin);
    auto *inMenuBar =
        addSwitch(card->addRow(QStringLiteral("menubar.rectangle"), tr("Show Tovek in menu bar")),
                  Settings::showInMenuBar.in(defaults));
    connect(inMenuBar, &QAbstractButton::clicked, this, &GeneralTabView::setShownInMenuBar);
    auto *highlight =
        addSwitch(card->addRow(QStringLiteral("text.viewfinder"), tr("Highlight detected text")),
                  Settings::highlightText.in(defaults));
    connect(highlight, &QAbstractButton::clicked, this,
            [&defaults](bool isOn) { Settings::highlightText.set(defaults, isOn); });
    addFolderRow(card->addRow(QStringLiteral("folder"), tr("Screenshot save location")));
    addUpdatesRow(card->addRow(QStringLiteral("arrow.triangle.2.circlepath"),
                               tr("Check for updates automatically")));
    m_services.loginItem.onChanged = [this] { refresh(); };
    m_chooser.onChosen = [this](const QString &folder) {
        Settings::saveFolderPath.set(m_services.defaults, folder);
        askFolder();
    };
    m_chooser.onHung = [this] {
        logLine(QStringLiteral("Closed the folder chooser: a folder does not answer"));
        showChooserNote(tr("A folder did not answer"));
    };
    m_chooser.onFailed = [this](const QString &reason) {
        logLine(QStringLiteral("Failed to open the folder chooser: %1").arg(reason));
        showChooserNote(tr("The chooser cannot be opened"));
    };
}

GeneralTabView::~GeneralTabView()
{
    m_services.loginItem.setWatching(false);
    m_services.loginItem.onChanged = nullptr;
}

bool GeneralTabView::event(QEvent *event)
{
    if (event->type() == QEvent::WindowActivate)
        refresh();
    return QWidget::event(event);
}

void GeneralTabView::showEvent(QShowEvent *event)
{
    m_services.loginItem.setWatching(true);
    refresh();
    QWidget::showEvent(event);
}

void GeneralTabView::hideEvent(QHideEvent *event)
{
    m_services.loginItem.setWatching(false);
    QWidget::hideEvent(event);
}

SwitchControl *GeneralTabView::addSwitch(FormRow *row, bool isOn)
{
    auto *control = new SwitchControl(row);
    control->setChecked(isOn);
    row->addControl(control);
    // The room for its focus ring is not seen: its edge shall stand under that of the button.
    QMargins margins = row->layout()->contentsMargins();
    if (isRightToLeft())
        margins.setLeft(margins.left() - SwitchControl::ringRoom);
    else
        margins.setRight(margins.right() - SwitchControl::ringRoom);
    row->layout()->setContentsMargins(margins);
    return control;
}

void GeneralTabView::addFolderRow(FormRow *row)
{
    m_folderRow = row;
    m_folderButton = new QPushButton(tr("Choose…"), row);
    m_folderPath = new ElidedLabel(row);
    static_cast<QBoxLayout *>(row->layout())->addWidget(m_folderPath, 1);
    row->addControl(m_folderButton);
    connect(m_folderButton, &QPushButton::clicked, this, &GeneralTabView::chooseFolder);
    askFolder();
}

void GeneralTabView::addUpdatesRow(FormRow *row)
{
    UpdaterManager &manager = m_services.updaterManager;
    auto *control = addSwitch(row, manager.automaticallyChecksForUpdates());
    if (!manager.unavailableReason().isEmpty()) {
        row->setEnabled(false);
        row->setToolTip(manager.unavailableReason());
        control->setAccessibleDescription(manager.unavailableReason());
    }
    connect(control, &QAbstractButton::clicked, &manager,
            &UpdaterManager::setAutomaticallyChecksForUpdates);
    connect(&manager, &UpdaterManager::changed, control,
            [control, &manager] { control->setChecked(manager.automaticallyChecksForUpdates()); });
}

void GeneralTabView::refresh()
{
    m_launchAtLogin->setChecked(m_services.loginItem.isEnabled());
    askFolder();
}

void GeneralTabView::askFolder()
{
    const QString chosen = chosenSaveFolder(m_services.defaults);
    if (!m_answer.isFinished() && chosen == m_askedFolder)
        return;
    m_askedFolder = chosen;
    m_answer = askAside<FolderReport>([chosen] { return reportOnSaveFolder(chosen); });
    const FolderReport silent{chosen.isEmpty() ? downloadsFolder() : chosen,
                              FolderState::notAnswering};
    if (!isFinishedWithin(folderPatience, m_answer))
        showFolder(silent);
    whenFinished(m_answer, this, [this, chosen, silent](const FolderReport &report) {
        if (chosen == m_askedFolder)
            showFolder(report.folder.isEmpty() ? silent : report);
    });
}

void GeneralTabView::showFolder(const FolderReport &report)
{
    m_folder = report;
    m_folderPath->setText(abbreviatedPath(report.folder, QDir::homePath()));
    m_folderPath->setToolTip(report.folder);
    const QString ofFolder = noteOn(report.state);
    const QString note = ofFolder.isEmpty() ? m_chooserNote : ofFolder;
    m_folderRow->setNote(note);
    const QStringList parts{m_folderPath->accessibleName(), note};
    m_folderButton->setAccessibleDescription(parts.join(QStringLiteral(". ")));
}

void GeneralTabView::showChooserNote(const QString &note)
{
    m_chooserNote = note;
    showFolder(m_folder);
}

void GeneralTabView::setLaunchAtLogin(bool isOn)
{
    const auto failure = m_services.loginItem.setEnabled(isOn);
    if (failure)
        logLine(QStringLiteral("Failed to %1 launch at login: %2")
                    .arg(isOn ? QStringLiteral("enable") : QStringLiteral("disable"), *failure));
    const QString note = isOn ? tr("Could not be turned on") : tr("Could not be turned off");
    m_loginRow->setNote(failure ? note : QString());
    m_loginRow->setToolTip(failure.value_or(QString()));
    if (failure)
        m_launchAtLogin->setAccessibleDescription(note + QStringLiteral(": ") + *failure);
    refresh();
}

void GeneralTabView::setShownInMenuBar(bool isOn)
{
    Settings::showInMenuBar.set(m_services.defaults, isOn);
    if (m_services.setStatusItemVisible)
        m_services.setStatusItemVisible(isOn);
    if (isOn)
        return;
    auto *alert = new KeyboardShortcuts::AlertSheet(
        {tr("Tovek Is Now Hidden"),
         tr("To open preference window in the future, click Tovek's icon in your Launchpad when "
            "Tovek is running."),
         {tr("OK")}},
        *this);
    alert->open();
}

void GeneralTabView::chooseFolder()
{
    showChooserNote(QString());
    const bool isAnswering = m_folder.state != FolderState::notAnswering;
    FolderChooser::Question question;
    question.start = isAnswering ? m_folder.folder : QDir::homePath();
    question.isDark = ModernStyle::isDark(palette());
    question.accent = palette().color(QPalette::Highlight);
    const QWindow *owner = window()->windowHandle();
    if (owner && m_services.frontmostApp)
        question.window = m_services.frontmostApp->sharedHandle(*owner);
    m_chooser.ask(question);
}

} // namespace tovek
