// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Workers.h"
#include "platform/x11/capture/X11Pixmap.h"

#include <QFuture>
#include <QImage>

#include <mutex>
#include <vector>

namespace tovek {

/// Tells when the server has carried out every request made before it, on any thread.
class X11Barrier
{
public:
    /// Sends a request on the connection; it must be flushed before anyone waits.
    explicit X11Barrier(std::shared_ptr<X11Connection> connection);
    ~X11Barrier();
    void wait();

private:
    std::shared_ptr<X11Connection> m_connection;
    xcb_connection_t *m_xcb;
    xcb_get_input_focus_cookie_t m_cookie;
    std::once_flag m_once;
    bool m_hasWaited = false;
};

/// Brings pixels out of the server, off the main thread and on a connection of its own, through
/// shared memory where the server is local and as plain replies elsewhere. The connection and the
/// memory exist only around a capture. Main thread only.
class X11PixelFetcher
{
public:
    enum class Transfer { sharedMemory, reply };

    X11PixelFetcher(std::shared_ptr<X11Connection> connection,
                    Transfer transfer = Transfer::sharedMemory);
    /// Finishes what is under way.
    ~X11PixelFetcher();

    /// Opens the connection and fills memory for images of these sizes: first touching it, on both
    /// sides, is what costs.
    void prepare(const std::vector<QSize> &sizes);
    /// The pixels as Format_RGB32; a null image with one log line when they are lost. The image
    /// owns its memory and outlives the fetcher.
    QFuture<QImage> fetch(std::shared_ptr<X11Pixmap> pixmap, std::shared_ptr<X11Barrier> barrier);
    /// Gives connection and unused memory back, after what is under way.
    void release();

private:
    struct Worker;

    std::shared_ptr<X11Connection> m_connection;
    std::unique_ptr<Worker> m_worker; ///< touched by the pool's one thread at a time
    Workers m_pool;
};

/// The rectangle of the root window as Format_RGB32, over a connection made for this call. Any
/// thread. A null image with one log line on failure.
QImage x11GrabRoot(QRect native);

} // namespace tovek
