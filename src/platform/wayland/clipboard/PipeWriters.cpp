// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/clipboard/PipeWriters.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace tovek {

namespace {

/// Writes to a pipe whose reader may be gone, which must not end the process. The signal that
/// says so is taken back instead of being ignored, since children would inherit that.
ssize_t writeQuietly(int descriptor, const uint8_t *data, size_t size)
{
    sigset_t pipeSignal;
    sigset_t before;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipeSignal, &before);
    const ssize_t written = ::write(descriptor, data, size);
    const int error = errno;
    if (written < 0 && error == EPIPE && !sigismember(&before, SIGPIPE)) {
        const timespec atOnce{};
        sigtimedwait(&pipeSignal, nullptr, &atOnce);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return written;
}

} // namespace

PipeWriters::~PipeWriters()
{
    for (const Transfer &transfer : m_transfers)
        close(transfer.descriptor);
}

void PipeWriters::add(int descriptor, SelectionBytes bytes)
{
    fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) | O_NONBLOCK);
    Transfer transfer{descriptor, std::move(bytes), 0, std::chrono::steady_clock::now()};
    if (advance(transfer) == Progress::ended) {
        close(descriptor);
        return;
    }
    m_transfers.push_back(std::move(transfer));
    list();
}

void PipeWriters::write()
{
    const auto ended = [](Transfer &transfer) {
        if (advance(transfer) == Progress::waiting)
            return false;
        close(transfer.descriptor);
        return true;
    };
    if (std::erase_if(m_transfers, ended) > 0)
        list();
}

void PipeWriters::drop(std::chrono::steady_clock::duration patience)
{
    const auto now = std::chrono::steady_clock::now();
    const auto stalled = [&](const Transfer &transfer) {
        if (now - transfer.lastUse < patience)
            return false;
        close(transfer.descriptor);
        return true;
    };
    if (std::erase_if(m_transfers, stalled) > 0)
        list();
}

PipeWriters::Progress PipeWriters::advance(Transfer &transfer)
{
    while (transfer.offset < transfer.bytes.size) {
        const ssize_t written =
            writeQuietly(transfer.descriptor, transfer.bytes.data + transfer.offset,
                         transfer.bytes.size - transfer.offset);
        if (written > 0) {
            transfer.offset += size_t(written);
            transfer.lastUse = std::chrono::steady_clock::now();
        } else if (errno == EAGAIN) {
            return Progress::waiting;
        } else if (errno != EINTR) {
            break; // nobody reads any more
        }
    }
    return Progress::ended;
}

void PipeWriters::list()
{
    m_descriptors.clear();
    for (const Transfer &transfer : m_transfers)
        m_descriptors.push_back(transfer.descriptor);
    if (onChanged)
        onChanged();
}

} // namespace tovek
