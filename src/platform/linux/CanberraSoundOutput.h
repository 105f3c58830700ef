// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/SoundPlayer.h"

#include <functional>

namespace tovek {

/// Sounds by the desktop's event sound library, which is loaded with the first sound and not
/// before. The library waits for the sound server, half a minute for one that has stopped, so that
/// only a thread of its own calls it.
class CanberraSoundOutput : public SoundOutput
{
public:
    /// Asked before every play: whether the desktop's event sounds are switched on.
    explicit CanberraSoundOutput(std::function<bool()> areEventSoundsEnabled);

    std::unique_ptr<SoundPlayer>
    makePlayer(const QByteArray &data, std::function<void(const QString &error)> onFailed) override;

private:
    std::function<bool()> m_areEventSoundsEnabled;
};

} // namespace tovek
