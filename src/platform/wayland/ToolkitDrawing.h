// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

namespace tovek {

/// Keeps the toolkit from loading the driver of OpenGL for its first window: tens of milliseconds
/// of the first overlay and tens of megabytes, and nothing here is drawn with it. To be called
/// once, before the first window. Somebody who has chosen a way in the environment keeps it.
void keepToShmBuffers();

} // namespace tovek
