// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"
#include "platform/KeyboardLayout.h"
#include "platform/linux/KeyCodes.h"

namespace tovek {

/// No key of the desktop can be had: every grab is refused with the status of a missing key.
class NullHotKeys : public HotKeys
{
public:
    int grab(quint32, KeyCombo) override { return 1; }
    void release(quint32) override { }
    void setWatchingRawKeys(bool) override { }
    bool reportsRelease() const override { return false; }
    bool isTaken(KeyCombo) override { return false; }
};

/// Knows what no key types.
class NullKeyboardLayout : public KeyboardLayout
{
public:
    std::optional<QString> character(int) const override { return std::nullopt; }
    std::optional<QString> shiftedCharacter(int) const override { return std::nullopt; }
    std::optional<QString> characterOfScanCode(quint32) const override { return std::nullopt; }
    int keyCodeOfScanCode(quint32 nativeScanCode) const override
    {
        return hardwareKeyCode(int(nativeScanCode) - windowSystemKeyOffset);
    }
};

} // namespace tovek
