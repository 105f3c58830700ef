// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <functional>

namespace tovek {

/// Asks until the answer is yes or the deadline has passed, a few hundred times a second, or for a
/// quarter of the time where to ask takes long. True when the answer was yes. Events of this
/// process are handled in between.
[[nodiscard]] bool waitUntil(const std::function<bool()> &condition,
                             std::chrono::milliseconds deadline = std::chrono::seconds(10));

} // namespace tovek
