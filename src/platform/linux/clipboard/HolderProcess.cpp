// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/clipboard/HolderProcess.h"

#include "platform/linux/clipboard/ClipboardHolderProtocol.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tovek {

namespace {

/// Leaves the terminal, the folder and every open file of the program behind.
void becomeIndependent(const std::vector<int> &keptDescriptors)
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
        if (std::find(keptDescriptors.begin(), keptDescriptors.end(), descriptor)
            == keptDescriptors.end())
            close(descriptor);
    }
}

} // namespace

std::optional<SelectionBytes> heldBytes()
{
    constexpr int descriptor = HolderProtocol::bytesDescriptor;
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

SelectionContent heldContent(const char *kind, const SelectionBytes &bytes)
{
    return std::strcmp(kind, HolderProtocol::pngKind) == 0 ? pngContent(bytes) : textContent(bytes);
}

int stayBehind(const std::vector<int> &keptDescriptors, const std::function<void()> &serve)
{
    switch (fork()) {
    case -1:
        return HolderProtocol::failed;
    case 0:
        becomeIndependent(keptDescriptors);
        serve();
        return 0;
    default:
        // Not through main's return: the connection belongs to the other process now.
        _exit(HolderProtocol::holding);
    }
}

} // namespace tovek
