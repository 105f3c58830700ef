// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "ext-image-capture-source-v1-server.h"
#include "ext-image-copy-capture-v1-server.h"
#include "foundation/MirroredImage.h"
#include "support/compositor/CompositorState.h"
#include "wlr-screencopy-unstable-v1-server.h"

#include <QTransform>

#include <cstring>

namespace tovek {

namespace {

using Captures = TestCompositor::Captures;

/// As our own client sees the same bytes, told independently of it.
QImage::Format formatOf(uint32_t shmFormat)
{
    switch (shmFormat) {
    case WL_SHM_FORMAT_ARGB8888:
    case WL_SHM_FORMAT_XRGB8888:
        return QImage::Format_RGB32;
    case WL_SHM_FORMAT_ABGR8888:
    case WL_SHM_FORMAT_XBGR8888:
        return QImage::Format_RGBX8888;
    case WL_SHM_FORMAT_XRGB2101010:
        return QImage::Format_RGB30;
    case WL_SHM_FORMAT_XBGR2101010:
        return QImage::Format_BGR30;
    case WL_SHM_FORMAT_BGR888:
        return QImage::Format_RGB888;
    case WL_SHM_FORMAT_RGB888:
        return QImage::Format_BGR888;
    default:
        return QImage::Format_RGB16; // of which nothing is ever written
    }
}

/// One picture on its way, over either protocol.
struct CaptureState
{
    OutputState *output = nullptr;
    bool paintsCursor = false;
    wl_resource *frame = nullptr, *session = nullptr, *buffer = nullptr;
};

QSize panelSize(const OutputState &output)
{
    const QSize size = output.output.picture.size();
    return output.output.transform & 1 ? size.transposed() : size;
}

enum class Fate { picture, refused, silent, stopped };

/// What happens to a picture that is asked for now.
Fate fateOf(CompositorState &state, OutputState &output)
{
    ++state.captureCount;
    if (!output.global)
        return Fate::refused;
    switch (state.captures) {
    case Captures::work:
        return Fate::picture;
    case Captures::areRefusedOnce:
        state.captures = Captures::work;
        return Fate::refused;
    case Captures::areRefused:
        return Fate::refused;
    case Captures::areSilent:
        return Fate::silent;
    case Captures::stop:
        return Fate::stopped;
    case Captures::loseTheirOutput:
        state.captures = Captures::work;
        wl_global_remove(std::exchange(output.global, nullptr));
        return Fate::refused;
    }
    return Fate::silent;
}

/// False when the buffer is not as it was announced.
bool copyInto(wl_resource *buffer, const QImage &picture, uint32_t format, bool isUpsideDown)
{
    wl_shm_buffer *shm = wl_shm_buffer_get(buffer);
    if (!shm || wl_shm_buffer_get_format(shm) != format
        || wl_shm_buffer_get_width(shm) != picture.width()
        || wl_shm_buffer_get_height(shm) != picture.height())
        return false;
    QImage converted = picture.convertToFormat(formatOf(format));
    if (isUpsideDown)
        converted = mirroredImage(converted, Qt::Vertical);
    const int stride = wl_shm_buffer_get_stride(shm);
    wl_shm_buffer_begin_access(shm);
    auto *to = static_cast<uchar *>(wl_shm_buffer_get_data(shm));
    for (int y = 0; y < converted.height(); ++y)
        std::memcpy(to + qsizetype(y) * stride, converted.constScanLine(y),
                    size_t(std::min<qsizetype>(stride, converted.bytesPerLine())));
    // What an X stands for in a format is anything.
    if (format == WL_SHM_FORMAT_XRGB8888 || format == WL_SHM_FORMAT_XBGR8888) {
        for (qsizetype byte = 3; byte < qsizetype(stride) * converted.height(); byte += 4)
            to[byte] = 0;
    }
    wl_shm_buffer_end_access(shm);
    return true;
}

// wlr-screencopy

void wlrCopy(wl_client *, wl_resource *frame, wl_resource *buffer)
{
    auto &capture = stateOf<CaptureState>(frame);
    CompositorState &state = *capture.output->compositor;
    const Fate fate = fateOf(state, *capture.output);
    if (fate == Fate::silent)
        return;
    if (fate != Fate::picture)
        return zwlr_screencopy_frame_v1_send_failed(frame);
    if (!copyInto(buffer, state.capture(*capture.output, capture.paintsCursor),
                  state.plan.formats.front(), state.plan.isUpsideDown)) {
        wl_resource_post_error(frame, ZWLR_SCREENCOPY_FRAME_V1_ERROR_INVALID_BUFFER,
                               "not the buffer that was announced");
        return;
    }
    zwlr_screencopy_frame_v1_send_flags(
        frame, state.plan.isUpsideDown ? ZWLR_SCREENCOPY_FRAME_V1_FLAGS_Y_INVERT : 0);
    zwlr_screencopy_frame_v1_send_ready(frame, 0, 0, 0);
}

const struct zwlr_screencopy_frame_v1_interface wlrFrameRequests
{
    &wlrCopy, &destroyResource, &wlrCopy
};

void wlrCapture(wl_client *client, wl_resource *manager, uint32_t id, int32_t paintsCursor,
                wl_resource *output)
{
    auto *capture = new CaptureState; // goes with its resource
    capture->output = &stateOf<OutputState>(output);
    capture->paintsCursor = paintsCursor;
    wl_resource *frame = wl_resource_create(client, &zwlr_screencopy_frame_v1_interface,
                                            wl_resource_get_version(manager), id);
    wl_resource_set_implementation(frame, &wlrFrameRequests, capture,
                                   [](wl_resource *gone) { delete &stateOf<CaptureState>(gone); });
    const QSize size = panelSize(*capture->output);
    const uint32_t format = capture->output->compositor->plan.formats.front();
    const int bytes = QImage::toPixelFormat(formatOf(format)).bitsPerPixel() / 8;
    zwlr_screencopy_frame_v1_send_buffer(frame, format, uint32_t(size.width()),
                                         uint32_t(size.height()),
                                         uint32_t((size.width() * bytes + 3) / 4 * 4));
    if (wl_resource_get_version(frame) >= ZWLR_SCREENCOPY_FRAME_V1_BUFFER_DONE_SINCE_VERSION) {
        zwlr_screencopy_frame_v1_send_linux_dmabuf(frame, 0x34325258, uint32_t(size.width()),
                                                   uint32_t(size.height()));
        zwlr_screencopy_frame_v1_send_buffer_done(frame);
    }
}

const struct zwlr_screencopy_manager_v1_interface wlrRequests
{
    &wlrCapture, nullptr, &destroyResource
};

void bindWlr(wl_client *client, void *data, uint32_t version, uint32_t id)
{
    wl_resource *resource =
        wl_resource_create(client, &zwlr_screencopy_manager_v1_interface, int(version), id);
    wl_resource_set_implementation(resource, &wlrRequests, data, nullptr);
}

// ext-image-copy-capture

void extAttach(wl_client *, wl_resource *frame, wl_resource *buffer)
{
    stateOf<CaptureState>(frame).buffer = buffer;
}

void extDamage(wl_client *, wl_resource *frame, int32_t x, int32_t y, int32_t width, int32_t height)
{
    if (x < 0 || y < 0 || width <= 0 || height <= 0)
        wl_resource_post_error(frame, EXT_IMAGE_COPY_CAPTURE_FRAME_V1_ERROR_INVALID_BUFFER_DAMAGE,
                               "no such part");
}

void extCapture(wl_client *, wl_resource *frame)
{
    auto &capture = stateOf<CaptureState>(frame);
    if (!capture.buffer) {
        wl_resource_post_error(frame, EXT_IMAGE_COPY_CAPTURE_FRAME_V1_ERROR_NO_BUFFER, "no buffer");
        return;
    }
    CompositorState &state = *capture.output->compositor;
    switch (fateOf(state, *capture.output)) {
    case Fate::silent:
        return;
    case Fate::stopped:
        if (capture.session)
            ext_image_copy_capture_session_v1_send_stopped(capture.session);
        return ext_image_copy_capture_frame_v1_send_failed(
            frame, EXT_IMAGE_COPY_CAPTURE_FRAME_V1_FAILURE_REASON_STOPPED);
    case Fate::refused:
        return ext_image_copy_capture_frame_v1_send_failed(
            frame, EXT_IMAGE_COPY_CAPTURE_FRAME_V1_FAILURE_REASON_UNKNOWN);
    case Fate::picture:
        break;
    }
    const QImage picture = state.capture(*capture.output, capture.paintsCursor);
    for (const uint32_t format : state.plan.formats) {
        if (!copyInto(capture.buffer, picture, format, false))
            continue;
        ext_image_copy_capture_frame_v1_send_transform(frame,
                                                       uint32_t(capture.output->output.transform));
        ext_image_copy_capture_frame_v1_send_damage(frame, 0, 0, picture.width(), picture.height());
        ext_image_copy_capture_frame_v1_send_ready(frame);
        return;
    }
    ext_image_copy_capture_frame_v1_send_failed(
        frame, EXT_IMAGE_COPY_CAPTURE_FRAME_V1_FAILURE_REASON_BUFFER_CONSTRAINTS);
}

const struct ext_image_copy_capture_frame_v1_interface extFrameRequests
{
    &destroyResource, &extAttach, &extDamage, &extCapture
};

struct SessionState
{
    OutputState *output;
    bool paintsCursor;
    CaptureState *frame; ///< the only one at a time
};

void extCreateFrame(wl_client *client, wl_resource *session, uint32_t id)
{
    auto &state = stateOf<SessionState>(session);
    if (state.frame) {
        wl_resource_post_error(session, EXT_IMAGE_COPY_CAPTURE_SESSION_V1_ERROR_DUPLICATE_FRAME,
                               "there is a frame");
        return;
    }
    auto *capture = new CaptureState; // goes with its resource
    capture->output = state.output;
    capture->paintsCursor = state.paintsCursor;
    capture->session = session;
    state.frame = capture;
    wl_resource *frame =
        wl_resource_create(client, &ext_image_copy_capture_frame_v1_interface, 1, id);
    wl_resource_set_implementation(frame, &extFrameRequests, capture, [](wl_resource *gone) {
        auto *going = &stateOf<CaptureState>(gone);
        if (going->session)
            stateOf<SessionState>(going->session).frame = nullptr;
        delete going;
    });
}

const struct ext_image_copy_capture_session_v1_interface extSessionRequests
{
    &extCreateFrame, &destroyResource
};

void extCreateSession(wl_client *client, wl_resource *, uint32_t id, wl_resource *source,
                      uint32_t options)
{
    auto *state = new SessionState{&stateOf<OutputState>(source), options != 0, nullptr};
    wl_resource *session =
        wl_resource_create(client, &ext_image_copy_capture_session_v1_interface, 1, id);
    wl_resource_set_implementation(session, &extSessionRequests, state, [](wl_resource *gone) {
        auto *going = &stateOf<SessionState>(gone);
        if (going->frame)
            going->frame->session = nullptr;
        delete going;
    });
    const QSize size = panelSize(*state->output);
    ext_image_copy_capture_session_v1_send_buffer_size(session, uint32_t(size.width()),
                                                       uint32_t(size.height()));
    for (const uint32_t format : state->output->compositor->plan.formats)
        ext_image_copy_capture_session_v1_send_shm_format(session, format);
    ext_image_copy_capture_session_v1_send_done(session);
}

const struct ext_image_copy_capture_manager_v1_interface extRequests
{
    &extCreateSession, nullptr, &destroyResource
};
const struct ext_image_capture_source_v1_interface sourceRequests
{
    &destroyResource
};

void extCreateSource(wl_client *client, wl_resource *, uint32_t id, wl_resource *output)
{
    wl_resource *source = wl_resource_create(client, &ext_image_capture_source_v1_interface, 1, id);
    wl_resource_set_implementation(source, &sourceRequests, &stateOf<OutputState>(output), nullptr);
}

const struct ext_output_image_capture_source_manager_v1_interface sourcesRequests
{
    &extCreateSource, &destroyResource
};

} // namespace

QImage CompositorState::capture(const OutputState &output, bool withCursor)
{
    // A cursor that no hardware draws lies in the picture either way, unless it is hidden.
    isCursorPainted = isCursorPainted || withCursor;
    const QImage seen = compose(output, isCursorPainted || !plan.hasCursorHardware);
    const int32_t transform = output.output.transform;
    // Back to how the panel has it: the turn that the output makes, undone.
    QImage panel = transform & 4 ? mirroredImage(seen, Qt::Horizontal) : seen;
    if (transform & 3)
        panel = panel.transformed(QTransform().rotate(-90.0 * (transform & 3)));
    return panel;
}

void offerCaptures(CompositorState &state)
{
    state.offer(zwlr_screencopy_manager_v1_interface, int(state.plan.screencopyVersion), &bindWlr);
    state.offer(ext_image_copy_capture_manager_v1_interface, 1,
                &bindPlain<ext_image_copy_capture_manager_v1_interface, extRequests>);
    state.offer(ext_output_image_capture_source_manager_v1_interface, 1,
                &bindPlain<ext_output_image_capture_source_manager_v1_interface, sourcesRequests>);
}

} // namespace tovek
