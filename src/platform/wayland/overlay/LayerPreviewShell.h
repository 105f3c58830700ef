// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/PreviewShell.h"

namespace tovek {

class LayerShell;
class Screens;
struct MenuGlobals;

/// Previews as surfaces of the layer shell, below the panels in the upper right corner of the
/// screen that the pointer was seen on last. Their menus are popups of theirs.
class LayerPreviewShell : public PreviewShell
{
public:
    /// Null where the compositor offers no such surfaces. The screens must outlive it.
    static std::unique_ptr<LayerPreviewShell> create(const Screens &screens);
    ~LayerPreviewShell() override;

    std::unique_ptr<PreviewSurface> create(QWindow &window, QSize points) override;

private:
    LayerPreviewShell(std::shared_ptr<LayerShell> shell, const Screens &screens);

    const Screens &m_screens;
    std::shared_ptr<LayerShell> m_shell;
    std::shared_ptr<MenuGlobals> m_menus;
};

} // namespace tovek
