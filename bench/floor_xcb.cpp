// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The floor under a capture: what the display server and the processor cost when nothing else is
// done. A bare client that does nothing but wait until F8 comes up. It then copies the screen
// inside the server (an image brought over would take several times as long), maps one unmanaged
// window with the copy as its background, and knows what the keys and the mouse do to it:
// a drag shows a rubber band, Return puts the picture on the clipboard, Ctrl+S writes it to the
// file, Escape closes. It keeps nothing from one capture to the next.
//
// floor_xcb FILE PIXELS_LEFT_OUT
//   PIXELS_LEFT_OUT  columns and rows at the right and the bottom that the result does not have
// Output: "ready"; a line "problem ..." when something did not work.

#include "FloorPng.h"

#include <QImage>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace {

// Key codes of a keyboard with the evdev rules.
constexpr xcb_keycode_t f8 = 74, returnKey = 36, escapeKey = 9, sKey = 39;
/// The overlay is on the screen by then, and nobody can have chosen anything yet.
constexpr int fetchDelayMs = 40;
constexpr size_t pieceBytes = 1 << 20;

struct FreeDeleter
{
    void operator()(void *memory) const { std::free(memory); }
};
template <typename T>
using Owned = std::unique_ptr<T, FreeDeleter>;

class Floor
{
public:
    Floor(xcb_connection_t *connection, const char *file, int leftOut);
    void run();

private:
    void handle(const xcb_generic_event_t &event);
    void keyPressed(const xcb_key_press_event_t &event);
    void open();
    void close();
    void fetch();
    void drawBand(int16_t x, int16_t y);
    void eraseBand();
    QByteArray encode() const;
    void copy();
    void save();
    void serve(const xcb_selection_request_event_t &request);
    void sendPiece();
    xcb_atom_t atom(const char *name) const;

    xcb_connection_t *m_connection;
    xcb_screen_t *m_screen;
    const char *m_file;
    int m_leftOut;
    xcb_atom_t m_clipboard, m_targets, m_png, m_incr;
    xcb_gcontext_t m_copyGc, m_lineGc;
    xcb_window_t m_owner; ///< of the clipboard
    xcb_window_t m_window = 0;
    xcb_pixmap_t m_frozen = 0;
    QImage m_pixels;
    bool m_isDragging = false;
    xcb_rectangle_t m_band{};
    int16_t m_anchorX = 0, m_anchorY = 0;
    QByteArray m_result;
    xcb_selection_request_event_t m_reader{};
    qsizetype m_sent = -1; ///< bytes of the result that the reader has; -1: it reads nothing
};

Floor::Floor(xcb_connection_t *connection, const char *file, int leftOut)
    : m_connection(connection)
    , m_screen(xcb_setup_roots_iterator(xcb_get_setup(connection)).data)
    , m_file(file)
    , m_leftOut(leftOut)
    , m_clipboard(atom("CLIPBOARD"))
    , m_targets(atom("TARGETS"))
    , m_png(atom("image/png"))
    , m_incr(atom("INCR"))
    , m_copyGc(xcb_generate_id(connection))
    , m_lineGc(xcb_generate_id(connection))
    , m_owner(xcb_generate_id(connection))
{
    const uint32_t withChildren[]{XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS, 0};
    xcb_create_gc(connection, m_copyGc, m_screen->root,
                  XCB_GC_SUBWINDOW_MODE | XCB_GC_GRAPHICS_EXPOSURES, withChildren);
    xcb_create_gc(connection, m_lineGc, m_screen->root, XCB_GC_FOREGROUND, &m_screen->white_pixel);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, m_owner, m_screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_grab_key(connection, 0, m_screen->root, XCB_MOD_MASK_ANY, f8, XCB_GRAB_MODE_ASYNC,
                 XCB_GRAB_MODE_ASYNC);
}

xcb_atom_t Floor::atom(const char *name) const
{
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, 0, uint16_t(std::strlen(name)), name),
        nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

void Floor::open()
{
    const uint16_t width = m_screen->width_in_pixels;
    const uint16_t height = m_screen->height_in_pixels;
    m_frozen = xcb_generate_id(m_connection);
    xcb_create_pixmap(m_connection, m_screen->root_depth, m_frozen, m_screen->root, width, height);
    xcb_copy_area(m_connection, m_screen->root, m_frozen, m_copyGc, 0, 0, 0, 0, width, height);
    m_window = xcb_generate_id(m_connection);
    const uint32_t values[]{m_frozen, 1,
                            XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_BUTTON_PRESS
                                | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_BUTTON_MOTION};
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, m_screen->root, 0, 0, width,
                      height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, m_screen->root_visual,
                      XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    xcb_map_window(m_connection, m_window);
    const auto grab = xcb_grab_keyboard(m_connection, 0, m_window, XCB_CURRENT_TIME,
                                        XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    xcb_discard_reply(m_connection, grab.sequence);
    xcb_flush(m_connection);
}

void Floor::close()
{
    if (!m_window)
        return;
    xcb_destroy_window(m_connection, m_window);
    xcb_free_pixmap(m_connection, m_frozen);
    xcb_flush(m_connection);
    m_window = 0;
    m_frozen = 0;
    m_pixels = {};
    m_band = {};
    m_isDragging = false;
}

void Floor::fetch()
{
    const uint16_t width = m_screen->width_in_pixels;
    const uint16_t height = m_screen->height_in_pixels;
    xcb_get_image_reply_t *reply = xcb_get_image_reply(
        m_connection,
        xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_frozen, 0, 0, width, height, ~0u),
        nullptr);
    if (!reply) {
        std::puts("problem: no pixels");
        std::fflush(stdout);
        return;
    }
    m_pixels = QImage(xcb_get_image_data(reply), width, height, 4 * width, QImage::Format_RGB32,
                      &std::free, reply);
}

void Floor::eraseBand()
{
    if (!m_band.width || !m_band.height)
        return;
    const auto [x, y, width, height] = m_band;
    const xcb_rectangle_t edges[]{{x, y, uint16_t(width + 1), 1},
                                  {x, int16_t(y + height), uint16_t(width + 1), 1},
                                  {x, y, 1, uint16_t(height + 1)},
                                  {int16_t(x + width), y, 1, uint16_t(height + 1)}};
    for (const xcb_rectangle_t &edge : edges)
        xcb_copy_area(m_connection, m_frozen, m_window, m_copyGc, edge.x, edge.y, edge.x, edge.y,
                      edge.width, edge.height);
}

void Floor::drawBand(int16_t x, int16_t y)
{
    eraseBand();
    m_band = {std::min(x, m_anchorX), std::min(y, m_anchorY), uint16_t(std::abs(x - m_anchorX)),
              uint16_t(std::abs(y - m_anchorY))};
    xcb_poly_rectangle(m_connection, m_window, m_lineGc, 1, &m_band);
    xcb_flush(m_connection);
}

QByteArray Floor::encode() const
{
    return tovek::bench::floorPng(QImage(m_pixels.constBits(), m_pixels.width() - m_leftOut,
                                         m_pixels.height() - m_leftOut, m_pixels.bytesPerLine(),
                                         m_pixels.format()));
}

void Floor::copy()
{
    m_result = encode();
    xcb_set_selection_owner(m_connection, m_owner, m_clipboard, XCB_CURRENT_TIME);
    xcb_flush(m_connection);
}

void Floor::save()
{
    const QByteArray png = encode();
    const int file = ::open(m_file, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0 || ::write(file, png.constData(), size_t(png.size())) != png.size())
        std::puts("problem: the file was not written");
    ::close(file);
    std::fflush(stdout);
}

void Floor::keyPressed(const xcb_key_press_event_t &event)
{
    // Hidden first, as a program must be that lets the user go on.
    const auto hide = [this] {
        xcb_unmap_window(m_connection, m_window);
        xcb_flush(m_connection);
    };
    if (event.detail == returnKey && m_window) {
        hide();
        copy();
        close();
    } else if (event.detail == sKey && (event.state & XCB_MOD_MASK_CONTROL) && m_window) {
        hide();
        save();
        close();
    } else if (event.detail == escapeKey) {
        close();
    }
}

void Floor::serve(const xcb_selection_request_event_t &request)
{
    xcb_selection_notify_event_t answer{};
    answer.response_type = XCB_SELECTION_NOTIFY;
    answer.requestor = request.requestor;
    answer.selection = request.selection;
    answer.target = request.target;
    answer.time = request.time;
    if (request.target == m_png) {
        const uint32_t wanted = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(m_connection, request.requestor, XCB_CW_EVENT_MASK, &wanted);
        const auto size = uint32_t(m_result.size());
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, request.requestor,
                            request.property, m_incr, 32, 1, &size);
        answer.property = request.property;
        m_reader = request;
        m_sent = 0;
    }
    xcb_send_event(m_connection, 0, request.requestor, 0, reinterpret_cast<const char *>(&answer));
    xcb_flush(m_connection);
}

void Floor::sendPiece()
{
    const size_t piece = std::min(pieceBytes, size_t(m_result.size() - m_sent));
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_reader.requestor, m_reader.property,
                        m_png, 8, uint32_t(piece), m_result.constData() + m_sent);
    xcb_flush(m_connection);
    m_sent = piece ? m_sent + qsizetype(piece) : -1;
}

void Floor::handle(const xcb_generic_event_t &event)
{
    switch (event.response_type & 0x7f) {
    case XCB_KEY_RELEASE:
        if (!m_window && reinterpret_cast<const xcb_key_release_event_t &>(event).detail == f8)
            open();
        break;
    case XCB_KEY_PRESS:
        keyPressed(reinterpret_cast<const xcb_key_press_event_t &>(event));
        break;
    case XCB_BUTTON_PRESS: {
        const auto &button = reinterpret_cast<const xcb_button_press_event_t &>(event);
        m_isDragging = true;
        m_anchorX = button.event_x;
        m_anchorY = button.event_y;
        break;
    }
    case XCB_BUTTON_RELEASE:
        m_isDragging = false;
        break;
    case XCB_MOTION_NOTIFY: {
        const auto &motion = reinterpret_cast<const xcb_motion_notify_event_t &>(event);
        if (m_isDragging)
            drawBand(motion.event_x, motion.event_y);
        break;
    }
    case XCB_SELECTION_REQUEST:
        serve(reinterpret_cast<const xcb_selection_request_event_t &>(event));
        break;
    case XCB_PROPERTY_NOTIFY: {
        const auto &change = reinterpret_cast<const xcb_property_notify_event_t &>(event);
        if (m_sent >= 0 && change.window == m_reader.requestor && change.atom == m_reader.property
            && change.state == XCB_PROPERTY_DELETE)
            sendPiece();
        break;
    }
    default:
        break;
    }
}

void Floor::run()
{
    xcb_flush(m_connection);
    std::puts("ready");
    std::fflush(stdout);
    while (!xcb_connection_has_error(m_connection)) {
        const bool shouldFetch = m_window && m_pixels.isNull();
        pollfd waiting{xcb_get_file_descriptor(m_connection), POLLIN, 0};
        Owned<xcb_generic_event_t> event(xcb_poll_for_event(m_connection));
        if (!event && poll(&waiting, 1, shouldFetch ? fetchDelayMs : -1) == 0)
            fetch();
        for (; event; event.reset(xcb_poll_for_queued_event(m_connection)))
            handle(*event);
    }
}

} // namespace

int main(int argc, char **argv)
{
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    if (argc < 3 || xcb_connection_has_error(connection)) {
        std::fputs("usage: floor_xcb FILE PIXELS_LEFT_OUT\n", stderr);
        xcb_disconnect(connection);
        return 1;
    }
    Floor(connection, argv[1], std::atoi(argv[2])).run();
    xcb_disconnect(connection);
    return 1;
}
