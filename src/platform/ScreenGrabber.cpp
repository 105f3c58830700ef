// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/ScreenGrabber.h"

#include "foundation/WhenReady.h"

namespace tovek {

QFuture<std::optional<ShareableContent>> ScreenGrabber::freeze()
{
    return readyFuture(shareableContent());
}

} // namespace tovek
