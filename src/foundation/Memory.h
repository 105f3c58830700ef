// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

namespace tovek {

/// Has all threads share one heap, for a program that has few of them and mostly waits; called
/// before there is a second thread. Of a heap of a thread's own the allocator never gives back what
/// is free at its end, not even to `releaseMemory`.
void shareHeap();

/// Gives back to the system what large pictures took; the allocator would keep it for a next time
/// that may be hours away. Takes a millisecond or two. Any thread.
void releaseMemory();

} // namespace tovek
