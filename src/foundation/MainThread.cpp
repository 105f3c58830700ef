// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/MainThread.h"

#include <QCoreApplication>
#include <QThread>

namespace tovek {

bool isMainThread()
{
    const auto *application = QCoreApplication::instance();
    return !application || QThread::currentThread() == application->thread();
}

} // namespace tovek
