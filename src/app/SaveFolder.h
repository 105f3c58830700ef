// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

namespace tovek {

/// Whether screenshots can be saved in a folder.
enum class FolderState { usable, missing, notAFolder, notWritable };

/// Asks the file system now.
FolderState folderState(const QString &path);
/// What a person is told about it; empty when there is nothing to tell.
QString noteOn(FolderState state);
/// "~" for the home folder and what is in it.
QString abbreviatedPath(const QString &path, const QString &home);

} // namespace tovek
