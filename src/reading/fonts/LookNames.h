// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/GlyphNet.h"

#include <QString>

#include <map>
#include <vector>

namespace tovek {

/// What cells of equal ink were taken for.
struct CellLook
{
    int cells = 0;
    std::map<QString, double> votes; ///< of an engine, by what it read in a cell; empty: nothing
    GlyphNet::Answer seen{}; ///< by the network
};

/// The characters of a font by their looks: what the engine read in most cells of a look, where the
/// network does not see something else altogether. Two looks of one font are two characters, so
/// that a look whose name another bears with more right gets the name that nobody bears; some are
/// the same letter in bold, and keep it. Empty where there is no character.
std::vector<QString> namesOf(const std::vector<CellLook> &looks);

} // namespace tovek
