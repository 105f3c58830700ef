// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/FolderDialog.h"

int main(int argc, char **argv)
{
    return tovek::runFolderDialog(argc, argv);
}
