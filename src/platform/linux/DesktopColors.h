// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

namespace tovek {

/// True when the user wants dark windows and the toolkit may not know: as the portal of the desktop
/// says, or else GNOME's key where no portal runs, or the name of the style that the toolkit was
/// told to use. Waits for each, a third of a second at most. Main thread.
bool areDarkWindowsWanted();

} // namespace tovek
