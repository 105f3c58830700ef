// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/capture/WaylandScreenGrabber.h"

struct zwlr_screencopy_manager_v1;

namespace tovek {

/// Over wlr-screencopy.
class WlrScreenGrabber : public WaylandScreenGrabber
{
public:
    /// Null where the compositor does not offer it.
    static std::unique_ptr<ScreenGrabber> create(std::shared_ptr<WaylandConnection> connection,
                                                 std::shared_ptr<WaylandOutputs> outputs);
    ~WlrScreenGrabber() override;

protected:
    std::unique_ptr<OutputCapture> begin(const WaylandOutput &output, Cursor cursor) override;

private:
    friend class WlrCapture;
    using WaylandScreenGrabber::WaylandScreenGrabber;

    zwlr_screencopy_manager_v1 *m_manager = nullptr;
};

} // namespace tovek
