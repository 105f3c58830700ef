// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "feedback/ToastGeometry.h"

namespace tovek::ToastGeometry {

Size contentSize(Size intrinsic)
{
    return {std::max(shortestWidth, intrinsic.width), std::max(shortestHeight, intrinsic.height)};
}

Size panelSize(Size content)
{
    return {content.width + 2 * margin, content.height + 2 * margin};
}

Rect panelFrame(Size content, const Rect &screenFrame)
{
    const Size panel = panelSize(content);
    return {screenFrame.minX() + (screenFrame.width - panel.width) / 2,
            screenFrame.minY() + 0.2 * screenFrame.height - margin, panel.width, panel.height};
}

} // namespace tovek::ToastGeometry
