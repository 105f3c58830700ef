// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QColor>
#include <QObject>
#include <QPointer>
#include <QProcess>
#include <QTimer>

#include <chrono>
#include <functional>

namespace tovek {

/// Has a person choose a folder, in a process of its own: the toolkit's dialog asks the file system
/// on the thread that shows it, and one mount whose server stands still stops that for ever. Nobody
/// ever waits for that process, not even for its end. Main thread only.
class FolderChooser : public QObject
{
public:
    /// What stands in the dialog, and where.
    struct Question
    {
        QString start; ///< the folder that is shown at first
        quint64 window = 0; ///< see FrontmostApp::sharedHandle
        bool isDark = false;
        QColor accent; ///< invalid: the palette's
    };

    explicit FolderChooser(QString program);
    ~FolderChooser() override;

    /// A question that is still open is given up: its dialog goes, whatever it hangs on.
    void ask(const Question &question);

    /// Not for a dialog that was left.
    std::function<void(const QString &folder)> onChosen;
    /// There is no dialog.
    std::function<void(const QString &reason)> onFailed;
    /// The dialog hung and was closed: a menu of it that was open would keep mouse and keyboard.
    std::function<void()> onHung;

    /// How often the dialog gives a sign, and after how long without one it hangs: several times
    /// what a busy machine makes of that. Its first one may take as long as it is to be loaded.
    static constexpr std::chrono::milliseconds signInterval{500}, patience{4000},
        patienceAtFirst{20000};

private:
    void giveUp();

    QString m_program;
    QPointer<QProcess> m_process; ///< deletes itself at its end
    QTimer m_silence;
};

} // namespace tovek
