// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Platform.h"

#include <QString>

namespace tovek {

class PortalBus;
class SessionBus;
class SingleInstance;
class WaylandConnection;

/// What works before there is an application: the claim to be the only instance, and the keyboard.
/// Shortcuts are taken within a few milliseconds of the start of the process by that, and keys
/// pressed while the toolkit starts are not lost.
struct EarlyPlatform
{
    EarlyPlatform();
    ~EarlyPlatform();
    EarlyPlatform(EarlyPlatform &&) noexcept;

    std::unique_ptr<SessionBus> bus;
    std::shared_ptr<PortalBus> portal; ///< null until something uses it
    std::unique_ptr<SingleInstance> singleInstance;
    std::unique_ptr<HotKeys> hotKeys;
    std::unique_ptr<KeyboardLayout> keyboardLayout;
    std::shared_ptr<WaylandConnection> wayland; ///< null where the session is not served by it
    bool hasChosenToolkit = false; ///< nobody else has, in the environment
};

/// The reason when there is no display at all, for want of which the toolkit would end the process;
/// otherwise an empty text.
QString missingDisplay();

/// Tells an error to who started this process where nobody reads what it writes. Needs no
/// application.
void tellUnreadError(const QString &error);

/// Every member but the keyboard, for which see `openKeyboard`.
EarlyPlatform makeEarlyPlatform();
/// Has the toolkit run on the window system that the desktop is to be served by; QT_QPA_PLATFORM in
/// the environment chooses another. To be called before there is an application.
void chooseToolkit(EarlyPlatform &early);
/// Whether it would choose another window system now. Asks the desktop, for some milliseconds.
bool isToolkitOutdated(EarlyPlatform &early);
/// Takes that choice out of the environment again, for the program that runs after this one.
void forgetToolkit(const EarlyPlatform &early);
/// TOVEK_PLATFORM=null in the environment does without the X server, here and in `makePlatform`.
void openKeyboard(EarlyPlatform &early);
/// Of the X server that the toolkit is going to use; 0 where none is stated.
double statedDotsPerInch(const EarlyPlatform &early);

/// Only what takes pictures, for a process that has no window: screens, grabber and the frontmost
/// program are set. Needs a QGuiApplication, before which `chooseToolkit` was called.
Platform makeCapturePlatform(EarlyPlatform &early);
/// Takes shortcuts out of the desktop's settings that stay there without the program. The reason
/// when that failed. Needs a QCoreApplication.
QString removeShortcuts();
/// Null in builds that recognise no text. Needs a QCoreApplication.
std::unique_ptr<TextRecognizer> makeTextRecognizer();

/// The services of the session that the application runs in, chosen once. Needs a
/// QGuiApplication; keys are told from the main loop from now on.
Platform makePlatform(EarlyPlatform &early);

} // namespace tovek
