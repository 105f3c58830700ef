// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/ReadPiece.h"

#include <functional>

namespace tovek {

/// Text that can be read to the letter without the engine, because more is known about it than its
/// ink. Runs are counted as in the page.
class ExactReading
{
public:
    virtual ~ExactReading() = default;
    /// True for runs that may be read here: the engine takes the others first. Any thread.
    virtual bool mayTake(std::size_t run) const = 0;
    /// Reads what it can; called once, by one thread, while others read runs. `isWaitedFor`
    /// answers true when they have read them all, or when there are no others.
    virtual void read(const std::function<bool()> &isWaitedFor) = 0;
    /// True for runs that were read here, so that the engine's reading of them is of no use. Any
    /// thread.
    virtual bool hasTaken(std::size_t run) const = 0;
    /// The lines of words that were read. From the end of `read` on, as the next; any thread.
    virtual const std::vector<std::vector<ReadWord>> &lines() const = 0;
    /// True for what the engine read where these lines are: a part of a run that it had to read.
    virtual bool isIn(const QRect &word) const = 0;
    /// Makes more of what engines read in the runs that were not taken, one entry a run; called
    /// once, by one thread.
    virtual void improve(std::vector<std::vector<ReadPiece>> &) const { }
    /// Goes on with what was not found in time, for the next page; called after all others.
    virtual void learn(const std::function<bool()> &isCancelled) = 0;
};

} // namespace tovek
