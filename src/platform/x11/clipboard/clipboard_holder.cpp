// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Holds the clipboard after the program that filled it has ended. Started by the program itself
// only; see ClipboardHolder.h.

#include "platform/x11/clipboard/ClipboardHolderProtocol.h"
#include "platform/x11/clipboard/SelectionServer.h"

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tovek;

namespace {

constexpr int stalledCheckMs = 10000;

/// The file's pages themselves, so that holding the bytes costs them once.
std::optional<SelectionBytes> mapped(int descriptor)
{
    struct stat status
    {
    };
    if (fstat(descriptor, &status) != 0 || status.st_size <= 0)
        return std::nullopt;
    const auto size = size_t(status.st_size);
    void *const memory = mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor, 0);
    if (memory == MAP_FAILED)
        return std::nullopt;
    return SelectionBytes{static_cast<const uint8_t *>(memory), size,
                          std::shared_ptr<const void>(memory, [size](const void *address) {
                              munmap(const_cast<void *>(address), size);
                          })};
}

/// Leaves the terminal, the folder and every open file of the program behind.
void becomeIndependent(int keptDescriptor)
{
    setsid();
    if (chdir("/") != 0)
        return;
    const int nothing = open("/dev/null", O_RDWR);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(nothing, standard);
    for (int descriptor = STDERR_FILENO + 1; descriptor < sysconf(_SC_OPEN_MAX); ++descriptor) {
        if (descriptor > 1024)
            break;
        if (descriptor != keptDescriptor)
            close(descriptor);
    }
}

void serve(SelectionServer &server)
{
    while (server.isConnected() && (server.isOwner() || server.isTransferring())) {
        pollfd connection{server.fileDescriptor(), POLLIN, 0};
        poll(&connection, 1, server.isTransferring() ? stalledCheckMs : -1);
        server.processEvents();
    }
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4)
        return HolderProtocol::failed;
    const auto bytes = mapped(HolderProtocol::bytesDescriptor);
    const auto server = SelectionServer::create(argv[1]);
    if (!bytes || !server)
        return HolderProtocol::failed;
    const bool isPng = std::strcmp(argv[3], HolderProtocol::pngKind) == 0;
    const auto owner = xcb_window_t(std::strtoul(argv[2], nullptr, 10));
    if (!server->take(isPng ? pngContent(*bytes) : textContent(*bytes),
                      SelectionServer::Readiness::ready, owner))
        return HolderProtocol::notOwned;
    switch (fork()) {
    case -1:
        return HolderProtocol::failed;
    case 0:
        becomeIndependent(server->fileDescriptor());
        serve(*server);
        return 0;
    default:
        // Not through main's return: the connection belongs to the other process now.
        _exit(HolderProtocol::holding);
    }
}
