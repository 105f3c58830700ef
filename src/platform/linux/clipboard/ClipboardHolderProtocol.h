// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

/// What the program and the process that holds the clipboard after it agree on. The arguments are
/// the display (empty: that of the environment), on X11 the window that owns the clipboard until
/// now, and the kind of the bytes.
namespace tovek::HolderProtocol {

inline constexpr int bytesDescriptor = 3; ///< a file whose whole content are the bytes
inline constexpr const char *pngKind = "png";
inline constexpr const char *textKind = "text";

// Exit statuses of the first process; the second one goes on.
inline constexpr int holding = 0;
inline constexpr int failed = 1;
inline constexpr int notOwned = 2; ///< somebody else has taken the clipboard

} // namespace tovek::HolderProtocol
