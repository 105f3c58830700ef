// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Screens.h"
#include "platform/wayland/WaylandOutputs.h"

namespace tovek {

/// The outputs as screens. No client is told where the pointer is while it is over somebody else's
/// window; until an overlay lies under it, its place is taken to be the middle of the screen where
/// it was seen last.
class WaylandScreens : public QObject, public Screens
{
public:
    explicit WaylandScreens(std::shared_ptr<WaylandOutputs> outputs);
    std::vector<Screen> all() const override;
    std::optional<Screen> main() const override;
    Point mouseLocation() const override;

    /// Of the screen that the pointer has come to.
    void pointerSeenOn(uint32_t displayId) { m_pointerScreen = displayId; }

private:
    std::shared_ptr<WaylandOutputs> m_outputs;
    std::optional<uint32_t> m_pointerScreen;
};

} // namespace tovek
