// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Log.h"

#include <atomic>
#include <cstdio>

namespace tovek {

namespace {

std::atomic<bool> isOnStandardError = false;

} // namespace

void logLine(const QString &text)
{
    QByteArray line = text.toUtf8();
    line.replace('\n', ' ');
    line.append('\n');
    std::FILE *stream = isOnStandardError ? stderr : stdout;
    std::fwrite(line.constData(), 1, size_t(line.size()), stream);
    std::fflush(stream);
}

void logToStandardError()
{
    isOnStandardError = true;
}

} // namespace tovek
