// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QTemporaryFile>

#include <cstdio>
#include <unistd.h>

namespace tovek {

/// Takes what this process writes to its standard output for as long as it lives.
class StdoutCapture
{
public:
    StdoutCapture()
    {
        std::fflush(stdout);
        m_saved = dup(STDOUT_FILENO);
        if (m_file.open())
            dup2(m_file.handle(), STDOUT_FILENO);
    }
    ~StdoutCapture()
    {
        std::fflush(stdout);
        dup2(m_saved, STDOUT_FILENO);
        close(m_saved);
    }
    Q_DISABLE_COPY_MOVE(StdoutCapture)

    /// What was written since the last time.
    QByteArray take()
    {
        std::fflush(stdout);
        QFile file(m_file.fileName());
        if (!file.open(QIODevice::ReadOnly) || !file.seek(m_taken))
            return {};
        const QByteArray bytes = file.readAll();
        m_taken += bytes.size();
        return bytes;
    }

private:
    int m_saved = -1;
    QTemporaryFile m_file;
    qint64 m_taken = 0;
};

} // namespace tovek
