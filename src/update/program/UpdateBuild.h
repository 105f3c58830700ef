// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QUrl>

#include <chrono>

namespace tovek {

/// What a build knows of the place where its new versions are published.
struct UpdateBuild
{
    QUrl feed; ///< HTTPS
    QByteArray publicKey; ///< Ed25519, 32 bytes
    std::chrono::milliseconds silence = std::chrono::seconds(30); ///< of the server, at most
    std::chrono::milliseconds feedTime = std::chrono::seconds(60); ///< for all of the feed
};

} // namespace tovek
