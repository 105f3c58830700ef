// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/Shortcut.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// Whatever stands in the settings for a shortcut, what is read of it is what would be stored.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace KeyboardShortcuts;
    const auto shortcut = Shortcut::fromJson(
        QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size)));
    if (!shortcut)
        return 0;
    const bool isKept = Shortcut::fromJson(shortcut->toJson()) == shortcut;
    const qint64 known = normalizedModifiers(shortcut->carbonModifiers);
    const bool isInverse = carbonModifiers(keyFlags(shortcut->carbonModifiers)) == known
        && normalizedModifiers(known) == known;
    if (!isKept || !isInverse)
        std::abort();
    return 0;
}
