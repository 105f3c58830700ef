// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/ScreenGrabber.h"
#include "platform/portal/PictureCut.h"

namespace tovek {

// What the grabbers have in common whose screens all come at once, from another program. Main
// thread only.

/// The content of displays that are frozen already, in the same order.
ShareableContent frozenContent(const std::vector<PortalDisplay> &displays,
                               const std::vector<std::shared_ptr<FrozenDisplay>> &frozen);

/// One of them, at once; an error for another content, and where windows are to be left out.
QFuture<ScreenGrabber::Result> captureOf(const ShareableContent &frozenContent,
                                         const CaptureDisplay &display,
                                         const std::vector<quint32> &excludedWindows);

/// Waits, while events are handled.
std::optional<ShareableContent> waitFor(const QFuture<std::optional<ShareableContent>> &content);

} // namespace tovek
