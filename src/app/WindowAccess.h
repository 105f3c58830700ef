// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

namespace tovek {

/// Lets screen readers see which of our windows are windows and which are dialogs: those that are
/// no class of the toolkit's own would be panes without a meaning. Only the first call does
/// anything.
void installWindowAccess();

} // namespace tovek
