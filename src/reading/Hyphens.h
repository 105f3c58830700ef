// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/ReadPiece.h"

namespace tovek {

/// Hyphens that stand so close that they touch ("--flag") are read as one dash. The hyphens of a
/// font are equally wide, so the single ones in the picture tell how many a dash is. Where there is
/// none to compare with, a long dash that begins a word is two. All pieces of a picture.
void countHyphens(std::vector<ReadPiece> &pieces);

/// What is read as dashes, but is a wave in the ink, is one tilde. `ink` as from evenInk.
void nameTildes(std::vector<InkSymbol> &symbols, const InkMap &ink, const TextRun &run,
                const LetterMetrics &metrics);

} // namespace tovek
