// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/capture/X11SharedMemory.h"

#include "platform/x11/X11Connection.h"

#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace tovek {

std::optional<X11SharedMemory> X11SharedMemory::create(xcb_connection_t *connection,
                                                       qsizetype bytes)
{
    const int descriptor = memfd_create("tovek-capture", MFD_CLOEXEC);
    if (descriptor < 0)
        return std::nullopt;
    void *data = MAP_FAILED;
    if (ftruncate(descriptor, bytes) == 0)
        data = mmap(nullptr, size_t(bytes), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE,
                    descriptor, 0);
    if (data == MAP_FAILED) {
        close(descriptor);
        return std::nullopt;
    }
    const xcb_shm_seg_t segment = xcb_generate_id(connection);
    // The descriptor belongs to the connection from here on.
    const auto cookie = xcb_shm_attach_fd_checked(connection, segment, descriptor, 0);
    const X11Reply<xcb_generic_error_t> error(xcb_request_check(connection, cookie));
    if (error) {
        munmap(data, size_t(bytes));
        return std::nullopt;
    }
    return X11SharedMemory(segment, static_cast<uchar *>(data), bytes);
}

X11SharedMemory::X11SharedMemory(xcb_shm_seg_t segment, uchar *data, qsizetype bytes)
    : m_segment(segment)
    , m_data(data)
    , m_bytes(bytes)
{
}

X11SharedMemory::X11SharedMemory(X11SharedMemory &&other) noexcept
    : m_segment(std::exchange(other.m_segment, 0))
    , m_data(std::exchange(other.m_data, nullptr))
    , m_bytes(std::exchange(other.m_bytes, 0))
{
}

X11SharedMemory &X11SharedMemory::operator=(X11SharedMemory &&other) noexcept
{
    std::swap(m_segment, other.m_segment);
    std::swap(m_data, other.m_data);
    std::swap(m_bytes, other.m_bytes);
    return *this;
}

X11SharedMemory::~X11SharedMemory()
{
    if (m_data)
        munmap(m_data, size_t(m_bytes));
}

void X11SharedMemory::detach(xcb_connection_t *connection)
{
    if (m_segment)
        xcb_shm_detach(connection, std::exchange(m_segment, 0));
}

uchar *X11SharedMemory::release()
{
    return std::exchange(m_data, nullptr);
}

bool x11SharesMemory(xcb_connection_t *connection)
{
    sockaddr_storage address{};
    socklen_t length = sizeof(address);
    const int descriptor = xcb_get_file_descriptor(connection);
    if (getsockname(descriptor, reinterpret_cast<sockaddr *>(&address), &length) != 0
        || address.ss_family != AF_UNIX)
        return false;
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(connection, &xcb_shm_id);
    if (!extension || !extension->present)
        return false;
    const X11Reply<xcb_shm_query_version_reply_t> version(
        xcb_shm_query_version_reply(connection, xcb_shm_query_version(connection), nullptr));
    return version && (version->major_version > 1 || version->minor_version >= 2);
}

} // namespace tovek
