// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/program/UpdateWindows.h"

#include "look/ModernStyle.h"
#include "update/UpdateChoice.h"

#include <QLocale>
#include <QPainter>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace tovek {

namespace {

constexpr int notesHeight = 150;
constexpr int notesRadius = 8;
constexpr int permille = 1000;

/// Text to read on a rounded ground.
class NotesView : public QWidget
{
public:
    explicit NotesView(const QString &notes)
    {
        auto *text = new QPlainTextEdit(notes, this);
        text->setReadOnly(true);
        text->setFrameShape(QFrame::NoFrame);
        text->setAccessibleName(UpdateWindows::tr("What is new"));
        text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        text->setTabChangesFocus(true);
        text->viewport()->setAutoFillBackground(false);
        auto *layout = new QVBoxLayout(this);
        layout->setContentsMargins(6, 6, 3, 6);
        layout->addWidget(text);
        setFixedHeight(notesHeight);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(ModernStyle::separatorColor(palette()));
        painter.setBrush(ModernStyle::cardColor(palette()));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), notesRadius,
                                notesRadius);
    }
};

} // namespace

UpdateWindows::UpdateWindows(Arrival arrival) : m_arrival(arrival) { }

UpdateWindows::~UpdateWindows()
{
    delete m_window;
}

void UpdateWindows::showChecking()
{
    auto *window = new UpdateWindow(UpdateWindow::Icon::program, tr("Checking for updates…"),
                                    tr("Tovek asks its update server for the newest version."));
    connect(window->addButton(tr("Cancel"), UpdateWindow::Side::right), &QPushButton::clicked,
            window, &QDialog::reject);
    connect(window, &QDialog::rejected, this, [this] { onCanceled(); });
    present(window);
}

void UpdateWindows::showOffer(const UpdateOffer &offer, const QString &installedVersion)
{
    auto *window =
        new UpdateWindow(UpdateWindow::Icon::program, tr("A new version of Tovek is available"),
                         tr("Tovek %1 can be installed now; this is version %2.")
                             .arg(offer.item.versionText, installedVersion));
    if (!offer.item.notes.isEmpty())
        window->addBody(new NotesView(offer.item.notes));
    const struct
    {
        QString text;
        UpdateWindow::Side side;
        UpdateAnswer answer;
    } buttons[] = {
        {tr("Skip This Version"), UpdateWindow::Side::left, UpdateAnswer::skip},
        {tr("Remind Me Later"), UpdateWindow::Side::right, UpdateAnswer::later},
        {tr("Install Update"), UpdateWindow::Side::right, UpdateAnswer::install},
    };
    for (const auto &[text, side, choice] : buttons) {
        QPushButton *button = window->addButton(text, side, choice == UpdateAnswer::install);
        connect(button, &QPushButton::clicked, this, [this, choice = choice] { answer(choice); });
    }
    connect(window, &QDialog::rejected, this, [this] { answer(UpdateAnswer::later); });
    present(window);
}

void UpdateWindows::answer(UpdateAnswer answer)
{
    // The offer stays until something takes its place; it is answered only once.
    m_window->setEnabled(false);
    m_window->disconnect(this);
    onAnswered(answer);
}

void UpdateWindows::presentDownload()
{
    auto *window = new UpdateWindow(UpdateWindow::Icon::program, tr("Downloading the update…"),
                                    QStringLiteral(" "));
    m_progress = new QProgressBar(window);
    m_progress->setRange(0, permille);
    m_progress->setTextVisible(false);
    m_progress->setAccessibleName(tr("Download"));
    window->addBody(m_progress);
    m_cancel = window->addButton(tr("Cancel"), UpdateWindow::Side::right);
    connect(m_cancel, &QPushButton::clicked, window, &QDialog::reject);
    connect(window, &QDialog::rejected, this, [this] { onCanceled(); });
    m_shownPermille = -1;
    present(window);
}

void UpdateWindows::showDownload(qint64 received, qint64 total)
{
    if (!m_progress)
        presentDownload();
    const int done = total > 0 ? int(received * permille / total) : 0;
    if (done == m_shownPermille)
        return;
    m_shownPermille = done;
    m_progress->setValue(done);
    const QLocale locale;
    const auto size = [&locale](qint64 bytes) {
        return locale.formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
    };
    m_window->setText(m_window->accessibleName(), tr("%1 of %2").arg(size(received), size(total)));
}

void UpdateWindows::showInstalling()
{
    if (!m_progress)
        presentDownload();
    m_progress->setValue(permille);
    m_cancel->setEnabled(false);
    m_window->disconnect(this);
    m_window->setText(tr("Installing the update…"), tr("The signature is being verified."));
}

void UpdateWindows::showMessage(MessageKind kind, const QString &title, const QString &text)
{
    const auto icon =
        kind == MessageKind::warning ? UpdateWindow::Icon::warning : UpdateWindow::Icon::program;
    auto *window = new UpdateWindow(icon, title, text);
    connect(window->addButton(tr("OK"), UpdateWindow::Side::right, true), &QPushButton::clicked,
            window, &QDialog::accept);
    connect(window, &QDialog::finished, this, [this] { onMessageRead(); });
    present(window);
}

void UpdateWindows::hide()
{
    if (!m_window)
        return;
    // This may be inside a click on one of its buttons.
    m_window->disconnect(this);
    m_window->hide();
    m_window->deleteLater();
    m_window = nullptr;
}

void UpdateWindows::bringForward()
{
    if (!m_window)
        return;
    m_window->showNormal();
    m_window->raise();
    m_window->activateWindow();
}

void UpdateWindows::present(UpdateWindow *window)
{
    window->setAttribute(Qt::WA_ShowWithoutActivating, m_arrival == Arrival::modest && !m_window);
    if (m_window) {
        window->adjustSize();
        const QPoint middle = m_window->geometry().center();
        window->move(middle - QPoint(window->width(), window->height()) / 2);
        hide();
    }
    m_window = window;
    window->show();
}

} // namespace tovek
