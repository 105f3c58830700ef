// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/SoundPlayer.h"

#include <functional>

namespace tovek {

/// Sounds by the desktop's event sound library, which is loaded with the first sound and not
/// before.
class CanberraSoundOutput : public SoundOutput
{
public:
    /// Asked before every play: whether the desktop's event sounds are switched on.
    explicit CanberraSoundOutput(std::function<bool()> areEventSoundsEnabled);

    std::unique_ptr<SoundPlayer> makePlayer(const QByteArray &data, QString &error) override;

private:
    std::function<bool()> m_areEventSoundsEnabled;
};

} // namespace tovek
