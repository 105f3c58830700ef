// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "Scene.h"

#include "Measure.h"

#include <thread>
#include <xcb/xtest.h>

namespace tovek::bench {

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto deadline = 5s;
/// Between two looks at the witness: fine enough, and it leaves the processor to the others.
constexpr auto pause = 50us;

} // namespace

Scene::Scene(const QString &displayName, const QImage &picture)
    : m_connection(displayName)
    , m_corner(picture.width() - 1, picture.height() - 1)
    , m_window(xcb_generate_id(m_connection))
    , m_gc(xcb_generate_id(m_connection))
{
    show(picture);
}

void Scene::show(const QImage &picture)
{
    xcb_screen_t *screen = m_connection.screen();
    const auto width = uint16_t(picture.width());
    const auto height = uint16_t(picture.height());
    const xcb_pixmap_t pixmap = xcb_generate_id(m_connection);
    xcb_create_pixmap(m_connection, screen->root_depth, pixmap, screen->root, width, height);
    xcb_create_gc(m_connection, m_gc, pixmap, 0, nullptr);
    for (int y = 0; y < picture.height(); ++y) {
        xcb_put_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, m_gc, width, 1, 0,
                      int16_t(y), 0, screen->root_depth, uint32_t(picture.bytesPerLine()),
                      picture.constScanLine(y));
    }
    const uint32_t values[]{pixmap, 1};
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, screen->root, 0, 0, width,
                      height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                      XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT, values);
    xcb_map_window(m_connection, m_window);
    xcb_free_pixmap(m_connection, pixmap);
    m_connection.sync();
}

void Scene::fake(uint8_t type, uint8_t detail, QPoint at)
{
    xcb_test_fake_input(m_connection, type, detail, XCB_CURRENT_TIME, m_connection.root(),
                        int16_t(at.x()), int16_t(at.y()), 0);
    xcb_flush(m_connection);
}

void Scene::key(Key key, bool isDown)
{
    fake(isDown ? XCB_KEY_PRESS : XCB_KEY_RELEASE, key);
}

void Scene::move(QPoint to)
{
    fake(XCB_MOTION_NOTIFY, 0, to);
}

void Scene::button(bool isDown)
{
    fake(isDown ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, 1);
}

bool Scene::isCovered()
{
    m_color = (m_color + 0x010203) & 0xffffff;
    xcb_change_gc(m_connection, m_gc, XCB_GC_FOREGROUND, &m_color);
    const xcb_rectangle_t pixel{int16_t(m_corner.x()), int16_t(m_corner.y()), 1, 1};
    xcb_poly_fill_rectangle(m_connection, m_window, m_gc, 1, &pixel);
    return (cornerOfScreen() & 0xffffff) != m_color;
}

QRgb Scene::cornerOfScreen()
{
    const XPtr<xcb_get_image_reply_t> reply(xcb_get_image_reply(
        m_connection,
        xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_connection.root(),
                      int16_t(m_corner.x()), int16_t(m_corner.y()), 1, 1, ~0u),
        nullptr));
    return reply ? *reinterpret_cast<const QRgb *>(xcb_get_image_data(reply.get())) : 0;
}

bool Scene::waitUntil(bool wanted)
{
    const auto end = Clock::now() + deadline;
    while (isCovered() != wanted) {
        if (Clock::now() > end)
            return false;
        std::this_thread::sleep_for(pause);
    }
    return true;
}

bool Scene::waitUntilCovered()
{
    return waitUntil(true);
}

bool Scene::waitUntilUncovered()
{
    return waitUntil(false);
}

std::optional<double> Scene::releaseUntilCovered(Key released)
{
    bool wasCovered = false;
    const double time = millisecondsOf([&] {
        key(released, false);
        wasCovered = waitUntilCovered();
    });
    return wasCovered ? std::optional(time) : std::nullopt;
}

bool Scene::isTaken(Key key)
{
    constexpr uint16_t modifiers = XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT;
    // The server is ours alone meanwhile, so that the attempt is in nobody's way.
    xcb_grab_server(m_connection);
    const auto attempt = xcb_grab_key_checked(m_connection, false, m_connection.root(), modifiers,
                                              key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const XPtr<xcb_generic_error_t> refusal(xcb_request_check(m_connection, attempt));
    if (!refusal)
        xcb_ungrab_key(m_connection, key, m_connection.root(), modifiers);
    xcb_ungrab_server(m_connection);
    xcb_flush(m_connection);
    return refusal != nullptr;
}

} // namespace tovek::bench
