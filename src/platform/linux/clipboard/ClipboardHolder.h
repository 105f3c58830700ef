// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/clipboard/SelectionContent.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>

namespace tovek {

enum class HeldKind { png, text };

/// Starts a process of its own, `program`, that takes the clipboard over from us and serves the
/// bytes until another program takes it. Returns when it has done so; calls `meanwhile` in short
/// intervals until then. False when it could not, which costs one log line, and when the clipboard
/// is not ours any more, which costs none.
///
/// A process of its own, because a program that has ended can serve nobody, not every desktop has
/// a clipboard manager, and those there are lose pictures or take seconds. A program of its own,
/// because what is left behind should be as small as what it holds.
[[nodiscard]] bool startClipboardHolder(const QString &program, const QList<QByteArray> &arguments,
                                        HeldKind kind, const SelectionBytes &bytes,
                                        const std::function<void()> &meanwhile);

} // namespace tovek
