// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <vector>

namespace tovek {

/// Sets that are joined pair by pair; the lowest member names its set.
class DisjointSets
{
public:
    std::uint32_t add()
    {
        m_parents.push_back(std::uint32_t(m_parents.size()));
        return m_parents.back();
    }
    std::uint32_t find(std::uint32_t member)
    {
        while (m_parents[member] != member) {
            m_parents[member] = m_parents[m_parents[member]];
            member = m_parents[member];
        }
        return member;
    }
    void join(std::uint32_t a, std::uint32_t b)
    {
        a = find(a);
        b = find(b);
        if (a < b)
            m_parents[b] = a;
        else
            m_parents[a] = b;
    }
    std::size_t size() const { return m_parents.size(); }

private:
    std::vector<std::uint32_t> m_parents;
};

} // namespace tovek
