// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Workers.h"

namespace tovek {

/// Runs what writes into the user's folders in the order of the calls, one at a time (saves of the
/// same second must not overtake each other, and encoding uses all cores), on a thread that ends
/// when it has nothing to do. Main thread.
///
/// A folder may stop answering, and then nothing can end a thread that waits for it: the next job
/// is let past it, and at the end it is given up, which the process survives only by std::_Exit.
class SaveQueue
{
public:
    SaveQueue();
    /// Gives the jobs five seconds; what then still writes is left behind with a line in the log.
    ~SaveQueue();

    /// False when the system gives no thread for it: it will not run.
    bool start(std::function<void()> job);
    /// One job is stuck, or goes on again.
    void letOthersPass();
    void stopLettingOthersPass();

private:
    Workers m_threads;
};

} // namespace tovek
