// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/null/NullClipboard.h"

#include "foundation/Log.h"

namespace tovek {

namespace {

void refuse()
{
    logLine(QStringLiteral("Failed to copy: this session has no clipboard that can be used"));
}

} // namespace

void NullClipboard::setText(const QString &)
{
    refuse();
}

void NullClipboard::setPng(QFuture<QByteArray>)
{
    refuse();
}

} // namespace tovek
