// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/ReadPiece.h"

#include <optional>

namespace tovek {

/// What stands in one run, in the order of reading; nothing when the engine is lost. `map` is the
/// whole picture's. Text in scripts whose letters join is read once more, as high as it is and not
/// by the heights of letters it does not have; Latin words in it by the English model alone.
std::optional<std::vector<ReadPiece>> readRun(const InkMap &map, const TextRun &run,
                                              const LetterMetrics &metrics, LineEngine &engine);

} // namespace tovek
