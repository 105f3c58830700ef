// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

class QWindow;

namespace tovek {

/// Brings keys to a window of ours that the desktop would keep for itself. Main thread only.
class KeyboardHold
{
public:
    virtual ~KeyboardHold() = default;
    /// While this window has the keyboard it gets all keys, where the desktop agrees; null for no
    /// window any more.
    virtual void hold(QWindow *window) = 0;
};

} // namespace tovek
