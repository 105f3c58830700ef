// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/ScreenMemory.h"

#include <sys/ipc.h>
#include <sys/shm.h>
#include <xcb/shm.h>

namespace tovek {

std::unique_ptr<ScreenMemory> ScreenMemory::create(const XConnection &connection)
{
    if (!connection.isOpen()
        || (connection.screen()->root_depth != 24 && connection.screen()->root_depth != 32))
        return nullptr;
    const XPtr<xcb_shm_query_version_reply_t> version(
        xcb_shm_query_version_reply(connection, xcb_shm_query_version(connection), nullptr));
    if (!version)
        return nullptr;
    const size_t size =
        size_t(connection.screen()->width_in_pixels) * connection.screen()->height_in_pixels * 4;
    const int id = shmget(IPC_PRIVATE, size, IPC_CREAT | 0600);
    if (id < 0)
        return nullptr;
    void *memory = shmat(id, nullptr, 0);
    std::unique_ptr<ScreenMemory> pixels;
    if (memory != reinterpret_cast<void *>(-1)) {
        pixels.reset(new ScreenMemory(connection, memory));
        const XPtr<xcb_generic_error_t> refusal(xcb_request_check(
            connection,
            xcb_shm_attach_checked(connection, pixels->m_segment, uint32_t(id), false)));
        if (refusal)
            pixels.reset();
    }
    // It goes with the last of the two.
    shmctl(id, IPC_RMID, nullptr);
    return pixels;
}

ScreenMemory::ScreenMemory(const XConnection &connection, void *memory)
    : m_connection(connection)
    , m_memory(memory)
    , m_segment(xcb_generate_id(connection))
{
}

ScreenMemory::~ScreenMemory()
{
    shmdt(m_memory);
}

const uint32_t *ScreenMemory::read(QRect native)
{
    const XPtr<xcb_shm_get_image_reply_t> reply(xcb_shm_get_image_reply(
        m_connection,
        xcb_shm_get_image(m_connection, m_connection.root(), int16_t(native.x()),
                          int16_t(native.y()), uint16_t(native.width()), uint16_t(native.height()),
                          ~0u, XCB_IMAGE_FORMAT_Z_PIXMAP, m_segment, 0),
        nullptr));
    return reply ? static_cast<const uint32_t *>(m_memory) : nullptr;
}

} // namespace tovek
