// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "command/CommandLine.h"
#include "foundation/Image.h"

namespace tovek {

class FrontmostApp;
class ScreenGrabber;
class Screens;

/// What a picture is taken with.
struct ShotServices
{
    Screens &screens;
    ScreenGrabber &grabber;
    const FrontmostApp &frontmostApp;
};

/// A picture, or the reason why there is none.
struct Shot
{
    Image image;
    QString error;
};

/// Takes the picture that the command asks for: the very pixels, all of one instant. Waits in an
/// event loop for what the window system has to send. Main thread.
[[nodiscard]] Shot takeShot(const ShotCommand &command, const ShotServices &services);

} // namespace tovek
