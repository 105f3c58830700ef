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
    virtual ~LineEngine() = default;
    /// From left to right, empty when the strip holds no text; nothing when the engine broke down
    /// or hangs and cannot be used any more.
    [[nodiscard]] virtual std::optional<std::vector<EngineSymbol>> read(const LineStrip &strip) = 0;
};

} // namespace tovek
