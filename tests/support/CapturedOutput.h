// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QStringList>
#include <QTemporaryFile>

#include <cstdio>
#include <unistd.h>

namespace tovek {

/// While it lives, what the process writes to its standard output goes to a file.
class CapturedOutput
{
public:
    CapturedOutput()
    {
        m_file.open();
        std::fflush(stdout);
        m_kept = ::dup(STDOUT_FILENO);
        ::dup2(m_file.handle(), STDOUT_FILENO);
    }
    ~CapturedOutput()
    {
        std::fflush(stdout);
        ::dup2(m_kept, STDOUT_FILENO);
        ::close(m_kept);
    }
    QStringList lines()
    {
        std::fflush(stdout);
        QFile reading(m_file.fileName());
        return reading.open(QIODevice::ReadOnly)
            ? QString::fromUtf8(reading.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts)
            : QStringList();
    }

private:
    QTemporaryFile m_file;
    int m_kept = -1;
};

} // namespace tovek
