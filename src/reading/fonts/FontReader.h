// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/ExactReading.h"
#include "reading/PageReading.h"

#include <chrono>
#include <memory>

namespace tovek {

class GlyphSource;

/// Reads text of a fixed pitch by the font that it is written in. It remembers the fonts that it
/// met, not what was written. Any thread.
class FontReader
{
public:
    /// An unknown font is looked for no longer than `patience` when all else has been read.
    explicit FontReader(std::unique_ptr<GlyphSource> source,
                        std::chrono::milliseconds patience = std::chrono::milliseconds(150));
    ~FontReader();
    FontReader(const FontReader &) = delete;
    FontReader &operator=(const FontReader &) = delete;

    /// For one page, which is copied as far as needed; null when nothing in it is of a fixed
    /// pitch. `image` in 32 bits a pixel. This must outlive it.
    std::unique_ptr<ExactReading> readingOf(const Page &page, const QImage &image);
    /// Lets go of the fonts' files and of their glyphs; what was met stays known.
    void letGo();

private:
    class Reading;
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace tovek
