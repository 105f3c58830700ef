// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/DeferredHotKeys.h"

#include "platform/linux/Accelerator.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace tovek {

namespace {

using namespace std::chrono_literals;

/// As long as a menu may be open.
constexpr auto releaseDelay = 3s;

} // namespace

DeferredHotKeys::DeferredHotKeys(const KeyboardLayout &layout)
    : m_layout(layout)
    , m_rawKeys([this](KeyCombo combo, bool isDown) { return onRawKey && onRawKey(combo, isDown); })
{
}

int DeferredHotKeys::grab(quint32 id, KeyCombo combo)
{
    Q_ASSERT(!m_wanted.contains(id));
    if (symbolNameOf(combo.keyCode, m_layout).isEmpty())
        return noSuchKey;
    m_wanted.emplace(id, combo);
    askSoon();
    return 0;
}

void DeferredHotKeys::release(quint32 id)
{
    if (m_wanted.erase(id))
        askLater();
}

void DeferredHotKeys::refuse(KeyCombo combo)
{
    const auto found = std::find_if(m_wanted.begin(), m_wanted.end(),
                                    [combo](const auto &entry) { return entry.second == combo; });
    if (found == m_wanted.end())
        return;
    const quint32 id = found->first;
    m_wanted.erase(found);
    if (onRefused)
        onRefused(id);
}

void DeferredHotKeys::askSoon()
{
    if (std::exchange(m_isAsking, true))
        return;
    // Keys are taken before there is an application, and with it a timer.
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_isAsking = false;
            ask();
        },
        Qt::QueuedConnection);
}

void DeferredHotKeys::askLater()
{
    if (!QCoreApplication::instance())
        return askSoon();
    QTimer::singleShot(releaseDelay, this, [this, releases = ++m_releases] {
        if (releases == m_releases)
            askSoon();
    });
}

} // namespace tovek
