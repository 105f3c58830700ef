// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/RunReading.h"

namespace tovek {

inline QString textOf(const std::vector<InkSymbol> &symbols)
{
    QString text;
    for (const InkSymbol &one : symbols)
        text += one.text;
    return text;
}

/// With a space before each symbol that starts a word, the first one too.
inline QString spacedTextOf(const std::vector<InkSymbol> &symbols)
{
    QString text;
    for (const InkSymbol &one : symbols)
        text += (one.startsWord ? QStringLiteral(" ") : QString()) + one.text;
    return text;
}

} // namespace tovek
