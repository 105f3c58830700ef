// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/capture/X11Pixmap.h"

#include <QTimer>

#include <vector>

namespace tovek {

/// Pixmaps made ahead of their use, because making the server touch fresh memory is most of what
/// a first copy costs. They go back when nobody takes them within two seconds. Main thread only.
class X11PixmapPool
{
public:
    explicit X11PixmapPool(std::shared_ptr<X11Connection> connection);
    /// Makes the pool hold one pixmap for each size, and starts its time anew.
    void prepare(const std::vector<QSize> &sizes);
    /// A prepared pixmap, or a new one; its content is anything.
    std::shared_ptr<X11Pixmap> take(QSize size);
    size_t count() const { return m_ready.size(); }

private:
    std::shared_ptr<X11Connection> m_connection;
    std::vector<std::shared_ptr<X11Pixmap>> m_ready;
    QTimer m_expiry;
};

} // namespace tovek
