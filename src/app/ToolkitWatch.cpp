// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/ToolkitWatch.h"

#include <QGuiApplication>
#include <QScreen>

namespace tovek {

namespace {

using namespace std::chrono_literals;

/// Monitors change one after the other, and the X server on a Wayland desktop hears of it last.
constexpr auto settlingTime = 2s;

} // namespace

ToolkitWatch::ToolkitWatch()
{
    m_delay.setSingleShot(true);
    m_delay.setInterval(settlingTime);
    m_delay.callOnTimeout([this] { check(); });
    const auto restart = [this] { m_delay.start(); };
    connect(qApp, &QGuiApplication::screenRemoved, this, restart);
    connect(qApp, &QGuiApplication::screenAdded, this, [this](QScreen *screen) {
        watch(screen);
        m_delay.start();
    });
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens)
        watch(screen);
}

void ToolkitWatch::watch(const QScreen *screen)
{
    const auto restart = [this] { m_delay.start(); };
    connect(screen, &QScreen::geometryChanged, this, restart);
    connect(screen, &QScreen::logicalDotsPerInchChanged, this, restart);
}

void ToolkitWatch::check()
{
    if (!isIdle())
        m_delay.start();
    else if (isOutdated())
        onOutdated();
}

} // namespace tovek
