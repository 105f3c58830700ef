// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/SystemShortcuts.h"

#include <QList>

namespace tovek {

/// A desktop whose settings list what the test says.
class FakeSystemShortcuts : public SystemShortcuts
{
public:
    void refresh() override { ++refreshes; }
    bool contains(KeyCombo combo) override { return listed.contains(combo); }

    QList<KeyCombo> listed;
    int refreshes = 0;
};

} // namespace tovek
