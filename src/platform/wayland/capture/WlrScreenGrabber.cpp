// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/capture/WlrScreenGrabber.h"

#include "platform/wayland/capture/WaylandPixelFormat.h"
#include "wlr-screencopy-unstable-v1-client.h"

namespace tovek {

class WlrCapture : public OutputCapture
{
public:
    WlrCapture(WlrScreenGrabber &grabber, const WaylandOutput &output, bool paintsCursor)
        : m_grabber(grabber)
        , m_frame(zwlr_screencopy_manager_v1_capture_output(grabber.m_manager, paintsCursor,
                                                            output.handle))
    {
        transform = output.transform;
        static constexpr zwlr_screencopy_frame_v1_listener listener{
            &offered, &flagged, &ready, &failed, &damaged, &offeredDmabuf, &offeredAll};
        zwlr_screencopy_frame_v1_add_listener(m_frame.get(), &listener, this);
    }

private:
    using Frame = zwlr_screencopy_frame_v1;
    static WlrCapture &self(void *data) { return *static_cast<WlrCapture *>(data); }

    static void offered(void *data, Frame *frame, uint32_t format, uint32_t width, uint32_t height,
                        uint32_t stride)
    {
        WlrCapture &capture = self(data);
        if (!capture.m_size.isEmpty() && imageFormat(format) == QImage::Format_Invalid)
            return;
        capture.shmFormat = format;
        capture.m_size = QSize(int(width), int(height));
        capture.m_bytesPerLine = stride;
        // The older versions offer one kind of buffer and do not say when that was all.
        if (zwlr_screencopy_frame_v1_get_version(frame)
            < ZWLR_SCREENCOPY_FRAME_V1_BUFFER_DONE_SINCE_VERSION)
            capture.copy();
    }
    static void flagged(void *data, Frame *, uint32_t flags)
    {
        self(data).isUpsideDown = flags & ZWLR_SCREENCOPY_FRAME_V1_FLAGS_Y_INVERT;
    }
    static void ready(void *data, Frame *, uint32_t, uint32_t, uint32_t)
    {
        self(data).state = State::done;
    }
    static void failed(void *data, Frame *)
    {
        self(data).fail(QStringLiteral("the compositor refused the picture"));
    }
    static void damaged(void *, Frame *, uint32_t, uint32_t, uint32_t, uint32_t) { }
    static void offeredDmabuf(void *, Frame *, uint32_t, uint32_t, uint32_t) { }
    static void offeredAll(void *data, Frame *) { self(data).copy(); }

    void copy()
    {
        if (imageFormat(shmFormat) == QImage::Format_Invalid || m_size.isEmpty())
            return fail(QStringLiteral("the compositor's pixels have an unknown format"));
        pixels = m_grabber.takePixels(m_size, m_bytesPerLine);
        if (!pixels)
            return fail(QStringLiteral("there is no memory for the picture"));
        m_buffer.reset(pixels->makeBuffer(m_grabber.shm(), shmFormat));
        zwlr_screencopy_frame_v1_copy(m_frame.get(), m_buffer.get());
    }

    WlrScreenGrabber &m_grabber;
    WaylandPtr<wl_buffer, wl_buffer_destroy> m_buffer;
    WaylandPtr<Frame, zwlr_screencopy_frame_v1_destroy> m_frame;
    QSize m_size;
    qsizetype m_bytesPerLine = 0;
};

std::unique_ptr<ScreenGrabber>
WlrScreenGrabber::create(std::shared_ptr<WaylandConnection> connection,
                         std::shared_ptr<WaylandOutputs> outputs)
{
    auto *manager =
        connection->bind<zwlr_screencopy_manager_v1>(zwlr_screencopy_manager_v1_interface, 3);
    if (!manager)
        return nullptr;
    std::unique_ptr<WlrScreenGrabber> grabber(
        new WlrScreenGrabber(std::move(connection), std::move(outputs)));
    grabber->m_manager = manager;
    grabber->distrustCursor();
    return grabber;
}

WlrScreenGrabber::~WlrScreenGrabber()
{
    zwlr_screencopy_manager_v1_destroy(m_manager);
}

std::unique_ptr<OutputCapture> WlrScreenGrabber::begin(const WaylandOutput &output, Cursor cursor)
{
    return std::make_unique<WlrCapture>(*this, output, cursor == Cursor::painted);
}

} // namespace tovek
