// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/SelectionResult.h"

#include "annotations/AnnotationRenderer.h"
#include "foundation/WhenReady.h"

namespace tovek {

void deliver(const SelectionResult &result, QObject *context,
             const std::function<void(const Rect &)> &plain,
             const std::function<void(const Image &)> &drawn)
{
    if (result.annotations.empty()) {
        if (plain)
            plain(result.selection);
        return;
    }
    whenReady(result.pixels, context, [=](const QImage &pixels) {
        const auto image = AnnotationRenderer::render(result.annotations, {pixels, result.screen},
                                                      result.selection);
        if (!pixels.isNull() && image) {
            if (drawn)
                drawn(*image);
        } else if (plain) {
            plain(result.selection);
        }
    });
}

} // namespace tovek
