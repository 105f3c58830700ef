// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/clipboard/ClipboardHolder.h"

#include "foundation/FileDescriptor.h"
#include "foundation/Log.h"
#include "platform/linux/clipboard/ClipboardHolderProtocol.h"

#include <QFile>

#include <chrono>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tovek {

namespace {

constexpr std::chrono::seconds startLimit(3);
constexpr std::chrono::milliseconds pollInterval(1);

bool writeAll(int descriptor, const SelectionBytes &bytes)
{
    for (size_t done = 0; done < bytes.size;) {
        const ssize_t written = write(descriptor, bytes.data + done, bytes.size - done);
        if (written < 0 && errno != EINTR)
            return false;
        done += size_t(std::max<ssize_t>(0, written));
    }
    return true;
}

/// The process, or an error number below zero.
pid_t spawn(const QByteArray &program, const QList<QByteArray> &arguments, HeldKind kind, int bytes)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    // Copying the descriptor also makes it survive the start of the program.
    posix_spawn_file_actions_adddup2(&actions, bytes, HolderProtocol::bytesDescriptor);
    const char *const kindName =
        kind == HeldKind::png ? HolderProtocol::pngKind : HolderProtocol::textKind;
    std::vector<const char *> words{program.constData()};
    for (const QByteArray &argument : arguments)
        words.push_back(argument.constData());
    words.push_back(kindName);
    words.push_back(nullptr);
    pid_t process = -1;
    const int error = posix_spawn(&process, program.constData(), &actions, nullptr,
                                  const_cast<char *const *>(words.data()), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error ? -error : process;
}

/// The exit status of the process that the holder leaves behind when it is ready; absent when it
/// takes too long, and is then ended.
std::optional<int> waitFor(pid_t process, const std::function<void()> &meanwhile)
{
    const auto limit = std::chrono::steady_clock::now() + startLimit;
    int status = 0;
    while (waitpid(process, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > limit) {
            kill(process, SIGKILL);
            waitpid(process, &status, 0);
            return std::nullopt;
        }
        meanwhile();
        std::this_thread::sleep_for(pollInterval);
    }
    return WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt;
}

bool failed(const QString &reason)
{
    logLine(QStringLiteral("Failed to keep the clipboard after quitting: ") + reason);
    return false;
}

} // namespace

bool startClipboardHolder(const QString &program, const QList<QByteArray> &arguments, HeldKind kind,
                          const SelectionBytes &bytes, const std::function<void()> &meanwhile)
{
    const FileDescriptor memory(memfd_create("clipboard", MFD_CLOEXEC));
    if (memory.get() < 0 || !writeAll(memory.get(), bytes))
        return failed(qt_error_string(errno));
    const pid_t process = spawn(QFile::encodeName(program), arguments, kind, memory.get());
    if (process < 0)
        return failed(qt_error_string(-process));
    const std::optional<int> status = waitFor(process, meanwhile);
    if (status == HolderProtocol::notOwned)
        return false;
    return status == HolderProtocol::holding
        || failed(status ? QStringLiteral("the holder cannot work") // no display, no memory
                         : QStringLiteral("the holder did not answer"));
}

} // namespace tovek
