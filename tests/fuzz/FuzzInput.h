// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace tovek {

/// What must hold whatever the input is.
inline void require(bool condition, int line = __builtin_LINE())
{
    if (condition)
        return;
    std::fprintf(stderr, "Not so: line %d\n", line);
    std::abort();
}

/// Reads an input piece by piece; zeros behind its end.
class FuzzInput
{
public:
    FuzzInput(const uint8_t *data, size_t size) : m_at(data), m_left(size) { }

    bool isAtEnd() const { return m_left == 0; }
    size_t left() const { return m_left; }
    template <typename T>
    T take()
    {
        T value{};
        const size_t size = m_left < sizeof(T) ? m_left : sizeof(T);
        std::memcpy(&value, m_at, size);
        m_at += size;
        m_left -= size;
        return value;
    }

private:
    const uint8_t *m_at;
    size_t m_left;
};

} // namespace tovek
