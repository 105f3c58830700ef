// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

namespace tovek {

/// Whether screenshots can be saved in a folder.
enum class FolderState { usable, missing, notAFolder, notWritable, notAnswering };

/// Asks the file system, which may take for ever: not for the main thread.
FolderState folderState(const QString &path);
struct FolderReport
{
    QString folder;
    FolderState state = FolderState::notAnswering;
};
/// The folder that is used when the user chose this one or, if empty, none. Likewise.
FolderReport reportOnSaveFolder(const QString &chosen);
/// What a person is told about it; empty when there is nothing to tell.
QString noteOn(FolderState state);
/// "~" for the home folder and what is in it.
QString abbreviatedPath(const QString &path, const QString &home);

} // namespace tovek
