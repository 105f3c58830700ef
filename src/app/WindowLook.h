// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>

#include <functional>

namespace tovek {

class Updater;
class WindowColors;
struct WindowTheme;

/// Gives our windows their look, and those of the program that updates: dark ones on a dark
/// desktop, with its accent, and others as soon as that changes. Asks for nothing until it is
/// wanted.
class WindowLook : public QObject
{
public:
    /// Without colours, the palette's. Both outlive this.
    WindowLook(WindowColors *colors, Updater &updater);
    ~WindowLook() override;

    /// To be called before each window. May wait for a moment.
    void prepare();
    /// Asks for what `onTold` is for, unless that is known. Returns at once.
    void learn();

    /// Whether the desktop is dark, for what is no window; again whenever that changes.
    std::function<void(bool isDark)> onTold;

private:
    void follow();
    void tell(const WindowTheme &theme);

    WindowColors *m_colors;
    Updater &m_updater;
    bool m_isUsed = false; ///< by windows of this process
    bool m_isAsked = false;
};

} // namespace tovek
