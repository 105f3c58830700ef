// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/compositor/TestCompositor.h"

#include <QTest>

namespace tovek {

/// For main(): runs a test with the toolkit on a compositor of its own, which `compositor` points
/// to meanwhile. A process can have but one window system.
template <typename Application, typename Test>
int runOnCompositor(int argc, char **argv, CompositorPlan plan, TestCompositor *&compositor)
{
    TestCompositor own(std::move(plan));
    if (!own.start())
        return 1;
    compositor = &own;
    const UseCompositor use(own);
    qputenv("QT_QPA_PLATFORM", "wayland");
    qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1");
    Application application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

} // namespace tovek
