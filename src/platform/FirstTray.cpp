// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/FirstTray.h"

#include "foundation/MainThread.h"

#include <algorithm>

namespace tovek {

FirstTray::FirstTray(std::vector<std::unique_ptr<Tray>> trays) : m_trays(std::move(trays))
{
    std::erase(m_trays, nullptr);
    for (const auto &tray : m_trays) {
        Tray *source = tray.get();
        source->onHostChanged = [this] { choose(); };
        const auto forward = [this, source](const std::function<void(QPointF)> &call, QPointF at) {
            if (source == m_current && call)
                call(at);
        };
        source->onPressed = [this, forward](QPointF at) { forward(onPressed, at); };
        source->onMoved = [this, forward](QPointF at) { forward(onMoved, at); };
        source->onReleased = [this, forward](QPointF at) { forward(onReleased, at); };
        source->menuRows = [this] { return menuRows ? menuRows() : std::vector<TrayMenuRow>(); };
        source->onMenuRow = [this, source](int row) {
            if (source == m_current && onMenuRow)
                onMenuRow(row);
        };
        source->onMenuRequested = [this, source] {
            if (source == m_current && onMenuRequested)
                onMenuRequested();
        };
    }
    choose();
}

bool FirstTray::isLookingForHost() const
{
    return std::any_of(m_trays.begin(), m_trays.end(),
                       [](const auto &tray) { return tray->isLookingForHost(); });
}

void FirstTray::setVisible(bool isVisible)
{
    m_isVisible = isVisible;
    if (m_current)
        m_current->setVisible(isVisible);
}

void FirstTray::setPicture(const TrayPicture &picture)
{
    m_picture = picture;
    if (m_current)
        m_current->setPicture(picture);
}

void FirstTray::setToolTip(const QString &text)
{
    m_toolTip = text;
    if (m_current)
        m_current->setToolTip(text);
}

Tray *FirstTray::best() const
{
    Tray *lastResort = nullptr;
    for (const auto &tray : m_trays) {
        if (!tray->hasHost())
            continue;
        if (!tray->isLastResort())
            return tray.get();
        if (!lastResort)
            lastResort = tray.get();
    }
    return isLookingForHost() ? nullptr : lastResort;
}

void FirstTray::choose()
{
    Q_ASSERT(isMainThread());
    if (Tray *tray = best(); tray != m_current)
        moveTo(tray);
    if (onHostChanged)
        onHostChanged();
}

void FirstTray::moveTo(Tray *tray)
{
    if (m_current)
        m_current->setVisible(false);
    m_current = tray;
    if (!tray)
        return;
    tray->setToolTip(m_toolTip);
    if (m_picture.paint)
        tray->setPicture(m_picture);
    tray->setVisible(m_isVisible);
}

} // namespace tovek
