// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeOverlayShell.h"

#include <algorithm>
#include <utility>

namespace tovek {

FakeOverlaySurface::FakeOverlaySurface(FakeOverlayShell &shell, Screen screen,
                                       std::shared_ptr<FrozenDisplay> frozen)
    : m_shell(shell)
    , m_screen(std::move(screen))
    , m_frozen(std::move(frozen))
{
    m_shell.surfaces.push_back(this);
}

FakeOverlaySurface::~FakeOverlaySurface()
{
    std::erase(m_shell.surfaces, this);
    if (m_shell.keySurface == this)
        m_shell.keySurface = nullptr;
}

void FakeOverlaySurface::orderFrontRegardless()
{
    if (std::exchange(m_isSent, false))
        --m_shell.sent;
    m_isVisible = true;
    m_shell.events << QStringLiteral("front %1").arg(m_screen.displayId.value_or(0));
    if (std::exchange(m_wantsKey, false))
        makeKey();
}

void FakeOverlaySurface::sendToFront()
{
    if (!std::exchange(m_isSent, true))
        m_shell.mostSent = std::max(m_shell.mostSent, ++m_shell.sent);
}

void FakeOverlaySurface::orderOut()
{
    if (!m_isVisible)
        return;
    m_isVisible = false;
    m_frozen.reset();
    if (m_shell.keySurface == this)
        m_shell.keySurface = nullptr;
    m_shell.events << QStringLiteral("out %1").arg(m_screen.displayId.value_or(0));
}

void FakeOverlaySurface::makeKey()
{
    if (!m_isVisible) {
        m_wantsKey = true;
        return;
    }
    m_shell.keySurface = this;
    m_shell.events << QStringLiteral("key %1").arg(m_screen.displayId.value_or(0));
}

bool FakeOverlaySurface::isKey() const
{
    return m_shell.keySurface == this;
}

bool FakeOverlaySurface::present(const DisplayList &list)
{
    presented.push_back(list);
    return m_shell.draws;
}

void FakeOverlaySurface::loseScreen()
{
    const bool wasVisible = m_isVisible;
    orderOut();
    if (wasVisible && onScreenGone)
        onScreenGone();
}

std::unique_ptr<OverlaySurface> FakeOverlayShell::create(QWindow &, const Screen &screen,
                                                         std::shared_ptr<FrozenDisplay> frozen)
{
    return std::make_unique<FakeOverlaySurface>(*this, screen, std::move(frozen));
}

} // namespace tovek
