// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QTest>

namespace tovek {

/// For initTestCase: skips every test of the class with the reason, unless that is empty.
inline void skipBecause(const QString &reason)
{
    if (!reason.isEmpty())
        QSKIP(qPrintable(reason));
}

} // namespace tovek
