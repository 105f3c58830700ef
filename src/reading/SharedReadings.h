// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/ReadPiece.h"

namespace tovek {

/// Gives each unit (see InkSymbol) the ink that it covers, so that it can be compared with others.
/// `ink` as from evenInk.
void takeGlyphs(std::vector<InkSymbol> &symbols, const InkMap &ink, const TextRun &run);

/// The same glyph twice, whatever the colours.
bool looksLike(const std::vector<std::uint8_t> &a, const std::vector<std::uint8_t> &b);

/// A screen draws the same character in the same font with the same pixels: what is read in most
/// places is read in the others too, whether they were misread, read twice or passed over.
/// All pieces of a picture. Afterwards no symbol is left without a text.
void shareReadings(std::vector<ReadPiece> &pieces);

/// Whether many fonts draw both characters alike.
bool isAlike(const QString &a, const QString &b);

} // namespace tovek
