// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "overlay/SelectionOverlayView.h"

namespace tovek {

/// The borderless window over one screen, filled by one view. Lives for one capture.
class OverlayWindow : public QWidget
{
public:
    OverlayWindow(const OverlayContext &context, OverlayShell &shell);
    ~OverlayWindow() override;

    SelectionOverlayView *selectionView() const { return m_selectionView; }
    const Screen &targetScreen() const { return m_targetScreen; }

    void orderFrontRegardless();
    /// See OverlaySurface.
    void sendToFront() { m_surface->sendToFront(); }
    /// Takes the keyboard; the view is its receiver.
    void makeKey();
    bool isKey() const { return m_surface->isKey(); }
    void orderOut();
    /// The desktop changed under the overlay: a visible overlay that lost the keyboard by that
    /// takes it back. For a surface that the desktop may take the keyboard from as it changes; one
    /// that grabs it, or has it exclusively from the compositor, needs no such call.
    void activeSpaceDidChange();

    /// The reports of the view.
    OverlayCallbacks &callbacks() { return m_selectionView->callbacks; }
    /// The screen under this window went away; the window shows nothing any more.
    std::function<void()> onScreenGone;
    /// The keyboard could not be had: without it nobody could leave the overlay.
    std::function<void()> onKeyboardDenied;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    // Focus changes nothing in the picture; the base class would repaint all of it.
    void focusInEvent(QFocusEvent *) override { }
    void focusOutEvent(QFocusEvent *) override { }

private:
    Screen m_targetScreen;
    SelectionOverlayView *m_selectionView;
    std::unique_ptr<OverlaySurface> m_surface;
};

} // namespace tovek
