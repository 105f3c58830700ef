// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/WindowLook.h"

#include "foundation/WhenReady.h"
#include "look/Look.h"
#include "platform/WindowColors.h"
#include "update/Updater.h"

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
    use(m_colors ? m_colors->theme() : WindowTheme());
}

void WindowLook::follow()
{
    if (!m_isUsed && !m_updater.isRunning())
        return;
    whenReady(m_colors->ask(), this, [this](const WindowTheme &theme) {
        m_updater.setWindows(theme.isDark, theme.accent);
        if (m_isUsed)
            use(theme);
    });
}

} // namespace tovek
