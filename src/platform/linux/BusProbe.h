// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>

#include <chrono>

namespace tovek {

enum class BusHealth {
    answers, ///< or cannot be told, for its address is of an unusual kind
    silent, ///< takes connections and answers none of them
    absent
};

/// Asks a message bus to begin an authentication, which a living one answers within a fraction of a
/// millisecond, and waits no longer than the limit. The bus library itself waits for 25 seconds,
/// several times. Any thread.
BusHealth probeBus(const QByteArray &address, std::chrono::milliseconds limit);

/// The address of the user's bus by the environment; empty when it tells none.
QByteArray sessionBusAddress();
/// That of the machine's bus.
QByteArray systemBusAddress();

} // namespace tovek
