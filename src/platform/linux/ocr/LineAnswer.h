// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/ocr/LineProtocol.h"
#include "reading/LineEngine.h"

namespace tovek {

/// What a recogniser process has said about a strip of this width, with places inside it; nothing
/// where it has said what cannot be.
std::optional<std::vector<EngineSymbol>>
lineAnswer(const std::vector<LineProtocol::Symbol> &symbols, int stripWidth);

} // namespace tovek
