// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/clipboard/SelectionContent.h"

namespace tovek {

namespace {

struct Latin1
{
    std::string text;
    bool isLossless = true;
};

/// Expects valid UTF-8, which is all that a QString becomes.
Latin1 toLatin1(const SelectionBytes &utf8)
{
    constexpr uint8_t firstOfTwo = 0xc2; // 0xc2 and 0xc3 begin the characters up to U+00FF
    Latin1 result;
    for (size_t i = 0; i < utf8.size; ++i) {
        const uint8_t byte = utf8.data[i];
        const bool isContinuation = (byte & 0xc0) == 0x80;
        if (byte < 0x80) {
            result.text += char(byte);
        } else if ((byte & ~1) == firstOfTwo && i + 1 < utf8.size) {
            result.text += char(uint8_t((byte & 3) << 6 | (utf8.data[++i] & 0x3f)));
        } else if (!isContinuation) {
            result.text += '?';
            result.isLossless = false;
        }
    }
    return result;
}

} // namespace

SelectionBytes SelectionBytes::copyOf(std::string bytes)
{
    const auto owner = std::make_shared<const std::string>(std::move(bytes));
    return {reinterpret_cast<const uint8_t *>(owner->data()), owner->size(), owner};
}

SelectionContent pngContent(const SelectionBytes &png)
{
    return {{"image/png", "image/png", png}};
}

SelectionContent textContent(const SelectionBytes &utf8)
{
    Latin1 converted = toLatin1(utf8);
    const bool isLatin1 = converted.isLossless;
    const SelectionBytes latin1 = SelectionBytes::copyOf(std::move(converted.text));
    return {{"UTF8_STRING", "UTF8_STRING", utf8},
            {"STRING", "STRING", latin1},
            {"TEXT", isLatin1 ? "STRING" : "UTF8_STRING", isLatin1 ? latin1 : utf8},
            {"text/plain;charset=utf-8", "text/plain;charset=utf-8", utf8},
            {"text/plain", "text/plain", utf8}};
}

} // namespace tovek
