// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "update/program/UpdateView.h"
#include "update/program/UpdateWindow.h"

#include <QObject>
#include <QPointer>

class QProgressBar;
class QPushButton;

namespace tovek {

/// The view as one window at a time.
class UpdateWindows : public QObject, public UpdateView
{
    Q_OBJECT

public:
    enum class Arrival { inFront, modest };

    /// A modest window does not take the keyboard from what the user is doing.
    explicit UpdateWindows(Arrival arrival);
    ~UpdateWindows() override;

    void showChecking() override;
    void showOffer(const UpdateOffer &offer, const QString &installedVersion) override;
    void showDownload(qint64 received, qint64 total) override;
    void showInstalling() override;
    void showMessage(MessageKind kind, const QString &title, const QString &text) override;
    void hide() override;

    /// The user has asked for it.
    void bringForward();
    UpdateWindow *window() const { return m_window; }

private:
    /// Takes the place of the window before.
    void present(UpdateWindow *window);
    void presentDownload();
    void answer(UpdateAnswer answer);

    Arrival m_arrival;
    QPointer<UpdateWindow> m_window; ///< the visible one
    QPointer<QProgressBar> m_progress; ///< of the download
    QPointer<QPushButton> m_cancel;
    int m_shownPermille = -1;
};

} // namespace tovek
