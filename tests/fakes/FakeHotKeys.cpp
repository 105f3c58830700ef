// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeHotKeys.h"

#include "platform/linux/KeyCodes.h"

#include <algorithm>

namespace tovek {

int FakeHotKeys::grab(quint32 id, KeyCombo combo)
{
    Q_ASSERT(!grabbed.contains(id));
    if (evdevCodes(int(combo.keyCode)).empty())
        return 1;
    const bool isOurs = std::any_of(grabbed.begin(), grabbed.end(),
                                    [&](const auto &entry) { return entry.second == combo; });
    if (isOurs || foreign.contains(combo))
        return refusal;
    grabbed.emplace(id, combo);
    m_isStale = m_isStale || m_down == combo;
    return 0;
}

void FakeHotKeys::release(quint32 id)
{
    grabbed.erase(id);
    if (m_pressedId == id)
        m_pressedId.reset();
}

bool FakeHotKeys::press(KeyCombo combo)
{
    m_isStale = m_isStale && m_down == combo;
    m_down = combo;
    if (m_isStale)
        return true;
    if (watchesRawKeys && onRawKey && onRawKey(combo, true))
        return true;
    const auto found = std::find_if(grabbed.begin(), grabbed.end(),
                                    [&](const auto &entry) { return entry.second == combo; });
    if (found == grabbed.end())
        return false;
    m_pressedId = found->first;
    if (onPressed)
        onPressed(found->first);
    if (!canReportRelease)
        releaseKey();
    return true;
}

void FakeHotKeys::releaseKey()
{
    m_isStale = false;
    if (const auto combo = std::exchange(m_down, std::nullopt); combo && watchesRawKeys && onRawKey)
        onRawKey(*combo, false);
    if (const auto id = std::exchange(m_pressedId, std::nullopt); id && onReleased)
        onReleased(*id);
}

bool FakeHotKeys::tap(KeyCombo combo)
{
    const bool isTaken = press(combo);
    releaseKey();
    return isTaken;
}

} // namespace tovek
