// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QFileDialog>

namespace tovek {

/// Where a person chooses the folder for screenshots.
class FolderDialog : public QFileDialog
{
public:
    explicit FolderDialog(const QString &start);

    /// Lies before that window of another program, and nothing can be done in that meanwhile.
    void setOwner(quint64 window);
};

/// The whole life of the program that shows it: writes the chosen folder to standard output, and
/// before that zeros as signs that it does not hang (FolderChooser). 1 when none was chosen.
int runFolderDialog(int &argc, char **argv);

} // namespace tovek
