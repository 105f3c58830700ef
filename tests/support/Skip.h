// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QTest>

/// Leaves the test with the reason, unless that is empty; in initTestCase, all of the class. No
/// function, from which only itself could be left.
#define SKIP_BECAUSE(...)                                                                          \
    do {                                                                                           \
        if (const QString reason = __VA_ARGS__; !reason.isEmpty())                                 \
            QSKIP(qPrintable(reason));                                                             \
    } while (false)
