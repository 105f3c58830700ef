// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/PreviewShell.h"

#include <QWindow>

#include <vector>

namespace tovek {

class FakePreviewShell;

/// A preview's window that is shown as any other, and remembers its menu.
class FakePreviewSurface : public PreviewSurface
{
public:
    FakePreviewSurface(FakePreviewShell &shell, QWindow &window);
    ~FakePreviewSurface() override;
    void orderFront() override { window.setVisible(true); }
    void orderOut() override
    {
        menu = nullptr;
        window.setVisible(false);
    }
    bool placeMenu(QWindow &toOpen, QSize points) override;
    void releaseMenu() override { menu = nullptr; }

    QWindow &window;
    QWindow *menu = nullptr; ///< while it is open
    QSize menuSize;

private:
    FakePreviewShell &m_shell;
};

class FakePreviewShell : public PreviewShell
{
public:
    std::unique_ptr<PreviewSurface> create(QWindow &window, QSize points) override
    {
        window.resize(points);
        return isWorking ? std::make_unique<FakePreviewSurface>(*this, window) : nullptr;
    }

    bool isWorking = true;
    bool placesMenus = true;
    std::vector<FakePreviewSurface *> surfaces; ///< alive, in order of creation
};

inline FakePreviewSurface::FakePreviewSurface(FakePreviewShell &shell, QWindow &shown)
    : window(shown)
    , m_shell(shell)
{
    m_shell.surfaces.push_back(this);
}

inline FakePreviewSurface::~FakePreviewSurface()
{
    std::erase(m_shell.surfaces, this);
}

inline bool FakePreviewSurface::placeMenu(QWindow &toOpen, QSize points)
{
    menu = m_shell.placesMenus ? &toOpen : nullptr;
    menuSize = points;
    return menu;
}

} // namespace tovek
