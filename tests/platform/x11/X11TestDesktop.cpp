// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/X11TestDesktop.h"

#include <QFile>
#include <QRandomGenerator>

#include <bit>
#include <cstdlib>
#include <memory>
#include <unistd.h>

namespace tovek {

namespace {

const xcb_visualtype_t *rootVisual(const xcb_screen_t &screen)
{
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem;
         xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem;
             xcb_visualtype_next(&visual)) {
            if (visual.data->visual_id == screen.root_visual)
                return visual.data;
        }
    }
    return nullptr;
}

/// One channel of a pixel as 8 bits: cut off, or filled up by repeating its own bits. Reckoned from
/// its mask once: a screen has a million pixels.
class Channel
{
public:
    explicit Channel(quint32 mask)
        : m_mask(mask)
        , m_shift(std::countr_zero(mask))
        , m_bits(std::popcount(mask))
    {
    }
    int of(quint32 pixel) const
    {
        const quint32 value = (pixel & m_mask) >> m_shift;
        if (m_bits >= 8)
            return int(value >> (m_bits - 8));
        return int((value << (8 - m_bits)) | (value >> (2 * m_bits - 8)));
    }

private:
    quint32 m_mask;
    int m_shift;
    int m_bits;
};

} // namespace

X11TestDesktop::~X11TestDesktop()
{
    if (m_client)
        xcb_disconnect(m_client);
    if (m_server.state() != QProcess::NotRunning) {
        m_server.terminate();
        m_server.waitForFinished();
    }
}

bool X11TestDesktop::start(QSize size, int depth)
{
    m_size = size;
    int ends[2];
    if (pipe(ends) != 0)
        return false;
    m_server.setStandardErrorFile(QProcess::nullDevice());
    m_server.setProgram(QStringLiteral("Xvfb"));
    m_server.setArguments(
        {"-displayfd", QString::number(ends[1]), "-screen", "0",
         QStringLiteral("%1x%2x%3").arg(size.width()).arg(size.height()).arg(depth), "-noreset",
         "-nolisten", "tcp",
         // Which would load a compiler for shaders, and nobody here draws with them.
         "-extension", "GLX"});
    m_server.start();
    const bool isStarted = m_server.waitForStarted();
    close(ends[1]);
    char number[16]{};
    const ssize_t length = isStarted ? read(ends[0], number, sizeof(number) - 1) : 0;
    close(ends[0]);
    if (length <= 0)
        return false;
    m_displayName = ':' + QByteArray(number).trimmed();
    m_client = xcb_connect(m_displayName.constData(), nullptr);
    if (xcb_connection_has_error(m_client))
        return false;
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_client)).data;
    paint();
    return true;
}

void X11TestDesktop::paint()
{
    // A quarter of the pixels is noise, repeated as the root's background.
    const QSize tile(257, 193);
    const xcb_pixmap_t pixmap = xcb_generate_id(m_client);
    xcb_create_pixmap(m_client, m_screen->root_depth, pixmap, m_screen->root,
                      uint16_t(tile.width()), uint16_t(tile.height()));
    const xcb_gcontext_t gc = xcb_generate_id(m_client);
    xcb_create_gc(m_client, gc, pixmap, 0, nullptr);
    QRandomGenerator random(7);
    const quint32 mask = m_screen->root_depth == 16 ? 0xffff : 0xffffffff;
    const int bytes = m_screen->root_depth == 16 ? 2 : 4;
    const int perLine = (tile.width() * bytes + 3) / 4 * 4;
    QByteArray noise(perLine * tile.height(), 0);
    for (int y = 0; y < tile.height(); ++y) {
        for (int x = 0; x < tile.width(); ++x) {
            const quint32 pixel = (x % 32 == 0 || y % 32 == 0) ? 0 : random.generate() & mask;
            std::memcpy(noise.data() + y * perLine + x * bytes, &pixel, size_t(bytes));
        }
    }
    xcb_put_image(m_client, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, gc, uint16_t(tile.width()),
                  uint16_t(tile.height()), 0, 0, 0, m_screen->root_depth, uint32_t(noise.size()),
                  reinterpret_cast<const uint8_t *>(noise.constData()));
    const uint32_t background = pixmap;
    xcb_change_window_attributes(m_client, m_screen->root, XCB_CW_BACK_PIXMAP, &background);
    xcb_clear_area(m_client, 0, m_screen->root, 0, 0, 0, 0);
    m_window = openWindow(QRect(40, 60, 200, 120), 0x00336699);
    fill(m_window, QRect(10, 10, 50, 50), 0x00ffee11);
    sync();
}

xcb_window_t X11TestDesktop::openWindow(QRect rect, quint32 pixel, xcb_window_t number)
{
    const xcb_window_t window = number ? number : xcb_generate_id(m_client);
    const uint32_t values[]{pixel, 1};
    xcb_create_window(m_client, XCB_COPY_FROM_PARENT, window, m_screen->root, int16_t(rect.x()),
                      int16_t(rect.y()), uint16_t(rect.width()), uint16_t(rect.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    xcb_map_window(m_client, window);
    sync();
    return window;
}

bool X11TestDesktop::xrandr(const QStringList &arguments)
{
    QProcess process;
    process.start("xrandr",
                  QStringList{"--display", QString::fromLatin1(m_displayName)} + arguments);
    return process.waitForFinished() && process.exitCode() == 0;
}

bool X11TestDesktop::setMonitor(const QString &name, const QString &geometry, const QString &output)
{
    return xrandr({"--setmonitor", name, geometry, output});
}

bool X11TestDesktop::removeMonitor(const QString &name)
{
    return xrandr({"--delmonitor", name});
}

QImage X11TestDesktop::look() const
{
    return look(QRect(QPoint(), m_size));
}

QImage X11TestDesktop::look(QRect rect) const
{
    const auto cookie =
        xcb_get_image(m_client, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen->root, int16_t(rect.x()),
                      int16_t(rect.y()), uint16_t(rect.width()), uint16_t(rect.height()), ~0u);
    const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
        xcb_get_image_reply(m_client, cookie, nullptr), &std::free);
    const xcb_visualtype_t *visual = rootVisual(*m_screen);
    if (!reply || !visual)
        return {};
    const int bytes = m_screen->root_depth == 16 ? 2 : 4;
    const int perLine = (rect.width() * bytes + 3) / 4 * 4;
    const Channel red(visual->red_mask), green(visual->green_mask), blue(visual->blue_mask);
    QImage image(rect.size(), QImage::Format_RGB32);
    const uint8_t *from = xcb_get_image_data(reply.get());
    for (int y = 0; y < rect.height(); ++y, from += perLine) {
        auto *to = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < rect.width(); ++x) {
            quint32 pixel = 0;
            std::memcpy(&pixel, from + x * bytes, size_t(bytes));
            to[x] = qRgb(red.of(pixel), green.of(pixel), blue.of(pixel));
        }
    }
    return image;
}

void X11TestDesktop::fill(xcb_window_t window, QRect rect, quint32 pixel)
{
    const xcb_gcontext_t gc = xcb_generate_id(m_client);
    xcb_create_gc(m_client, gc, window, XCB_GC_FOREGROUND, &pixel);
    const xcb_rectangle_t area{int16_t(rect.x()), int16_t(rect.y()), uint16_t(rect.width()),
                               uint16_t(rect.height())};
    xcb_poly_fill_rectangle(m_client, window, gc, 1, &area);
    xcb_free_gc(m_client, gc);
    sync();
}

void X11TestDesktop::sync() const
{
    std::free(xcb_get_input_focus_reply(m_client, xcb_get_input_focus(m_client), nullptr));
}

qint64 X11TestDesktop::serverMemory() const
{
    QFile file(QStringLiteral("/proc/%1/statm").arg(m_server.processId()));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

} // namespace tovek
