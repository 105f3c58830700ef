// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/WindowLook.h"

#include "foundation/WhenReady.h"
#include "look/Look.h"
#include "platform/WindowColors.h"
#include "update/Updater.h"

namespace tovek {

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
    useModernLook(m_colors && m_colors->areDark() ? Windows::dark : Windows::asThePalette);
}

void WindowLook::follow()
{
    if (!m_isUsed && !m_updater.isRunning())
        return;
    whenReady(m_colors->ask(), this, [this](bool areDark) {
        m_updater.setWindows(areDark);
        if (m_isUsed)
            useModernLook(areDark ? Windows::dark : Windows::asThePalette);
    });
}

} // namespace tovek
