// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/SymbolSource.h"

#include <memory>

class QWidget;

namespace tovek {

class FrontmostApp;
class PermissionManager;

/// The one small window that asks for the permission to capture the screen. Main thread only.
class PermissionWindowController
{
public:
    PermissionWindowController(PermissionManager &permission, FrontmostApp &frontmost,
                               SymbolSource symbols);
    ~PermissionWindowController();

    /// Opens the window, or brings the open one to the front.
    void show();
    /// Null when none is kept. One that was closed by its title bar is kept, hidden.
    QWidget *window() const { return m_window.get(); }

private:
    void answered();
    void bringForward();
    void close();

    PermissionManager &m_permission;
    FrontmostApp &m_frontmost;
    SymbolSource m_symbols;
    std::unique_ptr<QWidget> m_window;
};

} // namespace tovek
