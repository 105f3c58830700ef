// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "KeyboardShortcuts/Name.h"
#include "overlay/CaptureMode.h"

#include <array>

namespace tovek {

/// The program's global shortcuts. None has a default: a fresh installation takes no key from
/// anybody until the user records one.
namespace AppShortcuts {

const KeyboardShortcuts::Name &captureScreenshot();
const KeyboardShortcuts::Name &captureImage();
const KeyboardShortcuts::Name &captureText();

struct Binding
{
    KeyboardShortcuts::Name name;
    CaptureMode mode;
};
/// What each starts, in the order of registration.
const std::array<Binding, 3> &bindings();

} // namespace AppShortcuts

} // namespace tovek
