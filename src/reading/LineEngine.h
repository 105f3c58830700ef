// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/LineStrip.h"

#include <QString>

#include <optional>

namespace tovek {

/// One character as the engine read it, with its place in the strip.
struct EngineSymbol
{
    QString text; ///< never white space
    double left = 0;
    double right = 0;
    double confidence = 0; ///< 0 to 100
    bool startsWord = false;
};

/// Reads single lines. Used by one thread at a time, whichever it is.
class LineEngine
{
public:
    /// All that the desktop's languages need, the one for English alone, or all but that one.
    enum class Models : std::uint8_t { all, english, native };

    virtual ~LineEngine() = default;
    /// From left to right, empty when the strip holds no text; nothing when the engine broke down
    /// or hangs and cannot be used any more.
    [[nodiscard]] virtual std::optional<std::vector<EngineSymbol>> read(const LineStrip &strip,
                                                                        Models models) = 0;
    /// Whether a model is among all of them whose script is no row of letters (see Script).
    virtual bool readsByWords() const { return false; }
};

} // namespace tovek
