// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/capture/ExtScreenGrabber.h"

#include "ext-image-capture-source-v1-client.h"
#include "ext-image-copy-capture-v1-client.h"
#include "platform/wayland/capture/WaylandPixelFormat.h"

namespace tovek {

class ExtCapture : public OutputCapture
{
public:
    ExtCapture(ExtScreenGrabber &grabber, const WaylandOutput &output, bool paintsCursor)
        : m_grabber(grabber)
    {
        const WaylandPtr<ext_image_capture_source_v1, ext_image_capture_source_v1_destroy> source(
            ext_output_image_capture_source_manager_v1_create_source(grabber.m_sources,
                                                                     output.handle));
        m_session.reset(ext_image_copy_capture_manager_v1_create_session(
            grabber.m_manager, source.get(),
            paintsCursor ? EXT_IMAGE_COPY_CAPTURE_MANAGER_V1_OPTIONS_PAINT_CURSORS : 0));
        static constexpr ext_image_copy_capture_session_v1_listener listener{
            &sized, &offered, &offeredDevice, &offeredDmabuf, &offeredAll, &stopped};
        ext_image_copy_capture_session_v1_add_listener(m_session.get(), &listener, this);
    }

private:
    using Session = ext_image_copy_capture_session_v1;
    using Frame = ext_image_copy_capture_frame_v1;
    static ExtCapture &self(void *data) { return *static_cast<ExtCapture *>(data); }

    static void sized(void *data, Session *, uint32_t width, uint32_t height)
    {
        self(data).m_size = QSize(int(width), int(height));
    }
    static void offered(void *data, Session *, uint32_t format)
    {
        const QImage::Format wanted = imageFormat(format);
        ExtCapture &capture = self(data);
        // Four bytes a pixel are what we choose the row length for; what need not be converted
        // is the best.
        if (wanted == QImage::Format_Invalid || format == WL_SHM_FORMAT_RGB888
            || format == WL_SHM_FORMAT_BGR888)
            return;
        if (!capture.m_hasFormat || wanted == QImage::Format_RGB32)
            capture.shmFormat = format;
        capture.m_hasFormat = true;
    }
    static void offeredDevice(void *, Session *, wl_array *) { }
    static void offeredDmabuf(void *, Session *, uint32_t, wl_array *) { }
    static void offeredAll(void *data, Session *)
    {
        // They come again when the output changes; the frame under way fails then.
        if (!self(data).m_frame)
            self(data).copy();
    }
    static void stopped(void *data, Session *)
    {
        if (self(data).state == State::waiting)
            self(data).fail(QStringLiteral("the compositor ended the capture"));
    }

    static void transformed(void *data, Frame *, uint32_t transform)
    {
        self(data).transform = int32_t(transform);
    }
    static void damaged(void *, Frame *, int32_t, int32_t, int32_t, int32_t) { }
    static void timed(void *, Frame *, uint32_t, uint32_t, uint32_t) { }
    static void ready(void *data, Frame *) { self(data).state = State::done; }
    static void failed(void *data, Frame *, uint32_t reason)
    {
        ExtCapture &capture = self(data);
        capture.m_frame.reset();
        if (reason == EXT_IMAGE_COPY_CAPTURE_FRAME_V1_FAILURE_REASON_STOPPED)
            return capture.fail(QStringLiteral("the compositor ended the capture"));
        if (!std::exchange(capture.m_hasRetried, true))
            return capture.copy();
        capture.fail(QStringLiteral("the compositor refused the picture"));
    }

    void copy()
    {
        if (!m_hasFormat || m_size.isEmpty())
            return fail(QStringLiteral("the compositor's pixels have an unknown format"));
        pixels = m_grabber.takePixels(m_size, qsizetype(m_size.width()) * 4);
        if (!pixels)
            return fail(QStringLiteral("there is no memory for the picture"));
        m_buffer.reset(pixels->makeBuffer(m_grabber.shm(), shmFormat));
        m_frame.reset(ext_image_copy_capture_session_v1_create_frame(m_session.get()));
        static constexpr ext_image_copy_capture_frame_v1_listener listener{&transformed, &damaged,
                                                                           &timed, &ready, &failed};
        ext_image_copy_capture_frame_v1_add_listener(m_frame.get(), &listener, this);
        ext_image_copy_capture_frame_v1_attach_buffer(m_frame.get(), m_buffer.get());
        ext_image_copy_capture_frame_v1_damage_buffer(m_frame.get(), 0, 0, m_size.width(),
                                                      m_size.height());
        ext_image_copy_capture_frame_v1_capture(m_frame.get());
    }

    ExtScreenGrabber &m_grabber;
    WaylandPtr<wl_buffer, wl_buffer_destroy> m_buffer;
    WaylandPtr<Session, ext_image_copy_capture_session_v1_destroy> m_session;
    WaylandPtr<Frame, ext_image_copy_capture_frame_v1_destroy> m_frame; ///< goes first
    QSize m_size;
    bool m_hasFormat = false;
    bool m_hasRetried = false;
};

std::unique_ptr<ScreenGrabber>
ExtScreenGrabber::create(std::shared_ptr<WaylandConnection> connection,
                         std::shared_ptr<WaylandOutputs> outputs)
{
    if (!connection->offers(ext_image_copy_capture_manager_v1_interface.name)
        || !connection->offers(ext_output_image_capture_source_manager_v1_interface.name))
        return nullptr;
    auto *manager = connection->bind<ext_image_copy_capture_manager_v1>(
        ext_image_copy_capture_manager_v1_interface, 1);
    auto *sources = connection->bind<ext_output_image_capture_source_manager_v1>(
        ext_output_image_capture_source_manager_v1_interface, 1);
    std::unique_ptr<ExtScreenGrabber> grabber(
        new ExtScreenGrabber(std::move(connection), std::move(outputs)));
    grabber->m_manager = manager;
    grabber->m_sources = sources;
    grabber->distrustCursor();
    return grabber;
}

ExtScreenGrabber::~ExtScreenGrabber()
{
    ext_image_copy_capture_manager_v1_destroy(m_manager);
    ext_output_image_capture_source_manager_v1_destroy(m_sources);
}

std::unique_ptr<OutputCapture> ExtScreenGrabber::begin(const WaylandOutput &output, Cursor cursor)
{
    return std::make_unique<ExtCapture>(*this, output, cursor == Cursor::painted);
}

} // namespace tovek
