// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "feedback/SoundManager.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"

#include <QFile>

namespace tovek {

SoundManager::SoundManager(SoundOutput &output, const QString &asset)
{
    QFile file(asset);
    if (!file.open(QIODevice::ReadOnly)) {
        logLine(QStringLiteral("Failed to load copy sound asset"));
        return;
    }
    m_audioPlayer = output.makePlayer(file.readAll(), [](const QString &error) {
        logLine(QStringLiteral("Failed to initialize audio player: ") + error);
    });
}

void SoundManager::playCopySound()
{
    Q_ASSERT(isMainThread());
    if (m_audioPlayer)
        m_audioPlayer->playFromStart();
}

} // namespace tovek
