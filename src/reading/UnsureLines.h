// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/PageReading.h"

namespace tovek {

/// Whether an engine has doubts about most of a line of text. It reads what no model of its knows
/// too, as letters of a script that it knows.
bool isUnsure(const PageRun &run, const std::vector<ReadPiece> &pieces);

/// How these runs look to an engine that tells their script; none where they are too little text,
/// or too small a part of the page, to be text in another script.
std::vector<LineStrip> stripsOf(const Page &page, const std::vector<std::size_t> &runs);

} // namespace tovek
