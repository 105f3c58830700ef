// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Holds the clipboard after the program that filled it has ended. Started by the program itself
// only; see ClipboardHolder.h.

#include "platform/linux/clipboard/ClipboardHolderProtocol.h"
#include "platform/linux/clipboard/HolderProcess.h"
#include "platform/x11/clipboard/SelectionServer.h"

#include <cstdlib>
#include <poll.h>

using namespace tovek;

namespace {

constexpr int stalledCheckMs = 10000;

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
    const auto bytes = heldBytes();
    const auto server = SelectionServer::create(argv[1]);
    if (!bytes || !server)
        return HolderProtocol::failed;
    const auto owner = xcb_window_t(std::strtoul(argv[2], nullptr, 10));
    if (!server->takeFrom(owner, heldContent(argv[3], *bytes), Selection::Readiness::ready))
        return HolderProtocol::notOwned;
    return stayBehind({server->fileDescriptor()}, [&] { serve(*server); });
}
