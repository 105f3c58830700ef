// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/ReadWords.h"

class QImage;

namespace tovek {

/// Everything about a picture that is known before an engine reads it. Immutable, so that the
/// runs can be read on several threads.
struct Page
{
    InkMap ink;
    std::vector<TextRun> runs; ///< as they are read: from the top, columns from the left
    std::vector<LetterMetrics> metrics; ///< one a run
    std::vector<std::size_t> widestFirst; ///< the order that keeps several readers busy longest
};

Page pageOf(const QImage &image);

/// What one engine read in one run.
std::vector<InkSymbol> symbolsOf(const Page &page, std::size_t run, const InkMap &ink,
                                 const LineStrip &strip, const std::vector<EngineSymbol> &read);

/// The lines of words of the whole picture; `readings` has one entry a run.
std::vector<std::vector<ReadWord>> linesOf(const Page &page,
                                           std::vector<std::vector<InkSymbol>> readings);

} // namespace tovek
