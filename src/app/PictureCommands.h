// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

namespace tovek {

struct ShotCommand;
struct WordsCommand;

/// Each makes an application of its own, without a window, and writes its result to a file or to
/// standard output; what is logged goes to standard error. The reason when it failed, otherwise an
/// empty text.
[[nodiscard]] QString runShot(const ShotCommand &command, int &argc, char **argv);
[[nodiscard]] QString runWords(const WordsCommand &command, int &argc, char **argv);

} // namespace tovek
