// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/capture/X11GrowingDisplay.h"

#include "platform/x11/X11PixelFormat.h"
#include "platform/x11/capture/X11ScreenGrabber.h"

#include <cstring>

namespace tovek {

namespace {

constexpr qsizetype pixelBytes = 4;

} // namespace

std::unique_ptr<X11GrowingDisplay>
X11GrowingDisplay::create(std::shared_ptr<X11Connection> connection, QSize size)
{
    xcb_connection_t *xcb = connection->xcb();
    if (!xcb
        || x11RootFormat(*xcb_get_setup(xcb), connection->screen()).format != QImage::Format_RGB32
        || !x11SharesMemory(xcb))
        return nullptr;
    auto memory = X11SharedMemory::create(xcb, pixelBytes * size.width() * size.height());
    if (!memory)
        return nullptr;
    return std::unique_ptr<X11GrowingDisplay>(
        new X11GrowingDisplay(std::move(connection), size, std::move(*memory)));
}

X11GrowingDisplay::X11GrowingDisplay(std::shared_ptr<X11Connection> connection, QSize size,
                                     X11SharedMemory memory)
    : m_connection(std::move(connection))
    , m_memory(std::move(memory))
    , m_pixmap(std::make_shared<X11Pixmap>(m_connection, size))
{
}

X11GrowingDisplay::~X11GrowingDisplay()
{
    if (xcb_connection_t *xcb = m_connection->xcb())
        m_memory.detach(xcb);
}

void X11GrowingDisplay::addRows(const QImage &rows)
{
    xcb_connection_t *xcb = m_connection->xcb();
    const QSize size = m_pixmap->size();
    const int count = std::min(rows.height(), size.height() - m_rows);
    if (!xcb || count <= 0 || rows.width() != size.width())
        return;
    const qsizetype lineBytes = pixelBytes * size.width();
    for (int y = 0; y < count; ++y)
        std::memcpy(m_memory.data() + (m_rows + y) * lineBytes, rows.constScanLine(y),
                    size_t(lineBytes));
    const auto width = uint16_t(size.width());
    xcb_shm_put_image(xcb, m_pixmap->id(), m_connection->copyGc(), width, uint16_t(size.height()),
                      0, uint16_t(m_rows), width, uint16_t(count), 0, int16_t(m_rows),
                      m_connection->screen().root_depth, XCB_IMAGE_FORMAT_Z_PIXMAP, 0,
                      m_memory.segment(), 0);
    m_connection->flush();
    m_rows += count;
}

std::shared_ptr<FrozenDisplay> X11GrowingDisplay::finished(const QImage &pixels)
{
    const bool isWhole =
        m_connection->xcb() && m_rows == m_pixmap->size().height() && m_pixmap->error().isEmpty();
    return isWhole ? std::make_shared<X11FrozenDisplay>(m_pixmap, pixels) : nullptr;
}

} // namespace tovek
