// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/ExactReading.h"
#include "reading/PageReading.h"
#include "reading/PartSteps.h"

#include <atomic>
#include <mutex>

namespace tovek {

/// Tells words of a page that is still being read, each once. They are settled without those that
/// are still missing, so that a few of them are read otherwise in the end.
class PageParts
{
public:
    struct Listener
    {
        /// The lines that were read since the last part. One thread at a time, whichever it is.
        std::function<void(std::vector<std::vector<ReadWord>>)> tell;
        std::function<PartSteps::Time()> now; ///< any thread
    };
    /// All are the page reader's, and outlive this; `exact` may be null.
    PageParts(const Page &page, const std::vector<std::vector<ReadPiece>> &readings,
              const ExactReading *exact, Listener listener);

    // From any thread:
    /// The run has been read, or was passed over, and its reading does not change any more.
    void add(std::size_t run);
    /// ExactReading::read is over.
    void endExact() { m_isExactOver = true; }
    /// Tells a part when it is time for one.
    void tell();

private:
    std::vector<std::vector<ReadPiece>> takeReadings(bool isExactOver);
    std::vector<std::vector<ReadWord>> takeLines();

    const Page &m_page;
    const std::vector<std::vector<ReadPiece>> &m_readings;
    const ExactReading *m_exact;
    const Listener m_listener;
    double m_width = 0; ///< of all runs
    std::atomic<bool> m_isExactOver = false;
    std::mutex m_mutex; ///< for the next two
    std::vector<std::size_t> m_untold;
    double m_widthRead = 0;
    std::mutex m_telling; ///< for all below
    PartSteps m_steps;
    std::vector<QRect> m_told; ///< words, until those are that were read without an engine
    bool m_hasToldExact = false;
};

} // namespace tovek
