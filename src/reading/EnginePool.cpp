// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/EnginePool.h"

namespace tovek {

std::unique_ptr<LineEngine> EnginePool::take()
{
    {
        const std::lock_guard lock(m_mutex);
        if (!m_free.empty()) {
            std::unique_ptr<LineEngine> engine = std::move(m_free.back());
            m_free.pop_back();
            return engine;
        }
    }
    return m_create();
}

void EnginePool::giveBack(std::unique_ptr<LineEngine> engine)
{
    const std::lock_guard lock(m_mutex);
    m_free.push_back(std::move(engine));
}

void EnginePool::clear()
{
    const std::lock_guard lock(m_mutex);
    m_free.clear();
}

int EnginePool::count() const
{
    const std::lock_guard lock(m_mutex);
    return int(m_free.size());
}

} // namespace tovek
