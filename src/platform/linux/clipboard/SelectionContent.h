// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tovek {

/// Bytes that live as long as somebody holds their owner.
struct SelectionBytes
{
    const uint8_t *data = nullptr;
    size_t size = 0;
    std::shared_ptr<const void> owner;

    static SelectionBytes copyOf(std::string bytes);
};

/// One form in which a selection's content can be had.
struct SelectionTarget
{
    std::string name; ///< what a reader asks for
    std::string type; ///< what it gets
    SelectionBytes bytes;
};
using SelectionContent = std::vector<SelectionTarget>;

/// A PNG, and no other form of it.
SelectionContent pngContent(const SelectionBytes &png);

/// Plain text under the names that readers know. STRING is Latin-1, with a question mark for every
/// other character; TEXT is the smallest form that loses nothing.
SelectionContent textContent(const SelectionBytes &utf8);

} // namespace tovek
