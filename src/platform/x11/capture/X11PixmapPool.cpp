// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/capture/X11PixmapPool.h"

#include "foundation/MainThread.h"

#include <algorithm>

namespace tovek {

X11PixmapPool::X11PixmapPool(std::shared_ptr<X11Connection> connection)
    : m_connection(std::move(connection))
{
    m_expiry.setSingleShot(true);
    m_expiry.setInterval(2000);
    m_expiry.callOnTimeout([this] {
        m_ready.clear();
        m_connection->flush();
    });
}

void X11PixmapPool::prepare(const std::vector<QSize> &sizes)
{
    Q_ASSERT(isMainThread());
    std::vector<std::shared_ptr<X11Pixmap>> ready;
    for (const QSize size : sizes) {
        const auto kept = std::find_if(m_ready.begin(), m_ready.end(),
                                       [size](const auto &p) { return p->size() == size; });
        if (kept != m_ready.end()) {
            ready.push_back(std::move(*kept));
            m_ready.erase(kept);
            continue;
        }
        const auto pixmap = std::make_shared<X11Pixmap>(m_connection, size);
        // A throw-away copy is what makes the server touch the memory.
        x11Copy(*m_connection, m_connection->root(), pixmap->id(), QRect(QPoint(), size), {});
        ready.push_back(pixmap);
    }
    m_ready = std::move(ready);
    // A reply behind the creations: asking for their errors later costs no waiting then.
    const auto barrier = xcb_get_input_focus(m_connection->xcb());
    xcb_discard_reply(m_connection->xcb(), barrier.sequence);
    m_connection->flush();
    m_expiry.start();
}

std::shared_ptr<X11Pixmap> X11PixmapPool::take(QSize size)
{
    Q_ASSERT(isMainThread());
    const auto ready = std::find_if(m_ready.begin(), m_ready.end(),
                                    [size](const auto &p) { return p->size() == size; });
    if (ready == m_ready.end())
        return std::make_shared<X11Pixmap>(m_connection, size);
    std::shared_ptr<X11Pixmap> pixmap = std::move(*ready);
    m_ready.erase(ready);
    return pixmap;
}

} // namespace tovek
