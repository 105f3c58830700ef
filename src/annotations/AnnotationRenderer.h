// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "annotations/Annotation.h"
#include "foundation/Image.h"

#include <optional>

namespace tovek {

/// Makes the picture that is copied or saved: the selected part of a frozen screen with the
/// annotations drawn over it.
class AnnotationRenderer
{
public:
    /// `image` is the whole screen, as large as the view in points; the selection and the
    /// annotations are in that view's coordinates. The result has the image's pixel density, no
    /// handles, and exactly the screen's pixels where nothing is drawn. What the selection holds
    /// beside the screen is transparent. Nothing for a selection without extent or too large for
    /// a bitmap.
    static std::optional<Image> render(const std::vector<Annotation> &annotations,
                                       const Image &image, const Rect &selection);
};

} // namespace tovek
