// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QDateTime>

namespace tovek {

class UserDefaults;

/// The folder that the user chose for screenshots; empty when none was. Asks no file system.
QString chosenSaveFolder(const UserDefaults &defaults);
/// Downloads; asks no file system whether there is such a folder.
QString downloadsFolder();
/// The chosen folder, else Downloads where that is one, else home. Asks the file system, which may
/// take for ever where a server does not answer: not for the main thread.
QString usedSaveFolder(const QString &chosen);
/// The file name of a time, in the folder that the user chose, or without a folder: in that of the
/// default.
QString saveLocationAt(const QDateTime &time, const UserDefaults &defaults);
/// The file that a location means, one without a folder lying in that of the default. Asks the file
/// system likewise.
QString fileAt(const QString &location);

} // namespace tovek
