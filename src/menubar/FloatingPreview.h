// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "menubar/PreviewPicture.h"

#include <memory>

namespace tovek {

class ItemMenu;
class PreviewShell;
class PreviewSurface;

/// The last capture in a corner of the screen, where the panel lets nobody drag it out of the
/// status item.
class FloatingPreview : public PreviewPicture
{
public:
    /// Shows it. Null when that cannot be.
    static std::unique_ptr<FloatingPreview> show(PreviewShell &shell, const QImage &image);
    ~FloatingPreview() override;

    /// Takes it off the screen; no picture of the screen taken from now on shows it.
    void leave();
    /// Shows a menu beside it, at a click. False when that cannot be.
    bool openMenu(ItemMenu &menu);

    /// It was taken off the screen.
    std::function<void()> onClosed;

private:
    explicit FloatingPreview(const QImage &image);

    std::unique_ptr<PreviewSurface> m_surface;
};

} // namespace tovek
