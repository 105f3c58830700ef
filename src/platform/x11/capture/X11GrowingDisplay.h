// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/ScreenGrabber.h"
#include "platform/x11/capture/X11Pixmap.h"
#include "platform/x11/capture/X11SharedMemory.h"

namespace tovek {

/// Brings the rows to the X server as they come, so that none of them has to wait for the others.
class X11GrowingDisplay : public GrowingDisplay
{
public:
    /// Null where the server has no memory together with us, or other pixels.
    static std::unique_ptr<X11GrowingDisplay> create(std::shared_ptr<X11Connection> connection,
                                                     QSize size);
    ~X11GrowingDisplay() override;
    void addRows(const QImage &rows) override;
    std::shared_ptr<FrozenDisplay> finished(const QImage &pixels) override;

private:
    X11GrowingDisplay(std::shared_ptr<X11Connection> connection, QSize size,
                      X11SharedMemory memory);

    std::shared_ptr<X11Connection> m_connection;
    X11SharedMemory m_memory; ///< for all rows: the server reads them when it likes
    std::shared_ptr<X11Pixmap> m_pixmap;
    int m_rows = 0;
};

} // namespace tovek
