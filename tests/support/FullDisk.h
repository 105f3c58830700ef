// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <csignal>
#include <sys/resource.h>

namespace tovek {

/// While it lives, this process's writes to files stop after so many bytes of a file, as on a disk
/// that is full. The reason given is another.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes = 10) : m_previous(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_limit);
        const rlimit small{bytes, m_limit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_limit);
        std::signal(SIGXFSZ, m_previous);
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    rlimit m_limit{};
    void (*m_previous)(int);
};

} // namespace tovek
