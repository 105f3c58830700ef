// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/OverlaySurface.h"

#include <QStringList>

namespace tovek {

class FakeOverlayShell;

/// A surface that shows nothing and remembers what it was told.
class FakeOverlaySurface : public OverlaySurface
{
public:
    FakeOverlaySurface(FakeOverlayShell &shell, Screen screen,
                       std::shared_ptr<FrozenDisplay> frozen);
    ~FakeOverlaySurface() override;
    void orderFrontRegardless() override;
    void sendToFront() override;
    void orderOut() override;
    bool isVisible() const override { return m_isVisible; }
    void makeKey() override;
    bool isKey() const override;
    bool present(const DisplayList &list) override;
    void setCovered(const QRegion &region) override { covered = region; }
    void setFollowsPointer(bool isOn) override { followsPointer = isOn; }

    const Screen &screen() const { return m_screen; }
    /// What lies below everything presented; null after the surface was ordered out.
    const std::shared_ptr<FrozenDisplay> &frozen() const { return m_frozen; }
    /// The monitor was unplugged.
    void loseScreen();

    std::vector<DisplayList> presented;
    QRegion covered;
    bool followsPointer = false;

private:
    FakeOverlayShell &m_shell;
    Screen m_screen;
    std::shared_ptr<FrozenDisplay> m_frozen;
    bool m_isVisible = false;
    bool m_isSent = false;
    bool m_wantsKey = false;
};

class FakeOverlayShell : public OverlayShell
{
public:
    void prepare() override { ++preparations; }
    std::unique_ptr<OverlaySurface> create(QWindow &window, const Screen &screen,
                                           std::shared_ptr<FrozenDisplay> frozen) override;

    int preparations = 0;
    bool draws = true; ///< false: widgets must paint themselves
    int sent = 0; ///< to the front, of which nobody may have been told
    int mostSent = 0; ///< at a time
    QStringList events; ///< "front 1", "key 1", "out 1": with the display's number
    std::vector<FakeOverlaySurface *> surfaces; ///< alive, in order of creation
    FakeOverlaySurface *keySurface = nullptr;
};

} // namespace tovek
