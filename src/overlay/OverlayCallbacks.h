// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Image.h"
#include "text/TextRegion.h"

#include <functional>
#include <vector>

namespace tovek {

/// What the user asks of an overlay. Set by the owner; called only if set. Rectangles are in the
/// overlay view's points, y up.
struct OverlayCallbacks
{
    std::function<void()> onCancel;
    std::function<void(const Rect &)> onSelectionComplete;
    std::function<void(const Rect &)> onCopyImage;
    std::function<void(const Image &)> onCopyAnnotatedImage;
    std::function<void()> onCopyAllText;
    std::function<void(const std::vector<TextRegion> &)> onCopySelectedText;
    std::function<void(const Rect &)> onSaveImage;
    std::function<void(const Image &)> onSaveAnnotatedImage;
};

} // namespace tovek
