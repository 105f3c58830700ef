// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/portal/DeferredHotKeys.h"

#include <memory>

namespace tovek {

/// Keys of a GNOME without shortcuts for programs: custom shortcuts in its settings, which run our
/// commands, at the press and whether the program runs or not. They stay when it ends. Nobody tells
/// this object of a key.
class GnomeBoundHotKeys : public DeferredHotKeys
{
public:
    /// Null without such settings. The layout must outlive this.
    static std::unique_ptr<GnomeBoundHotKeys> create(const KeyboardLayout &layout);

    bool reportsRelease() const override { return false; }

protected:
    void ask() override;

private:
    using DeferredHotKeys::DeferredHotKeys;
    bool isHeldByDesktop(KeyCombo combo, const QStringList &accelerators) const;
    void write(const QStringList &accelerators);

    bool m_isWriting = false;
    bool m_isOutdated = false;
};

} // namespace tovek
