// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/FolderChooser.h"

#include <QFile>
#include <QGuiApplication>

#include <csignal>
#include <sys/prctl.h>

namespace tovek {

FolderChooser::FolderChooser(QString program) : m_program(std::move(program))
{
    m_silence.setSingleShot(true);
    m_silence.callOnTimeout([this] {
        giveUp();
        if (onHung)
            onHung();
    });
}

FolderChooser::~FolderChooser()
{
    giveUp();
}

void FolderChooser::ask(const Question &question)
{
    giveUp();
    QStringList arguments{QStringLiteral("--start"), question.start};
    if (question.window)
        arguments << QStringLiteral("--window") << QString::number(question.window);
    if (question.isDark)
        arguments << QStringLiteral("--dark");
    if (question.accent.isValid())
        arguments << QStringLiteral("--accent") << question.accent.name();
    if (QGuiApplication::isRightToLeft())
        arguments << QStringLiteral("-reverse");

    // Without an owner: the end of a QProcess waits for that of its program.
    auto *process = new QProcess;
    m_process = process;
    process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // Whatever ends us, no dialog that nobody listens to is left.
    process->setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    connect(process, &QProcess::finished, process, &QObject::deleteLater);
    connect(process, &QProcess::readyReadStandardOutput, this,
            [this] { m_silence.start(patience); });
    connect(process, &QProcess::finished, this, [this, process](int code, auto status) {
        m_silence.stop();
        const QString folder =
            QFile::decodeName(process->readAllStandardOutput().replace('\0', ""));
        if (status == QProcess::NormalExit && code == 0 && !folder.isEmpty() && onChosen)
            onChosen(folder);
    });
    connect(process, &QProcess::errorOccurred, this, [this, process](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        m_silence.stop();
        process->deleteLater();
        if (onFailed)
            onFailed(process->errorString());
    });
    m_silence.start(patienceAtFirst);
    process->start(m_program, arguments);
}

void FolderChooser::giveUp()
{
    m_silence.stop();
    if (!m_process)
        return;
    m_process->disconnect(this);
    m_process->kill();
    m_process.clear();
}

} // namespace tovek
