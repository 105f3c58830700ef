// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Image.h"
#include "foundation/SymbolSource.h"
#include "foundation/Workers.h"
#include "menubar/DragFiles.h"
#include "menubar/StatusRows.h"

#include <QObject>
#include <QUrl>

#include <optional>

class QMenu;

namespace tovek {

class Clock;
class FloatingPreview;
class ItemMenu;
class PreviewShell;
class UserDefaults;

/// What a drag out of the status item carries.
struct DragOut
{
    QUrl file;
    QImage image; ///< shown at the pointer, centred; has a device pixel ratio
    QObject *source = nullptr;
};

/// Owns the program's status item: the icon with the menu, and for some time after a capture its
/// thumbnail, which can be dragged out as a file. Main thread only.
class StatusBarController : public QObject
{
public:
    /// `previewShell` may be null; it is used where nothing can be dragged out of the item.
    StatusBarController(Tray &statusItem, Clock &clock, const UserDefaults &defaults,
                        const SymbolSource &symbols, PreviewShell *previewShell = nullptr);
    ~StatusBarController() override;

    /// Called once at launch, after the callbacks below have been set.
    void setup();
    /// Shows the item or hides it, as its setting changes.
    void setVisible(bool isVisible);
    void showPreview(const Image &image, std::chrono::milliseconds duration);
    /// Takes a preview off the screen that would be in a picture of it.
    void hideForCapture() { hideFloatingPreview(); }
    /// Brings it back.
    void captureEnded();
    bool isInPreviewMode() const { return m_isInPreviewMode; }
    void openMenu();
    /// Null while the menu is closed.
    QMenu *menu() const { return m_menu; }

    StatusRows rows;
    /// How keys are written.
    std::function<QString(const QKeySequence &keys)> describeKeys;
    /// The desktop has no place for the item, and not only because its panel has yet to start.
    std::function<void()> onNoHost;
    /// The thumbnail of the last capture is gone from the panel.
    std::function<void()> onPreviewEnded;
    /// Any thread.
    std::function<QByteArray(const Image &)> encodePng;
    /// Runs a drag that allows nothing but copying; returns when it has ended, however it did.
    std::function<void(const DragOut &)> performDrag;
    /// The desktop's drag; what `performDrag` is unless somebody sets it.
    static void dragFile(const DragOut &out);

private:
    void hostChanged();
    void press(QPointF at);
    void moveTo(QPointF at);
    void release();
    ItemMenu &buildMenu();
    void showFloatingPreview();
    void hideFloatingPreview();
    void chosen();
    bool showsThumbnail() const;
    void addPreviewRow();
    void menuClosed();
    void endPreviewMode();
    void startDragOut();
    void dragEnded();
    void encodeAhead();

    Tray &m_statusItem;
    Clock &m_clock;
    const UserDefaults &m_defaults;
    std::unique_ptr<QObject> m_revertTimer; ///< context of the call that ends preview mode
    Image m_currentPreviewImage;
    std::optional<QUrl> m_currentDragFileUrl;
    bool m_isHostKnown = false; ///< the desktop has told whether it has a status area
    bool m_isInPreviewMode = false;
    QMenu *m_menu = nullptr; ///< deletes itself a turn after it has closed
    TrayPicture m_defaultIcon;
    std::optional<QPointF> m_pressedAt;
    QFuture<QByteArray> m_png; ///< of the preview image; invalid until somebody may want it
    Workers m_encoder{1};
    DragFiles m_dragFiles;
    PreviewShell *m_previewShell;
    std::unique_ptr<FloatingPreview> m_floatingPreview;
};

} // namespace tovek
