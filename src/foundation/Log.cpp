// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Log.h"

#include <cstdio>

namespace tovek {

void logLine(const QString &text)
{
    QByteArray line = text.toUtf8();
    line.replace('\n', ' ');
    line.append('\n');
    std::fwrite(line.constData(), 1, size_t(line.size()), stdout);
    std::fflush(stdout);
}

} // namespace tovek
