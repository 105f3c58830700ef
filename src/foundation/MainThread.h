// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

namespace tovek {

/// Whether the caller is on the application's thread; before there is an application, always. For
/// the assertions of classes that say "Main thread only".
bool isMainThread();

} // namespace tovek
