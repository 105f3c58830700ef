// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/capture/WaylandScreenGrabber.h"

struct ext_image_copy_capture_manager_v1;
struct ext_output_image_capture_source_manager_v1;

namespace tovek {

/// Over ext-image-copy-capture. Each picture has a session of its own: only the first frame of one
/// comes at once, later ones when something changes.
class ExtScreenGrabber : public WaylandScreenGrabber
{
public:
    /// Null where the compositor does not offer it.
    static std::unique_ptr<ScreenGrabber> create(std::shared_ptr<WaylandConnection> connection,
                                                 std::shared_ptr<WaylandOutputs> outputs);
    ~ExtScreenGrabber() override;

protected:
    std::unique_ptr<OutputCapture> begin(const WaylandOutput &output, Cursor cursor) override;

private:
    friend class ExtCapture;
    using WaylandScreenGrabber::WaylandScreenGrabber;

    ext_image_copy_capture_manager_v1 *m_manager = nullptr;
    ext_output_image_capture_source_manager_v1 *m_sources = nullptr;
};

} // namespace tovek
