// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"

#include <QString>

#include <vector>

namespace tovek {

class KeyboardLayout;

/// One key that a configuration of sway binds to something.
struct SwayBinding
{
    quint32 modifiers = 0;
    QString key; ///< the name of what it types; empty where `keycode` tells
    quint32 keycode = 0; ///< as key events number keys

    bool operator==(const SwayBinding &) const = default;
};

/// What the text of a configuration says, in the order of its lines.
struct SwayConfiguration
{
    /// Those that hold while no mode is chosen. A key with a modifier that shortcuts do not know
    /// is left out.
    std::vector<SwayBinding> bindings;
    QStringList includes; ///< patterns of further files
};

/// `variables` are those known so far; what the text sets is added.
SwayConfiguration parseSwayConfiguration(const QString &text, QHash<QString, QString> &variables);

bool isBoundTo(const SwayBinding &binding, KeyCombo combo, const KeyboardLayout &layout);

} // namespace tovek
