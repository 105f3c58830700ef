// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/SoundPlayer.h"

namespace tovek {

/// Plays nothing and counts.
class FakeSoundOutput : public SoundOutput
{
public:
    std::unique_ptr<SoundPlayer>
    makePlayer(const QByteArray &newData,
               std::function<void(const QString &error)> onFailed) override
    {
        data = newData;
        if (!failure.isEmpty())
            onFailed(failure);
        return std::make_unique<Player>(plays);
    }

    QString failure; ///< empty: players can be made
    QByteArray data;
    int plays = 0;

private:
    class Player : public SoundPlayer
    {
    public:
        explicit Player(int &plays) : m_plays(plays) { }
        void playFromStart() override { ++m_plays; }

    private:
        int &m_plays;
    };
};

} // namespace tovek
