// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/AppShortcuts.h"

#include "KeyboardShortcuts/ShortcutService.h"

namespace tovek::AppShortcuts {

using KeyboardShortcuts::Name;
using KeyboardShortcuts::ShortcutService;

const Name &captureScreenshot()
{
    static const Name name =
        ShortcutService::shared().createName(QStringLiteral("captureScreenshot"));
    return name;
}

const Name &captureImage()
{
    static const Name name = ShortcutService::shared().createName(QStringLiteral("captureImage"));
    return name;
}

const Name &captureText()
{
    static const Name name = ShortcutService::shared().createName(QStringLiteral("captureText"));
    return name;
}

const std::array<Binding, 3> &bindings()
{
    static const std::array<Binding, 3> all{{
        {captureScreenshot(), CaptureMode::normal},
        {captureImage(), CaptureMode::copyImage},
        {captureText(), CaptureMode::copyText},
    }};
    return all;
}

} // namespace tovek::AppShortcuts
