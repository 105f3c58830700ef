// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "update/UpdateChoice.h"

namespace tovek {

/// Why there is no update, although one was looked for or chosen.
enum class Refusal {
    notInstalled,
    unreachable,
    insecure,
    badAnswer,
    silent,
    cutOff,
    tooLong,
    noFeed,
    oldFeed,
    unsignedFeed,
    wrongLength,
    badSignature,
    wrongMachine,
    noRoom,
    notWritten,
    noInstaller,
};

/// One clear sentence or two for the user. The detail is what the system says of the case, a
/// number or a place; most refusals have none.
QString explain(Refusal refusal, const QString &detail = {});

/// What a check that offers nothing tells the user who asked for it.
QString explain(NoOffer reason, const QString &installedVersion);

} // namespace tovek
