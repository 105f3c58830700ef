// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

namespace tovek {

/// True when one of the desktops' screen savers says on the session bus that it is active. Asks
/// all of them at once and waits for at most a tenth of a second; nothing is started by asking.
/// False without a bus. Main thread only; needs the application.
bool isScreenSaverActive();

} // namespace tovek
