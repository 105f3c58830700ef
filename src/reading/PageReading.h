// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/ReadPiece.h"

class QImage;

namespace tovek {

/// Everything about a picture that is known before an engine reads it. Immutable, so that the
/// runs can be read on several threads.
struct Page
{
    InkMap ink;
    std::vector<PageRun> runs; ///< a panel after the other, in each as in textRuns
    std::vector<std::size_t> widestFirst; ///< the order that keeps several readers busy longest
};

Page pageOf(const QImage &image);

/// The lines of words of the whole picture; `readings` has one entry a run.
std::vector<std::vector<ReadWord>> linesOf(const Page &page,
                                           std::vector<std::vector<ReadPiece>> readings);

} // namespace tovek
