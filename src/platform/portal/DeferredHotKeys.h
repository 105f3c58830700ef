// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"
#include "platform/linux/RawKeyFilter.h"

#include <map>

namespace tovek {

class KeyboardLayout;

/// Keys that another program is asked for, which answers when it likes: every grab is granted at
/// first, and all of them are asked for together, from the main loop. A menu of ours, which gives
/// all keys back for as long as it is open, is not worth asking.
class DeferredHotKeys : public QObject, public HotKeys
{
public:
    [[nodiscard]] int grab(quint32 id, KeyCombo combo) override;
    void release(quint32 id) override;
    void setWatchingRawKeys(bool isOn) override { m_rawKeys.setWatching(isOn); }
    bool isTaken(KeyCombo) override { return false; }

protected:
    explicit DeferredHotKeys(const KeyboardLayout &layout);
    const KeyboardLayout &layout() const { return m_layout; }
    const std::map<quint32, KeyCombo> &wanted() const { return m_wanted; }
    /// Asks for what is wanted now, and for nothing else.
    virtual void ask() = 0;
    /// The desktop said no to one that was granted.
    void refuse(KeyCombo combo);
    /// Has `ask` called by the main loop.
    void askSoon();

private:
    void askLater();

    const KeyboardLayout &m_layout;
    std::map<quint32, KeyCombo> m_wanted;
    RawKeyFilter m_rawKeys;
    bool m_isAsking = false;
    int m_releases = 0;
};

} // namespace tovek
