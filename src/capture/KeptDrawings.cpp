// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/KeptDrawings.h"

#include "capture/CaptureSession.h"
#include "foundation/WhenReady.h"
#include "overlay/OverlayWindow.h"

#include <algorithm>

namespace tovek {

void KeptDrawings::keep(const std::vector<OverlayWindow *> &windows)
{
    for (const OverlayWindow *window : windows) {
        const auto drawing = window->selectionView()->takeDrawing();
        if (!drawing)
            continue;
        std::erase_if(m_drawings,
                      [window](const auto &kept) { return kept.first == window->targetScreen(); });
        m_drawings.emplace_back(window->targetScreen(), *drawing);
    }
}

void KeptDrawings::giveBack(CaptureSession &session)
{
    const std::vector<OverlayWindow *> &windows = session.windows();
    const bool isKeyboardHeld = std::any_of(windows.begin(), windows.end(),
                                            [](OverlayWindow *window) { return window->isKey(); });
    if (session.mode() != CaptureMode::normal || !isKeyboardHeld)
        return;
    std::erase_if(m_drawings, [&session](const auto &kept) {
        OverlayWindow *window = session.window(kept.first);
        const auto captured = session.displays().find(kept.first);
        if (!window || !captured)
            return false;
        whenReady(captured->screenshot->pixels(), window,
                  [window, drawing = kept.second](const QImage &) {
                      window->selectionView()->resume(drawing);
                  });
        return true;
    });
}

} // namespace tovek
