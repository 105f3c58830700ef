// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/clipboard/SelectionContent.h"

#include <functional>
#include <optional>

namespace tovek {

// What the processes that hold the clipboard after the program have in common.

/// The file's pages themselves, so that holding the bytes costs them once.
std::optional<SelectionBytes> heldBytes();
/// By the kind's name.
SelectionContent heldContent(const char *kind, const SelectionBytes &bytes);
/// The exit status of this process. Another one, which keeps only these descriptors, serves.
int stayBehind(const std::vector<int> &keptDescriptors, const std::function<void()> &serve);

} // namespace tovek
