// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "menubar/StatusBarController.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/Settings.h"
#include "menubar/FloatingPreview.h"
#include "menubar/ItemMenu.h"
#include "menubar/ItemPictures.h"
#include "menubar/PreviewRow.h"
#include "menubar/ThumbnailGeometry.h"
#include "platform/Clock.h"

#include <QBuffer>
#include <QCursor>
#include <QDrag>
#include <QGuiApplication>
#include <QImageWriter>
#include <QMenu>
#include <QMimeData>
#include <QScreen>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto fileLifetime = 2000ms;
constexpr auto returnDelay = 400ms;
constexpr auto panelPatience = 10s;

QByteArray pngOf(const Image &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "png");
    return writer.write(image.bitmap) ? bytes : QByteArray();
}

} // namespace

StatusBarController::StatusBarController(Tray &statusItem, Clock &clock,
                                         const UserDefaults &defaults, const SymbolSource &symbols,
                                         PreviewShell *previewShell)
    : encodePng(pngOf)
    , performDrag(dragFile)
    , m_statusItem(statusItem)
    , m_clock(clock)
    , m_defaults(defaults)
    , m_defaultIcon(iconPicture(symbols))
    , m_previewShell(previewShell)
{
}

StatusBarController::~StatusBarController()
{
    m_statusItem.onPressed = nullptr;
    m_statusItem.onMoved = nullptr;
    m_statusItem.onReleased = nullptr;
    m_statusItem.onMenuRequested = nullptr;
    m_statusItem.menuRows = nullptr;
    m_statusItem.onMenuRow = nullptr;
    m_statusItem.onHostChanged = nullptr;
    delete m_menu;
}

void StatusBarController::dragFile(const DragOut &out)
{
    auto *data = new QMimeData; // the drag owns it, and deletes itself when it is over
    data->setUrls({out.file});
    auto *drag = new QDrag(out.source);
    drag->setMimeData(data);
    const QPixmap picture = QPixmap::fromImage(out.image);
    drag->setPixmap(picture);
    drag->setHotSpot(QRectF(QPointF(), picture.deviceIndependentSize()).center().toPoint());
    drag->exec(Qt::CopyAction, Qt::CopyAction);
}

void StatusBarController::setup()
{
    Q_ASSERT(isMainThread() && !m_statusItem.menuRows);
    DragFiles::removeLeft();
    m_statusItem.setToolTip(QStringLiteral("Tovek"));
    m_statusItem.setPicture(m_defaultIcon);
    m_statusItem.onPressed = [this](QPointF at) { press(at); };
    m_statusItem.onMoved = [this](QPointF at) { moveTo(at); };
    m_statusItem.onReleased = [this](QPointF) { release(); };
    m_statusItem.onMenuRequested = [this] { chosen(); };
    m_statusItem.menuRows = [this] { return rows.forHost(); };
    m_statusItem.onMenuRow = [this](int row) { rows.chooseForHost(row); };
    const bool isVisible = Settings::showInMenuBar.in(m_defaults);
    m_statusItem.setVisible(isVisible);
    if (!isVisible)
        return;
    m_statusItem.onHostChanged = [this] { hostChanged(); };
    hostChanged();
}

/// Tells once that there is no host; and of a panel that does not start after us, either, as at
/// login.
void StatusBarController::hostChanged()
{
    if (m_isHostKnown || m_statusItem.isLookingForHost())
        return;
    m_isHostKnown = true;
    if (m_statusItem.hasHost())
        return;
    logLine(QStringLiteral("No status area yet: the shortcuts work without it, and launching "
                           "Tovek again opens its settings"));
    m_clock.after(panelPatience, this, [this] {
        if (!m_statusItem.hasHost() && onNoHost)
            onNoHost();
    });
}

void StatusBarController::setVisible(bool isVisible)
{
    m_statusItem.setVisible(isVisible);
}

void StatusBarController::showPreview(const Image &image, std::chrono::milliseconds duration)
{
    Q_ASSERT(isMainThread());
    if (image.isEmpty())
        return;
    m_revertTimer.reset();
    m_currentPreviewImage = image;
    m_isInPreviewMode = true;
    m_png = {};
    m_statusItem.setPicture(thumbnailPicture(image, m_defaultIcon));
    showFloatingPreview();
    m_revertTimer = std::make_unique<QObject>();
    m_clock.after(duration, m_revertTimer.get(), [this] { endPreviewMode(); });
}

void StatusBarController::showFloatingPreview()
{
    hideFloatingPreview();
    if (!m_previewShell || m_statusItem.canDrag() || !Settings::showInMenuBar.in(m_defaults))
        return;
    m_floatingPreview = FloatingPreview::show(*m_previewShell, m_currentPreviewImage.bitmap);
    if (!m_floatingPreview)
        return;
    m_floatingPreview->onPressed = [this] { encodeAhead(); };
    m_floatingPreview->onDragged = [this] { startDragOut(); };
    m_floatingPreview->onClicked = [this] { openMenu(); };
    m_floatingPreview->onClosed = [this] { hideFloatingPreview(); };
}

void StatusBarController::hideFloatingPreview()
{
    if (!m_floatingPreview)
        return;
    if (m_menu)
        m_menu->close();
    m_floatingPreview->leave();
    m_floatingPreview.release()->deleteLater(); // an event of its own may have led here
}

void StatusBarController::captureEnded()
{
    if (!m_isInPreviewMode || m_floatingPreview)
        return;
    // Unless the capture's own takes its place.
    m_clock.after(returnDelay, m_revertTimer.get(), [this] { showFloatingPreview(); });
}

void StatusBarController::endPreviewMode()
{
    hideFloatingPreview();
    m_revertTimer.reset();
    m_currentPreviewImage = {};
    m_png = {};
    m_pressedAt.reset();
    m_isInPreviewMode = false;
    m_statusItem.setPicture(m_defaultIcon);
    if (onPreviewEnded)
        onPreviewEnded();
}

void StatusBarController::press(QPointF at)
{
    if (!m_isInPreviewMode) {
        openMenu();
        return;
    }
    m_pressedAt = at;
    encodeAhead();
}

void StatusBarController::moveTo(QPointF at)
{
    if (!m_pressedAt || !isDrag(*m_pressedAt, at))
        return;
    m_pressedAt.reset();
    startDragOut();
}

void StatusBarController::release()
{
    if (!m_pressedAt)
        return;
    m_pressedAt.reset();
    openMenu();
}

void StatusBarController::openMenu()
{
    Q_ASSERT(isMainThread());
    if (m_menu)
        return;
    ItemMenu &menu = buildMenu();
    if (m_floatingPreview) {
        if (!m_floatingPreview->openMenu(menu))
            menuClosed();
        return;
    }
    const QRect item = m_statusItem.geometry();
    const QPoint pointer = QCursor::pos();
    const QRect anchor = item.isEmpty() ? QRect(pointer, QSize(1, 1)) : item;
    const QScreen *screen = QGuiApplication::screenAt(anchor.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    m_menu->popup(menuOrigin(anchor, m_menu->sizeHint(), screen->geometry()));
}

ItemMenu &StatusBarController::buildMenu()
{
    auto *menu = new ItemMenu;
    menu->describeKeys = describeKeys;
    m_menu = menu; // a top-level window; see menuClosed
    m_menu->setAccessibleName(QStringLiteral("Tovek"));
    m_menu->setToolTipsVisible(true);
    connect(m_menu, &QMenu::aboutToHide, this, [this] { menuClosed(); });
    if (m_isInPreviewMode && !showsThumbnail() && !m_floatingPreview)
        addPreviewRow();
    rows.addTo(*m_menu);
    return *menu;
}

/// The item was chosen. A host that draws the menu shows it by itself; one that tells us all the
/// same leaves us nowhere to put a menu.
void StatusBarController::chosen()
{
    if (!m_statusItem.drawsMenu())
        openMenu();
    else if (rows.actions.openPreferences)
        rows.actions.openPreferences();
}

/// And lets it be dragged.
bool StatusBarController::showsThumbnail() const
{
    const QSizeF room = m_statusItem.geometry().size();
    return m_statusItem.canDrag()
        && (room.isEmpty()
            || isLegibleIn(thumbnailSize(m_currentPreviewImage.size),
                           {room.width(), room.height()}));
}

void StatusBarController::addPreviewRow()
{
    encodeAhead();
    auto *row = new PreviewRow(m_currentPreviewImage.bitmap, m_menu);
    row->onDragged = [this] {
        // The menu holds the pointer, which the drag needs: the drag starts when it has let go.
        m_menu->close();
        m_clock.after(0ms, this, [this] { startDragOut(); });
    };
    m_menu->addAction(row);
    m_menu->addSeparator();
}

void StatusBarController::menuClosed()
{
    // An item that was chosen is triggered after this.
    m_menu->deleteLater();
    m_menu = nullptr;
}

void StatusBarController::encodeAhead()
{
    // A large picture takes longer than the hand from the press to the drag; so it starts early.
    if (!m_png.isValid())
        m_png = m_encoder.run<QByteArray>(
            [encode = encodePng, image = m_currentPreviewImage] { return encode(image); });
}

void StatusBarController::startDragOut()
{
    if (!m_isInPreviewMode)
        return;
    encodeAhead();
    m_png.waitForFinished();
    const QByteArray png = m_png.resultCount() > 0 ? m_png.result() : QByteArray();
    if (png.isEmpty())
        return logLine(QStringLiteral("Failed to create image"));
    const auto file = m_dragFiles.write(dragFileName(m_clock.now()), png);
    if (!file)
        return;
    m_currentDragFileUrl = QUrl::fromLocalFile(*file);
    const Size size = dragImageSize(m_currentPreviewImage.size);
    const double scale = qGuiApp->devicePixelRatio();
    QImage image = m_currentPreviewImage.bitmap.scaled(
        (QSizeF(size.width, size.height) * scale).toSize().expandedTo(QSize(1, 1)),
        Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    image.setDevicePixelRatio(scale);
    m_revertTimer.reset(); // nothing goes from under the hand
    performDrag({*m_currentDragFileUrl, image, m_statusItem.dragSource()});
    dragEnded();
}

void StatusBarController::dragEnded()
{
    m_currentDragFileUrl.reset();
    // Whoever took the file may read it only now. Folders go with the program at the latest.
    m_clock.after(fileLifetime, this, [this] { m_dragFiles.removeOldest(); });
    endPreviewMode();
}

} // namespace tovek
