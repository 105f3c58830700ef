// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryFile>

#include <cstdio>
#include <unistd.h>

namespace tovek {

/// Collects what the program writes to standard output while it lives.
class LogCapture
{
public:
    LogCapture()
    {
        std::fflush(stdout);
        m_saved = dup(STDOUT_FILENO);
        if (m_file.open())
            dup2(m_file.handle(), STDOUT_FILENO);
    }
    ~LogCapture() { restore(); }

    QStringList lines()
    {
        std::fflush(stdout);
        QFile written(m_file.fileName());
        if (!written.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(written.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

private:
    void restore()
    {
        std::fflush(stdout);
        dup2(m_saved, STDOUT_FILENO);
        close(m_saved);
    }

    QTemporaryFile m_file;
    int m_saved = -1;
};

} // namespace tovek
