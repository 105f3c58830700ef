// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QtGlobal>

namespace tovek {

/// While the toolkit starts: turns its abort with a core dump, when it finds no display, into one
/// log line and exit status 1. What else it has to say it says as always, when the start is over;
/// at once where it is told to end with such a message.
class StartMessages
{
public:
    StartMessages();
    ~StartMessages();
    StartMessages(const StartMessages &) = delete;
    StartMessages &operator=(const StartMessages &) = delete;

private:
    bool m_isHolding;
    QtMessageHandler m_before = nullptr;
};

} // namespace tovek
