// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/PermissionWindowController.h"

#include "capture/PermissionManager.h"
#include "capture/PermissionRequestView.h"
#include "foundation/MainThread.h"
#include "platform/FrontmostApp.h"

#include <QGuiApplication>
#include <QScreen>

namespace tovek {

namespace {

/// With the usual fonts its size.
constexpr QSize leastSize(420, 280);

} // namespace

PermissionWindowController::PermissionWindowController(PermissionManager &permission,
                                                       FrontmostApp &frontmost,
                                                       SymbolSource symbols)
    : m_permission(permission)
    , m_frontmost(frontmost)
    , m_symbols(std::move(symbols))
{
    m_permission.setOnAnswered([this] { answered(); });
}

PermissionWindowController::~PermissionWindowController()
{
    m_permission.setOnAnswered(nullptr);
}

void PermissionWindowController::show()
{
    Q_ASSERT(isMainThread());
    if (m_window && m_window->isVisible()) {
        bringForward();
        return;
    }
    auto view = std::make_unique<PermissionRequestView>(m_symbols, m_permission.advice());
    view->onOpenSettings = [this] {
        m_permission.openSystemSettings();
        if (!m_permission.isAsking())
            close();
    };
    view->onDismiss = [this] { close(); };
    view->setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint
                         | Qt::WindowCloseButtonHint | Qt::WindowStaysOnTopHint);
    view->setWindowTitle(QStringLiteral("Tovek"));
    view->setFixedSize(view->sizeFor(leastSize));
    if (const QScreen *screen = QGuiApplication::primaryScreen())
        view->move(screen->availableGeometry().center() - view->rect().center());
    m_window = std::move(view);
    m_window->show();
    bringForward();
}

void PermissionWindowController::answered()
{
    const bool wasVisible = m_window && m_window->isVisible();
    close();
    // Who said no learns how to say yes.
    if (wasVisible && !m_permission.hasPermission())
        show();
}

void PermissionWindowController::bringForward()
{
    if (QWindow *handle = m_window->windowHandle())
        m_frontmost.bringForward(*handle);
}

void PermissionWindowController::close()
{
    Q_ASSERT(isMainThread());
    if (!m_window)
        return;
    m_window->hide();
    // Called from inside the view: it goes when its own event has been handled.
    m_window.release()->deleteLater();
}

} // namespace tovek
