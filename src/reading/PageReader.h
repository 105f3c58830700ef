// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/EnginePool.h"
#include "reading/KnownGlyphs.h"
#include "reading/PageParts.h"

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace tovek {

/// Reads the runs of one page with engines from a pool. A page is read to its end however long it
/// is; only an engine that breaks down or hangs (see LineEngine) loses the run it had, and with
/// too many of them the page cannot be read.
class PageReader
{
public:
    /// What can be read without an engine is read by `exact`, where there is one.
    PageReader(Page page, std::shared_ptr<EnginePool> engines,
               std::unique_ptr<ExactReading> exact = nullptr);

    /// Of a page that takes long, words are told before all have been read; what is read in the
    /// end is the same. Called before `read`.
    void tellParts(PageParts::Listener listener);
    /// No more threads than this are of use.
    std::size_t runs() const { return m_page.runs.size(); }
    /// Takes part in the reading until no run is left or `isCancelled` answers true. Any number of
    /// threads at once.
    void read(const std::function<bool()> &isCancelled);

    // When all threads are done:
    bool isUnreadable() const { return m_isUnreadable; }
    /// The lines of words; to be called once. Logs how many runs were lost, if any.
    std::vector<std::vector<ReadWord>> takeLines();
    /// After them: lines that the engine has doubts about, as in UnsureLines.
    std::vector<LineStrip> unsureLines() const;
    /// See ExactReading; the last to be called, by one thread.
    void learn(const std::function<bool()> &isCancelled);

private:
    /// False when the engine is lost.
    bool readRun(LineEngine &engine, std::size_t run);
    /// The same, of what looks like nothing that was read before.
    bool readUnknown(LineEngine &engine, std::size_t run);
    void putInRounds();
    /// Until the round that the `next`-th run is in has begun.
    void waitForRound(std::size_t next, const std::function<bool()> &isCancelled);
    void endRun(std::size_t at);
    /// The last one of a round learns from it and begins the next.
    void endInRound(std::size_t at);

    Page m_page;
    std::shared_ptr<EnginePool> m_engines;
    std::unique_ptr<ExactReading> m_exact;
    std::vector<std::size_t> m_order; ///< of the runs
    std::atomic<bool> m_isExactBegun = false;
    std::atomic<int> m_readers = 0; ///< threads in read()
    std::vector<std::vector<ReadPiece>> m_readings; ///< one a run
    std::unique_ptr<PageParts> m_parts; ///< null where nobody listens
    std::atomic<std::size_t> m_nextRun = 0;
    std::vector<std::size_t> m_roundEnds; ///< in order; none on small pages
    std::mutex m_mutex; ///< for the next three
    std::condition_variable m_roundRead;
    std::size_t m_round = 0; ///< that is being read
    std::size_t m_leftInRound = 0;
    KnownGlyphs m_known; ///< constant within a round
    std::atomic<int> m_lost = 0;
    std::atomic<bool> m_isUnreadable = false;
    std::vector<std::size_t> m_unsure; ///< runs
};

} // namespace tovek
