// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// A real client for desktop tests: a window without a frame that shows the test picture with two
// lines of text in it, and tells on its output what happens to it.
//
// picture_window X Y WIDTH HEIGHT [--unmanaged] [--plain]
//   --unmanaged  the window manager does not see it
//   --plain      no text: every pixel is that of the picture
// Input: "invert" repaints the picture inverted.
// Output: "painted", "inverted", "focus in", "focus out", "key down CODE", "key up CODE",
// "button down NUMBER".

#include "support/Picture.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <poll.h>
#include <string_view>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>
#include <xcb/xcb_icccm.h>

namespace {

struct FreeDeleter
{
    void operator()(void *memory) const { std::free(memory); }
};

struct Options
{
    int16_t x = 0, y = 0;
    uint16_t width = 0, height = 0;
    bool isUnmanaged = false, isPlain = false;
};

void say(const char *text)
{
    std::puts(text);
    std::fflush(stdout);
}

class PictureWindow
{
public:
    PictureWindow(xcb_connection_t *connection, const Options &options);
    void paint(bool isInverted);
    void handle(const xcb_generic_event_t &event);

private:
    void describe();
    xcb_atom_t atom(const char *name);

    xcb_connection_t *m_connection;
    xcb_screen_t *m_screen;
    Options m_options;
    xcb_window_t m_window;
    xcb_pixmap_t m_pixmap;
    xcb_gcontext_t m_gc;
    bool m_isExposed = false;
};

PictureWindow::PictureWindow(xcb_connection_t *connection, const Options &options)
    : m_connection(connection)
    , m_screen(xcb_setup_roots_iterator(xcb_get_setup(connection)).data)
    , m_options(options)
    , m_window(xcb_generate_id(connection))
    , m_pixmap(xcb_generate_id(connection))
    , m_gc(xcb_generate_id(connection))
{
    const uint32_t values[]{options.isUnmanaged,
                            XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_FOCUS_CHANGE
                                | XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE
                                | XCB_EVENT_MASK_BUTTON_PRESS};
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, m_window, m_screen->root, options.x,
                      options.y, options.width, options.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      m_screen->root_visual, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    xcb_create_pixmap(connection, m_screen->root_depth, m_pixmap, m_window, options.width,
                      options.height);
    xcb_create_gc(connection, m_gc, m_pixmap, 0, nullptr);
    describe();
    paint(false);
    xcb_map_window(connection, m_window);
}

xcb_atom_t PictureWindow::atom(const char *name)
{
    const std::unique_ptr<xcb_intern_atom_reply_t, FreeDeleter> reply(xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, false, uint16_t(std::strlen(name)), name),
        nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

void PictureWindow::describe()
{
    const char windowClass[] = "picture\0Picture";
    xcb_icccm_set_wm_class(m_connection, m_window, sizeof windowClass, windowClass);
    xcb_icccm_set_wm_name(m_connection, m_window, XCB_ATOM_STRING, 8, 7, "Picture");
    // Neither frame nor title bar (the hints that every window manager knows), and just this place.
    const uint32_t noDecorations[5]{2, 0, 0, 0, 0};
    const xcb_atom_t hints = atom("_MOTIF_WM_HINTS");
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, hints, hints, 32, 5,
                        noDecorations);
    xcb_size_hints_t size{};
    xcb_icccm_size_hints_set_position(&size, 1, m_options.x, m_options.y);
    xcb_icccm_size_hints_set_size(&size, 1, m_options.width, m_options.height);
    xcb_icccm_set_wm_normal_hints(m_connection, m_window, &size);
}

void PictureWindow::paint(bool isInverted)
{
    const uint32_t flip = isInverted ? 0xffffff : 0;
    std::vector<uint32_t> row(m_options.width);
    for (uint16_t y = 0; y < m_options.height; ++y) {
        for (uint16_t x = 0; x < m_options.width; ++x)
            row[x] = tovek::pictureColor(x, y) ^ flip;
        xcb_put_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_pixmap, m_gc, m_options.width, 1,
                      0, int16_t(y), 0, m_screen->root_depth, uint32_t(row.size() * 4),
                      reinterpret_cast<const uint8_t *>(row.data()));
    }
    if (!m_options.isPlain) {
        const xcb_font_t font = xcb_generate_id(m_connection);
        xcb_open_font(m_connection, font, 5, "fixed");
        const uint32_t values[]{0x101010, 0xf8f8f0, font};
        const xcb_gcontext_t textGc = xcb_generate_id(m_connection);
        xcb_create_gc(m_connection, textGc, m_pixmap,
                      XCB_GC_FOREGROUND | XCB_GC_BACKGROUND | XCB_GC_FONT, values);
        constexpr std::string_view lines[]{"The quick brown fox jumps over the lazy dog.",
                                           "Pack my box with five dozen liquor jugs, 1234567890"};
        int16_t y = 40;
        for (const std::string_view line : lines) {
            xcb_image_text_8(m_connection, uint8_t(line.size()), m_pixmap, textGc, 24, y,
                             line.data());
            y = int16_t(y + 24);
        }
        xcb_free_gc(m_connection, textGc);
        xcb_close_font(m_connection, font);
    }
    // As its background the server itself repaints the picture wherever it comes to light again.
    xcb_change_window_attributes(m_connection, m_window, XCB_CW_BACK_PIXMAP, &m_pixmap);
    xcb_clear_area(m_connection, false, m_window, 0, 0, 0, 0);
    std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

void PictureWindow::handle(const xcb_generic_event_t &event)
{
    char line[64];
    switch (event.response_type & 0x7f) {
    case XCB_EXPOSE:
        if (!m_isExposed)
            say("painted");
        m_isExposed = true;
        break;
    case XCB_FOCUS_IN:
        say("focus in");
        break;
    case XCB_FOCUS_OUT:
        say("focus out");
        break;
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE: {
        const auto &key = reinterpret_cast<const xcb_key_press_event_t &>(event);
        const bool isDown = (event.response_type & 0x7f) == XCB_KEY_PRESS;
        std::snprintf(line, sizeof line, "key %s %d", isDown ? "down" : "up", key.detail);
        say(line);
        break;
    }
    case XCB_BUTTON_PRESS: {
        const auto &button = reinterpret_cast<const xcb_button_press_event_t &>(event);
        std::snprintf(line, sizeof line, "button down %d", button.detail);
        say(line);
        break;
    }
    default:
        break;
    }
}

Options optionsFrom(int argc, char **argv)
{
    Options options;
    options.x = int16_t(std::atoi(argv[1]));
    options.y = int16_t(std::atoi(argv[2]));
    options.width = uint16_t(std::atoi(argv[3]));
    options.height = uint16_t(std::atoi(argv[4]));
    for (int index = 5; index < argc; ++index) {
        const std::string_view option(argv[index]);
        options.isUnmanaged = options.isUnmanaged || option == "--unmanaged";
        options.isPlain = options.isPlain || option == "--plain";
    }
    return options;
}

void run(xcb_connection_t *connection, PictureWindow &window)
{
    using Event = std::unique_ptr<xcb_generic_event_t, FreeDeleter>;
    nfds_t sources = 2;
    while (!xcb_connection_has_error(connection)) {
        xcb_flush(connection);
        while (const Event event{xcb_poll_for_event(connection)})
            window.handle(*event);
        pollfd waiting[]{{xcb_get_file_descriptor(connection), POLLIN, 0},
                         {STDIN_FILENO, POLLIN, 0}};
        poll(waiting, sources, -1);
        if (sources < 2 || waiting[1].revents == 0)
            continue;
        char input[256];
        const ssize_t count = read(STDIN_FILENO, input, sizeof input);
        if (count <= 0) {
            sources = 1;
        } else if (std::string_view(input, size_t(count)).find("invert")
                   != std::string_view::npos) {
            window.paint(true);
            say("inverted");
        }
    }
}

} // namespace

int main(int argc, char **argv)
{
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    if (argc < 5 || xcb_connection_has_error(connection)) {
        std::fputs("usage: picture_window X Y WIDTH HEIGHT [--unmanaged] [--plain]\n", stderr);
        xcb_disconnect(connection);
        return 1;
    }
    {
        PictureWindow window(connection, optionsFrom(argc, argv));
        run(connection, window);
    }
    xcb_disconnect(connection);
    return 1;
}
