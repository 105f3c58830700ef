// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryFile>
#include <QTest>

#include <cstdio>
#include <unistd.h>

namespace tovek {

/// Collects what the program writes to standard output while it lives. Where a test fails
/// meanwhile, it is written in the end, as the failure itself is in it.
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
    ~LogCapture()
    {
        const QStringList collected = lines();
        restore();
        if (!QTest::currentTestFailed())
            return;
        for (const QString &line : collected)
            std::printf("%s\n", qPrintable(line));
        std::fflush(stdout);
    }

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
