// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/ExactReading.h"

namespace tovek {

/// The lines that an engine read and `exact`, which are lines of the reading or some of them,
/// without the words that were read twice.
std::vector<std::vector<ReadWord>> withExactLines(std::vector<std::vector<ReadWord>> lines,
                                                  const ExactReading &reading,
                                                  std::vector<std::vector<ReadWord>> exact);

} // namespace tovek
