// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

namespace tovek {

/// Lets screen readers see what kind of button a ToolbarButton is, and press it. Only the first
/// call does anything.
void installToolbarButtonAccess();

} // namespace tovek
