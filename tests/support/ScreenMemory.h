// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/XConnection.h"

#include <QRect>

namespace tovek {

/// Memory that an X server writes the pixels of its screen to. Through its socket a screen comes in
/// a hundred pieces, for each of which one of the two waits for the other.
class ScreenMemory
{
public:
    /// Null where the server shares none, or pixels are not 32 bits.
    static std::unique_ptr<ScreenMemory> create(const XConnection &connection);
    ~ScreenMemory();
    ScreenMemory(const ScreenMemory &) = delete;
    ScreenMemory &operator=(const ScreenMemory &) = delete;

    /// The pixels of a part of the screen, line by line, until it is called again; null when the
    /// server cannot tell.
    const uint32_t *read(QRect native);

private:
    ScreenMemory(const XConnection &connection, void *memory);

    const XConnection &m_connection;
    void *m_memory;
    uint32_t m_segment;
};

} // namespace tovek
