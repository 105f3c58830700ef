// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>

namespace tovek {

/// Whether windows can be drawn at this scale at all.
bool isPossibleScale(const QByteArray &text);

/// Takes out of the process's environment what nothing good can come of, with a line for each:
/// scale factors at which no window can be drawn, and base folders that are not absolute, which
/// those who defined them want ignored. Before anything reads the environment.
void forgetImpossibleEnvironment();

/// False, after a line that says so, for dots per inch of which no toolkit can make a scale.
bool isPossibleDensity(double dotsPerInch);

/// Has the toolkit ignore what the desktop states of its dots per inch where that is impossible.
/// Before there is an application.
void forgetImpossibleDensity(double dotsPerInch);

} // namespace tovek
