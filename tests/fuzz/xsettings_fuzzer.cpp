// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/tray/XSettings.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// Any program may publish the desktop's settings: whatever it says, reading them ends, and says
/// the same twice.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray block(reinterpret_cast<const char *>(data), qsizetype(size));
    for (const char *name : {"Net/EnableEventSounds", "", "a"}) {
        if (tovek::XSettings::integer(block, name) != tovek::XSettings::integer(block, name))
            std::abort();
    }
    return 0;
}
