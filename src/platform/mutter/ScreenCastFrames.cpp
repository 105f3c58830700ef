// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/mutter/ScreenCastFrames.h"

#include "foundation/HelperProgram.h"

#include <QFileInfo>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace tovek {

/// What both processes see.
struct ScreenCastFrames::Memory
{
    explicit Memory(size_t bytes)
        : size(bytes)
        , descriptor(memfd_create("tovek-screencast", MFD_CLOEXEC))
    {
        if (descriptor < 0 || ftruncate(descriptor, off_t(size)) != 0)
            return;
        void *mapped = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
        data = mapped == MAP_FAILED ? nullptr : static_cast<uchar *>(mapped);
    }
    ~Memory()
    {
        if (data)
            munmap(data, size);
        if (descriptor >= 0)
            close(descriptor);
    }
    Memory(const Memory &) = delete;
    Memory &operator=(const Memory &) = delete;

    const size_t size;
    const int descriptor;
    uchar *data = nullptr;
};

QString ScreenCastFrames::program()
{
    const QString path = helperProgram(QStringLiteral("tovek-screencast"));
    return QFileInfo(path).isExecutable() ? path : QString();
}

ScreenCastFrames::ScreenCastFrames(const QString &program, std::vector<QSize> sizes)
    : m_sizes(std::move(sizes))
{
    size_t bytes = 0;
    for (const QSize size : m_sizes) {
        m_offsets.push_back(bytes);
        bytes += size_t(size.width()) * size_t(size.height()) * 4;
    }
    m_memory = std::make_shared<Memory>(bytes);
    connect(m_process, &QProcess::readyReadStandardOutput, this, &ScreenCastFrames::readAnswers);
    connect(m_process, &QProcess::finished, this, &ScreenCastFrames::ended);
    // Some of it is noticed before there is anybody to tell.
    const auto failToStart = [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            fail(m_process->errorString());
    };
    connect(m_process, &QProcess::errorOccurred, this, failToStart, Qt::QueuedConnection);
    // Only this child is to have it.
    m_process->setChildProcessModifier(
        [descriptor = m_memory->descriptor] { fcntl(descriptor, F_SETFD, 0); });
    m_process->start(program, {QString::number(m_memory->descriptor)});
}

ScreenCastFrames::~ScreenCastFrames()
{
    m_process->disconnect(this);
    if (m_process->state() == QProcess::NotRunning) {
        delete m_process;
        return;
    }
    // Nothing in it is to be kept, and it may hang. Even killed it takes its time to end, with so
    // much to unmap, for which nobody should wait.
    QObject::connect(m_process, &QProcess::stateChanged, m_process,
                     [process = m_process](QProcess::ProcessState state) {
                         // It may not even be running yet.
                         if (state == QProcess::NotRunning)
                             process->deleteLater();
                     });
    m_process->kill();
}

void ScreenCastFrames::take(size_t index, quint32 node)
{
    if (!m_memory->data)
        return fail(QStringLiteral("there is not enough memory"));
    m_awaited.emplace(node, index);
    m_process->write(QStringLiteral("%1 %2 %3 %4\n")
                         .arg(node)
                         .arg(m_sizes[index].width())
                         .arg(m_sizes[index].height())
                         .arg(m_offsets[index])
                         .toLatin1());
}

void ScreenCastFrames::readAnswers()
{
    while (!m_hasFailed && m_process->canReadLine()) {
        const auto found = m_awaited.find(m_process->readLine().trimmed().toUInt());
        if (found == m_awaited.end())
            continue;
        const size_t index = found->second;
        m_awaited.erase(found);
        const QSize size = m_sizes[index];
        // The picture keeps the memory.
        auto keep = std::make_unique<std::shared_ptr<Memory>>(m_memory);
        const QImage frame(
            m_memory->data + m_offsets[index], size.width(), size.height(),
            qsizetype(size.width()) * 4, QImage::Format_RGB32,
            [](void *kept) { delete static_cast<std::shared_ptr<Memory> *>(kept); },
            keep.release());
        if (onFrame)
            onFrame(index, frame);
    }
}

void ScreenCastFrames::ended()
{
    const QString said = QString::fromLocal8Bit(m_process->readAllStandardError()).trimmed();
    fail(said.isEmpty() ? QStringLiteral("tovek-screencast broke down")
                        : said.section(QLatin1Char('\n'), -1));
}

void ScreenCastFrames::fail(const QString &reason)
{
    if (std::exchange(m_hasFailed, true))
        return;
    if (onFailed)
        onFailed(reason);
}

} // namespace tovek
