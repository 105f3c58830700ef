// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "KeyboardShortcuts/Shortcut.h"

#include <QMetaType>
#include <QString>

namespace KeyboardShortcuts {

/// Names one shortcut of a program. ShortcutService::createName also stores the default.
struct Name
{
    QString rawValue;
    std::optional<Shortcut> defaultShortcut;

    /// Where the store keeps the shortcut.
    QString key() const { return QStringLiteral("KeyboardShortcuts_") + rawValue; }

    /// The default takes no part.
    bool operator==(const Name &other) const { return rawValue == other.rawValue; }
};

} // namespace KeyboardShortcuts

Q_DECLARE_METATYPE(KeyboardShortcuts::Name)
