// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <map>
#include <set>
#include <sys/types.h>

namespace tovek::bench {

/// What all threads of another process have used of the processors, those that ended included.
qint64 cpuNanoseconds(pid_t process);

/// What the main thread alone has used. Exact while the thread sleeps, else up to one clock tick
/// late.
qint64 mainThreadNanoseconds(pid_t process);

/// How often each thread was put on a processor so far, by its id.
using Switches = std::map<QString, qint64>;
Switches switchesOf(pid_t process);
/// Wake-ups from one count to a later one.
qint64 switchesBetween(const Switches &before, const Switches &after);

struct Memory
{
    double pss = 0; ///< megabytes, as all others
    double rss = 0;
    double privateDirty = 0;
    /// The share that would be ours if the desktop's own programs were the only others: what they
    /// have loaded as well counts by its share, everything else as a whole. Proportional memory
    /// alone becomes the smaller the more programs happen to use the same toolkit.
    double alone = 0;
};

/// The files that a process has mapped.
std::set<QByteArray> mappedFiles(pid_t process);
Memory memoryOf(pid_t process, const std::set<QByteArray> &filesOfOthers);

} // namespace tovek::bench
