// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/capture/WaylandScreenGrabber.h"

namespace tovek {

/// Over KWin's own screenshot service, which answers authorised programs only: those that an
/// installed desktop file names, with a line that asks for it. Main thread only.
class KWinScreenGrabber : public WaylandScreenGrabber
{
public:
    /// Null where there is no KWin to ask.
    static std::unique_ptr<ScreenGrabber> create(std::shared_ptr<WaylandConnection> connection,
                                                 std::shared_ptr<WaylandOutputs> outputs);

protected:
    std::unique_ptr<OutputCapture> begin(const WaylandOutput &output, Cursor cursor) override;
    void wait(const std::vector<std::unique_ptr<OutputCapture>> &captures,
              std::chrono::milliseconds limit) override;

private:
    using WaylandScreenGrabber::WaylandScreenGrabber;
};

} // namespace tovek
