// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace tovek {

/// What a thread that reads a file is told about whoever writes it, and tells of the picture in
/// there. Any thread.
class FileGrowth
{
public:
    enum class Writer { writing, done, unimportant }; ///< the last: nobody wants to read it

    explicit FileGrowth(Writer writer) : m_writer(writer) { }

    Writer writer() const
    {
        const std::lock_guard lock(m_lock);
        return m_writer;
    }
    void set(Writer writer)
    {
        {
            const std::lock_guard lock(m_lock);
            m_writer = writer;
        }
        m_change.notify_all();
    }
    /// Waits while it is writing, for so long.
    void waitFor(std::chrono::milliseconds time)
    {
        std::unique_lock lock(m_lock);
        m_change.wait_for(lock, time, [this] { return m_writer != Writer::writing; });
    }
    /// Waits until it is not.
    Writer waitForEnd()
    {
        std::unique_lock lock(m_lock);
        m_change.wait(lock, [this] { return m_writer != Writer::writing; });
        return m_writer;
    }

    /// So many rows from the top are in the picture, which is written to further down.
    void setRows(const QImage &picture, int rows)
    {
        const std::lock_guard lock(m_lock);
        m_picture = picture;
        m_rows = rows;
    }
    std::pair<QImage, int> rows() const
    {
        const std::lock_guard lock(m_lock);
        return {m_picture, m_rows};
    }

private:
    mutable std::mutex m_lock;
    std::condition_variable m_change;
    Writer m_writer;
    QImage m_picture;
    int m_rows = 0;
};

} // namespace tovek
