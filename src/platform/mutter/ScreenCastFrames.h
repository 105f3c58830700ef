// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>
#include <QProcess>

#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace tovek {

/// The first frame of each of some PipeWire streams, taken by a process of its own (see
/// screencast_main.cpp), which ends with this object. Main thread only.
class ScreenCastFrames : public QObject
{
public:
    /// tovek-screencast beside the program, or in its libexec folder. Empty in builds without it.
    static QString program();

    /// Starts the process, which connects meanwhile. The frames have these sizes.
    ScreenCastFrames(const QString &program, std::vector<QSize> sizes);
    ~ScreenCastFrames() override;

    /// The frame at `index` is that of a stream.
    void take(size_t index, quint32 node);

    /// Format_RGB32; called once for each.
    std::function<void(size_t index, const QImage &frame)> onFrame;
    /// Called once at most, with the reason; nothing is called after that.
    std::function<void(const QString &reason)> onFailed;

private:
    struct Memory;
    void readAnswers();
    void ended();
    void fail(const QString &reason);

    const std::vector<QSize> m_sizes;
    std::vector<size_t> m_offsets;
    std::shared_ptr<Memory> m_memory;
    std::map<quint32, size_t> m_awaited; ///< node to index
    QProcess *const m_process = new QProcess; ///< may outlive this object, to be waited for
    bool m_hasFailed = false;
};

} // namespace tovek
