// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>

namespace tovek {

class Updater;
class WindowColors;

/// Gives our windows their look, and those of the program that updates: dark ones on a dark
/// desktop, with its accent, and others as soon as that changes. Asks for nothing until there is a
/// window.
class WindowLook : public QObject
{
public:
    /// Without colours, the palette's. Both outlive this.
    WindowLook(WindowColors *colors, Updater &updater);
    ~WindowLook() override;

    /// To be called before each window. May wait for a moment.
    void prepare();

private:
    void follow();

    WindowColors *m_colors;
    Updater &m_updater;
    bool m_isUsed = false; ///< by windows of this process
};

} // namespace tovek
