// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Settings.h"

#include "foundation/UserDefaults.h"

namespace tovek::Settings {

bool Boolean::in(const UserDefaults &defaults) const
{
    return defaults.boolean(QLatin1String(key)).value_or(fallback);
}

void Boolean::set(UserDefaults &defaults, bool value) const
{
    defaults.setBoolean(QLatin1String(key), value);
}

QString Text::in(const UserDefaults &defaults) const
{
    return defaults.string(QLatin1String(key)).value_or(QLatin1String(fallback));
}

void Text::set(UserDefaults &defaults, const QString &value) const
{
    defaults.setString(QLatin1String(key), value);
}

} // namespace tovek::Settings
