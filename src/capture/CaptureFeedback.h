// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Image.h"
#include "platform/Screens.h"

#include <QUrl>

#include <chrono>
#include <functional>

namespace tovek {

/// Where the capture reports what the user is to see and hear. Each is called only if set.
struct CaptureFeedback
{
    std::function<void(const QString &message, const QString &symbol,
                       const std::optional<Screen> &screen)>
        toast;
    /// Lets the toast that says this say more, if it is still up. Returns whether it was.
    std::function<bool(const QString &message, const QString &more)> extendToast;
    std::function<void()> playCopySound;
    std::function<void(const Image &image, std::chrono::seconds duration)> showPreview;
    std::function<void(const QString &message, const QUrl &file)> showSavedNotification;
};

} // namespace tovek
