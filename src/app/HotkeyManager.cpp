// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/HotkeyManager.h"

#include "KeyboardShortcuts/ShortcutService.h"
#include "app/AppShortcuts.h"
#include "foundation/MainThread.h"

namespace tovek {

void HotkeyManager::registerShortcuts()
{
    Q_ASSERT(isMainThread());
    auto &service = KeyboardShortcuts::ShortcutService::shared();
    service.onPrepare = [this] {
        if (onPrepare)
            onPrepare();
    };
    for (const auto &[name, mode] : AppShortcuts::bindings()) {
        service.onKeyUp(name, [this, captureMode = mode] {
            if (onCapture)
                onCapture(captureMode);
        });
    }
}

} // namespace tovek
