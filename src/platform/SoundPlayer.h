// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>

namespace tovek {

/// One sound, ready to be played. Main thread only.
class SoundPlayer
{
public:
    virtual ~SoundPlayer() = default;
    /// Plays from the start, also while it is still playing. Silent where the desktop's event
    /// sounds are switched off or nothing can play them. Waits for nobody, not even for a sound
    /// server that has stopped; a sound that comes much too late is left out.
    virtual void playFromStart() = 0;
};

/// Makes players. Main thread only.
class SoundOutput
{
public:
    virtual ~SoundOutput() = default;
    /// A player of a whole sound file held in memory. It is silent, and `onFailed` is called once,
    /// from whatever thread, when the data is no sound or nothing here can play sounds.
    virtual std::unique_ptr<SoundPlayer>
    makePlayer(const QByteArray &data, std::function<void(const QString &error)> onFailed) = 0;
};

} // namespace tovek
