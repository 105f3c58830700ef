// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "command/CommandLine.h"

#include <optional>

namespace tovek {

class SingleInstance;

/// What the resident program was started for.
struct Wish
{
    bool inBackground = false; ///< without the settings
    ActionCommand action; ///< may be none
};

Command commandOf(int argc, char **argv);
/// Absent for commands that do without the resident program.
std::optional<Wish> wishOf(const Command &command);

/// Claims to be the resident program. The status to leave with where there is one already, which
/// then has been told what is wished, or where there is nobody to tell it to.
std::optional<int> leaveToTheFirst(SingleInstance &instance, const Wish &wish);

/// Carries out a command that does without the resident program. The status to leave with: 0, 1 for
/// a failure, 2 for a command line that says nothing that can be done.
int runCommand(const Command &command, int &argc, char **argv);

/// One line on standard error; a notification where nobody reads that.
void complain(const QString &reason);

} // namespace tovek
