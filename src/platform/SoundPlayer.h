// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

namespace tovek {

/// One sound, ready to be played. Main thread only.
class SoundPlayer
{
public:
    virtual ~SoundPlayer() = default;
    /// Plays from the start, also while it is still playing. Silent where the desktop's event
    /// sounds are switched off or nothing can play them. Does not wait for the sound.
    virtual void playFromStart() = 0;
};

/// Makes players. Main thread only.
class SoundOutput
{
public:
    virtual ~SoundOutput() = default;
    /// A player of a whole sound file held in memory. Null, and the reason in `error`, when the
    /// data is no sound or nothing here can play sounds.
    virtual std::unique_ptr<SoundPlayer> makePlayer(const QByteArray &data, QString &error) = 0;
};

} // namespace tovek
