// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/LineEngine.h"

#include <functional>
#include <memory>
#include <mutex>

namespace tovek {

/// Engines that are not in use, kept warm. Any thread.
class EnginePool
{
public:
    using Create = std::function<std::unique_ptr<LineEngine>()>;

    explicit EnginePool(Create create) : m_create(std::move(create)) { }
    /// A warm engine, or a new one; null when none can be made.
    [[nodiscard]] std::unique_ptr<LineEngine> take();
    void giveBack(std::unique_ptr<LineEngine> engine);
    void clear();
    int count() const;

private:
    Create m_create;
    mutable std::mutex m_mutex;
    std::vector<std::unique_ptr<LineEngine>> m_free;
};

} // namespace tovek
