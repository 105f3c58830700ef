// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QString>

namespace tovek {

/// What the desktop keeps of the user's answer to whether a program may take screenshots.
enum class StoredAnswer {
    none, ///< the user has not been asked
    yes,
    no,
    askEachTime,
    unknown ///< there is no store, or it does not answer
};

/// Never asks the user. Waits for the store, for half a second at most.
StoredAnswer storedScreenshotAnswer(const QDBusConnection &bus, const QString &appId);
/// Has the desktop ask the user anew the next time. The reason when it did not work, otherwise an
/// empty text.
QString forgetScreenshotAnswer(const QDBusConnection &bus, const QString &appId);

} // namespace tovek
