// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

namespace tovek {

/// The toolkit paints large areas with the threads of a pool, and waits for them even where the
/// system gave it none: for ever, with the keyboard held. So it gets all of them at the start, for
/// good; or in versions that can do without, none. After the application has been made.
void keepToolkitThreads();

} // namespace tovek
