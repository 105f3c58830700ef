// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/SymbolSource.h"
#include "platform/Screens.h"

#include <functional>
#include <memory>

class QRect;

namespace tovek {

class Clock;
class ToastShell;

/// Short messages near the bottom of a screen. At most one is on screen: a new one replaces the
/// one before at once. Nothing runs while none is shown. Main thread only.
class Toast
{
public:
    Toast(Clock &clock, Screens &screens, ToastShell &shell, SymbolSource symbols);
    ~Toast();

    /// Shows a message after a system symbol for about a second and a half, a long one for as long
    /// as it takes to be read, on the main screen when none is given.
    void show(const QString &message, const QString &icon,
              const std::optional<Screen> &screen = std::nullopt);
    /// The toast that says `message` says this longer message instead, where it is and as soon as
    /// it is at rest, for as long as it takes to be read. False when there is none, or it is on its
    /// way out.
    bool extend(const QString &message, const QString &longer);
    /// Takes the toast off the screen before a picture of the screen is taken; returns when it is
    /// gone for certain. Cheap when there is none.
    void hideForCapture();
    bool isShown() const { return m_window != nullptr; }

    /// While the screens are frozen: the frozen pixels in a rectangle (native, y down, global), as
    /// what lies below a toast is not on the screen itself then. A null image: not frozen.
    std::function<QImage(QRect native)> frozenPixels;
    /// The desktop says that it is dark. The toolkit's palette may say so too, or not know.
    bool isDesktopDark = false;

private:
    class Panel;

    std::unique_ptr<Panel> makePanel(const QString &message, const QString &icon,
                                     const std::optional<Screen> &target);
    void goAfterReading(const QString &message);

    Clock &m_clock;
    Screens &m_screens;
    ToastShell &m_shell;
    SymbolSource m_symbols;
    std::unique_ptr<Panel> m_window;
    std::unique_ptr<Panel> m_extended; ///< until the one that took its place is on the screen
};

} // namespace tovek
