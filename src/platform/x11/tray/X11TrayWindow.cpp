// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/tray/X11TrayWindow.h"

#include "platform/x11/QtXcb.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTimer>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr uint32_t unlikelyPixel = 0x818283;

QColor mean(const QImage &image)
{
    return image.isNull()
        ? QColor(Qt::black)
        : image.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixelColor(0, 0);
}

} // namespace

X11TrayWindow::X11TrayWindow(Tray &item, bool isTranslucent)
    : m_item(item)
    , m_isTranslucent(isTranslucent)
{
    QSurfaceFormat format;
    format.setAlphaBufferSize(isTranslucent ? 8 : 0);
    setFormat(format);
    setFlags(Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus);
    setTitle(QStringLiteral("Tovek"));
    create();
    // The toolkit makes every window a drop target. A panel would pass a drag that comes out of the
    // item back into it, and the late answer spoils the drop at the drag's true target.
    xcb_delete_property(QtXcb::connection(), id(), QtXcb::atom("XdndAware"));
}

void X11TrayWindow::setEmbedded()
{
    m_isEmbedded = true;
    look();
    show();
    lookSoon();
}

void X11TrayWindow::setPicture(const TrayPicture &picture)
{
    m_picture = picture;
    const QSize size(qCeil(picture.size.width), qCeil(picture.size.height));
    setMinimumSize(size);
    resize(size);
    update();
    lookSoon();
}

void X11TrayWindow::look()
{
    if (!m_isEmbedded)
        return;
    const QImage panel = m_isTranslucent ? edgeOnScreen() : panelBehind();
    if (panel == m_background)
        return;
    m_background = panel;
    update();
}

/// Panels paint themselves in their own time, mostly after they have taken an item in.
void X11TrayWindow::lookSoon()
{
    for (const auto delay : {100ms, 1000ms})
        QTimer::singleShot(delay, this, [this] { look(); });
}

void X11TrayWindow::paintEvent(QPaintEvent *)
{
    if (!m_isEmbedded || !m_picture.paint)
        return;
    QPainter painter(this);
    const QSize native = nativeSize();
    const double scale = devicePixelRatio();
    if (!m_isTranslucent && m_background.size() != native)
        m_background = panelBehind();
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    if (m_isTranslucent || m_background.isNull()) {
        painter.fillRect(QRect(QPoint(), size()), Qt::transparent);
    } else {
        QImage background = m_background;
        background.setDevicePixelRatio(scale);
        painter.drawImage(QPoint(), background);
    }
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);

    const QSizeF room = QSizeF(native) / scale;
    const TrayPicture &picture = shownIn(m_picture, {room.width(), room.height()});
    const Size wanted = picture.size;
    const double shrink =
        std::min({1.0, room.width() / wanted.width, room.height() / wanted.height});
    const Size fitting{wanted.width * shrink, wanted.height * shrink};
    const QImage image = picture.paint(fitting, tint(), scale);
    // On a whole native pixel, so that it stays sharp.
    const auto middle = [scale](double all, double part) {
        return std::floor((all - part) / 2 * scale) / scale;
    };
    painter.drawImage(
        QPointF(middle(room.width(), fitting.width), middle(room.height(), fitting.height)), image);
}

void X11TrayWindow::resizeEvent(QResizeEvent *event)
{
    m_background = {};
    QRasterWindow::resizeEvent(event);
}

void X11TrayWindow::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        if (m_item.onPressed)
            m_item.onPressed(event->globalPosition());
    } else if (event->button() == Qt::RightButton && m_item.onMenuRequested) {
        m_item.onMenuRequested();
    }
}

void X11TrayWindow::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton && m_item.onMoved)
        m_item.onMoved(event->globalPosition());
}

void X11TrayWindow::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && m_item.onReleased)
        m_item.onReleased(event->globalPosition());
}

/// The size that the host gave, whatever was asked for.
QSize X11TrayWindow::nativeSize() const
{
    const auto native = QtXcb::geometryOnRoot(id());
    return native ? native->size() : size() * devicePixelRatio();
}

/// The row of pixels at the item's top, where no icon is.
QImage X11TrayWindow::edgeOnScreen() const
{
    const auto native = QtXcb::geometryOnRoot(id());
    return native
        ? QtXcb::pixels(QtXcb::screen()->root, QRect(native->topLeft(), QSize(native->width(), 1)))
        : QImage();
}

/// What the server would fill the window with were it empty. What it shows stays as it is.
QImage X11TrayWindow::panelBehind() const
{
    const QSize native = nativeSize();
    const auto width = uint16_t(native.width());
    const auto height = uint16_t(native.height());
    xcb_connection_t *c = QtXcb::connection();
    const xcb_pixmap_t shown = xcb_generate_id(c);
    const xcb_gcontext_t gc = xcb_generate_id(c);
    xcb_create_pixmap(c, QtXcb::screen()->root_depth, shown, id(), width, height);
    const uint32_t values[]{unlikelyPixel, 0}; // foreground; no events for what is covered
    xcb_create_gc(c, gc, id(), XCB_GC_FOREGROUND | XCB_GC_GRAPHICS_EXPOSURES, values);
    xcb_copy_area(c, id(), shown, gc, 0, 0, 0, 0, width, height);
    // A panel may have no background that the server knows: what is there then stays there.
    const xcb_rectangle_t all{0, 0, width, height};
    xcb_poly_fill_rectangle(c, id(), gc, 1, &all);
    const QImage filled = QtXcb::pixels(id(), QRect(QPoint(), native));
    const uint32_t parentRelative = XCB_BACK_PIXMAP_PARENT_RELATIVE;
    xcb_change_window_attributes(c, id(), XCB_CW_BACK_PIXMAP, &parentRelative);
    xcb_clear_area(c, false, id(), 0, 0, 0, 0);
    QImage behind = QtXcb::pixels(id(), QRect(QPoint(), native));
    xcb_copy_area(c, shown, id(), gc, 0, 0, 0, 0, width, height);
    xcb_free_gc(c, gc);
    xcb_free_pixmap(c, shown);
    xcb_flush(c);
    if (behind == filled)
        behind.fill(mean(besideOnScreen()));
    return behind;
}

/// The panel at the item's left.
QImage X11TrayWindow::besideOnScreen() const
{
    const auto native = QtXcb::geometryOnRoot(id());
    return native
        ? QtXcb::pixels(QtXcb::screen()->root,
                        QRect(native->topLeft() - QPoint(2, 0), QSize(1, native->height())))
        : QImage();
}

QColor X11TrayWindow::tint() const
{
    if (m_background.isNull())
        return Qt::white;
    return qGray(mean(m_background).rgb()) < 140 ? QColor(255, 255, 255, 235)
                                                 : QColor(0, 0, 0, 215);
}

} // namespace tovek
