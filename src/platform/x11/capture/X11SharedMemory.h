// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QtGlobal>

#include <optional>
#include <xcb/shm.h>

namespace tovek {

/// Memory that this process and the X server both see. The memory lives as long as the object;
/// the server's side until `detach`. One thread at a time.
class X11SharedMemory
{
public:
    /// Populated on our side. Absent where the server is remote or memory is short.
    static std::optional<X11SharedMemory> create(xcb_connection_t *connection, qsizetype bytes);
    X11SharedMemory(X11SharedMemory &&other) noexcept;
    X11SharedMemory &operator=(X11SharedMemory &&other) noexcept;
    ~X11SharedMemory();

    xcb_shm_seg_t segment() const { return m_segment; }
    uchar *data() const { return m_data; }
    qsizetype bytes() const { return m_bytes; }
    void detach(xcb_connection_t *connection);
    /// Gives the memory away: the caller unmaps it.
    uchar *release();

private:
    X11SharedMemory(xcb_shm_seg_t segment, uchar *data, qsizetype bytes);

    xcb_shm_seg_t m_segment = 0;
    uchar *m_data = nullptr;
    qsizetype m_bytes = 0;
};

/// True when the server takes descriptors of memory: it is local and knows the extension.
bool x11SharesMemory(xcb_connection_t *connection);

} // namespace tovek
