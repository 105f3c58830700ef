// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QSocketNotifier>

#include <functional>

namespace tovek {

/// Turns the signals that ask a program to end (terminate, interrupt, hang up) into `onQuit` on
/// the main loop, so that it ends as it does from its menu and loses nothing. The next signal ends
/// it at once. A signal that whoever started the program had switched off stays off. One at a time,
/// on the thread of the main loop; with it the signals get their old meaning again.
class QuitSignals
{
public:
    explicit QuitSignals(std::function<void()> onQuit);
    ~QuitSignals();
    QuitSignals(const QuitSignals &) = delete;
    QuitSignals &operator=(const QuitSignals &) = delete;

private:
    int m_readEnd = -1;
    QSocketNotifier m_notifier;
};

} // namespace tovek
