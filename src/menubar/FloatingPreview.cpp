// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "menubar/FloatingPreview.h"

#include "menubar/ItemMenu.h"
#include "platform/PreviewShell.h"

#include <QPointer>
#include <QWindow>

namespace tovek {

FloatingPreview::FloatingPreview(const QImage &image) : PreviewPicture(image, 0)
{
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint
                   | Qt::WindowDoesNotAcceptFocus);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setWindowTitle(QStringLiteral("Tovek"));
    resize(sizeHint());
}

std::unique_ptr<FloatingPreview> FloatingPreview::show(PreviewShell &shell, const QImage &image)
{
    std::unique_ptr<FloatingPreview> preview(new FloatingPreview(image));
    preview->winId(); // the surface needs the native window, before anything is shown
    preview->m_surface = shell.create(*preview->windowHandle(), preview->size());
    if (!preview->m_surface)
        return nullptr;
    preview->m_surface->onClosed = [preview = preview.get()] {
        if (preview->onClosed)
            preview->onClosed();
    };
    preview->m_surface->orderFront();
    return preview;
}

FloatingPreview::~FloatingPreview() = default;

void FloatingPreview::leave()
{
    m_surface->orderOut();
}

bool FloatingPreview::openMenu(ItemMenu &menu)
{
    menu.setWindowFlag(Qt::BypassWindowManagerHint);
    menu.ensurePolished();
    const QSize size = menu.sizeHint();
    menu.resize(size);
    menu.winId();
    if (!m_surface->placeMenu(*menu.windowHandle(), size))
        return false;
    m_surface->onMenuDismissed = [opened = QPointer(&menu)] {
        if (opened)
            opened->close();
    };
    menu.onLeaving = [surface = m_surface.get(), guard = QPointer(this)] {
        if (guard)
            surface->releaseMenu();
    };
    menu.popup(QPoint());
    return true;
}

} // namespace tovek
