// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/WindowLook.h"

#include "foundation/WhenReady.h"
#include "look/Look.h"
#include "platform/WindowColors.h"
#include "update/Updater.h"

#include <utility>

namespace tovek {

namespace {

void use(const WindowTheme &theme)
{
    useModernLook(theme.isDark ? Windows::dark : Windows::asThePalette, theme.accent);
}

} // namespace

WindowLook::WindowLook(WindowColors *colors, Updater &updater)
    : m_colors(colors)
    , m_updater(updater)
{
    if (!m_colors)
        return;
    m_colors->onChanged = [this] { follow(); };
    m_updater.onStarted = [this] { follow(); };
}

WindowLook::~WindowLook()
{
    if (!m_colors)
        return;
    m_colors->onChanged = nullptr;
    m_updater.onStarted = nullptr;
}

void WindowLook::prepare()
{
    m_isUsed = true;
    const WindowTheme theme = m_colors ? m_colors->theme() : WindowTheme();
    use(theme);
    tell(theme);
}

void WindowLook::learn()
{
    if (m_colors && !std::exchange(m_isAsked, true))
        follow();
}

void WindowLook::tell(const WindowTheme &theme)
{
    m_isAsked = true;
    if (onTold)
        onTold(theme.isDark);
}

void WindowLook::follow()
{
    if (!m_isUsed && !m_isAsked && !m_updater.isRunning())
        return;
    whenReady(m_colors->ask(), this, [this](const WindowTheme &theme) {
        m_updater.setWindows(theme.isDark, theme.accent);
        if (m_isUsed)
            use(theme);
        tell(theme);
    });
}

} // namespace tovek
