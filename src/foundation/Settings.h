// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

namespace tovek {

class UserDefaults;

/// Every setting of the program with its key, its type and what holds while the user has not
/// chosen, or the store has something of another type. The program reads and writes them through
/// this table alone. Shortcuts are stored by KeyboardShortcuts, under names of their own.
namespace Settings {

struct Boolean
{
    const char *key;
    bool fallback;

    bool in(const UserDefaults &defaults) const;
    void set(UserDefaults &defaults, bool value) const;
};

struct Text
{
    const char *key;
    const char *fallback;

    QString in(const UserDefaults &defaults) const;
    void set(UserDefaults &defaults, const QString &value) const;
};

// clang-format off
inline constexpr Boolean highlightText     {"highlightText",      true};  ///< words are marked in a selection
inline constexpr Boolean showInMenuBar     {"showInMenuBar",      true};  ///< the item in the panel
inline constexpr Text    saveFolderPath    {"saveFolderPath",     ""};    ///< empty: Downloads
/// Pictures over an interface that mutter has for its own programs: only in the file.
inline constexpr Boolean useMutterScreenCast{"useMutterScreenCast", false};
/// A notification said that there is no panel for the item: not chosen, but kept.
inline constexpr Boolean toldOfNoStatusItem{"toldOfNoStatusItem", false};
// clang-format on

} // namespace Settings

} // namespace tovek
