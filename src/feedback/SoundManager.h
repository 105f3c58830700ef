// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/SoundPlayer.h"

namespace tovek {

/// The sound that confirms a copy or a save. Making it loads the sound, once. Main thread only.
class SoundManager
{
public:
    /// The asset is a resource; a missing one costs a log line, and the program stays silent.
    explicit SoundManager(SoundOutput &output, const QString &asset = QStringLiteral(":/copy.wav"));

    void playCopySound();

private:
    std::unique_ptr<SoundPlayer> m_audioPlayer;
};

} // namespace tovek
