// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/clipboard/SelectionContent.h"

#include <chrono>
#include <functional>
#include <vector>

namespace tovek {

/// Contents on their way into pipes, as much at a time as each reader takes. Knows no event loop:
/// call `write` when one of the descriptors can be written to.
class PipeWriters
{
public:
    PipeWriters() = default;
    ~PipeWriters();
    PipeWriters(const PipeWriters &) = delete;
    PipeWriters &operator=(const PipeWriters &) = delete;

    /// Takes the descriptor over, and writes what it takes at once.
    void add(int descriptor, SelectionBytes bytes);
    void write();
    /// Gives up readers that have taken nothing for so long.
    void drop(std::chrono::steady_clock::duration patience);
    const std::vector<int> &descriptors() const { return m_descriptors; }
    bool isEmpty() const { return m_descriptors.empty(); }

    /// There are other descriptors now.
    std::function<void()> onChanged;

private:
    struct Transfer
    {
        int descriptor;
        SelectionBytes bytes;
        size_t offset = 0;
        std::chrono::steady_clock::time_point lastUse;
    };
    enum class Progress { waiting, ended };
    static Progress advance(Transfer &transfer);
    void list();

    std::vector<Transfer> m_transfers;
    std::vector<int> m_descriptors;
};

} // namespace tovek
