// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace tovek {

struct X11Free
{
    void operator()(void *memory) const { std::free(memory); }
};
/// What the xcb_..._reply functions return, null on an error; or an event, or an error.
template <typename T>
using X11Reply = std::unique_ptr<T, X11Free>;

/// The bits of an event's response_type that tell its type; the top one marks those that clients
/// sent.
inline constexpr std::uint8_t x11EventType = 0x7f;

} // namespace tovek
