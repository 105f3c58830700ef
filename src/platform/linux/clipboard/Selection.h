// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/clipboard/SelectionContent.h"

#include <functional>

namespace tovek {

/// The window system's clipboard, as its owner sees it. No call waits for a reader.
class Selection
{
public:
    enum class Readiness { ready, awaited };

    virtual ~Selection() = default;
    /// Takes it with content that is ready, or of which only the names are known yet: readers then
    /// wait for `provide`. False when it cannot be had.
    virtual bool take(SelectionContent content, Readiness readiness) = 0;
    virtual void provide(SelectionContent content) = 0;
    /// Leaves the selection without an owner, whoever that is; readers that wait are refused.
    virtual void clear() = 0;
    virtual bool isOwner() const = 0;
    virtual bool isTransferring() const = 0;

    /// Another program took it.
    std::function<void()> onLost;
    /// What `take` said could be had was refused after all.
    std::function<void()> onRefused;
};

} // namespace tovek
