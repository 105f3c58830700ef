// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"

#include <QList>

#include <map>
#include <optional>

namespace tovek {

/// A keyboard that the test presses. Refuses what the test says that others hold.
class FakeHotKeys : public HotKeys
{
public:
    [[nodiscard]] int grab(quint32 id, KeyCombo combo) override;
    void release(quint32 id) override;
    void setWatchingRawKeys(bool isOn) override { watchesRawKeys = isOn; }
    bool reportsRelease() const override { return canReportRelease; }
    void setWatchingForFreedKeys(bool isOn) override { watchesForFreedKeys = isOn; }
    QString likelyHolder() const override { return holder; }
    bool isTaken(KeyCombo combo) override { return foreign.contains(combo); }

    /// Puts the combination down; once more, where it is down, as a key that repeats. True when
    /// somebody took it, so that nobody else sees it.
    bool press(KeyCombo combo);
    void releaseKey();
    /// Both.
    bool tap(KeyCombo combo);

    /// The other programs that held keys are gone.
    void freeAll()
    {
        foreign.clear();
        if (watchesForFreedKeys && onMayBeFree)
            onMayBeFree();
    }

    QList<KeyCombo> foreign; ///< held by other programs
    QString holder;
    int refusal = 10; ///< the status that they are refused with
    bool canReportRelease = true;
    bool watchesRawKeys = false;
    bool watchesForFreedKeys = false;
    std::map<quint32, KeyCombo> grabbed;

private:
    std::optional<KeyCombo> m_down;
    std::optional<quint32> m_pressedId;
    bool m_isStale = false; ///< what is down was so before its grab
};

} // namespace tovek
