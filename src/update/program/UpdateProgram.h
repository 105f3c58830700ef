// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

namespace tovek {

struct UpdateBuild;

/// The whole program that checks for updates and installs them: makes the application, runs one
/// session, and says on standard output what there is to log. "relaunch " and a path, the last
/// line, asks whoever started it to become that program. When the pipe to its input closes, nobody
/// is left to tell, and it ends.
///
/// --installed-version VERSION [--quiet]; quiet: the user has not asked, and hears only of offers.
int runUpdateProgram(int &argc, char **argv, const UpdateBuild &build);

} // namespace tovek
