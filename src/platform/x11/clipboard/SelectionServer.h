// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/X11Reply.h"
#include "platform/x11/clipboard/SelectionContent.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <xcb/xcb.h>

namespace tovek {

/// Owns the CLIPBOARD selection on a connection of its own and answers its readers, large contents
/// piece by piece to any number of them at once. Knows no event loop: call `processEvents` when
/// the file descriptor is readable. No call waits for a reader; some wait for the display server.
class SelectionServer
{
public:
    /// Null when there is no display. An empty name is the display of the environment.
    static std::unique_ptr<SelectionServer> create(const std::string &displayName);
    ~SelectionServer();
    SelectionServer(const SelectionServer &) = delete;
    SelectionServer &operator=(const SelectionServer &) = delete;

    /// Takes the selection with content that is ready, or of which only the names are known yet:
    /// requests then wait for `provide`. With `onlyFrom`, only when that window owns it now.
    enum class Readiness { ready, awaited };
    bool take(SelectionContent content, Readiness readiness,
              xcb_window_t onlyFrom = XCB_WINDOW_NONE);
    void provide(SelectionContent content);
    /// Leaves the selection without an owner, whoever that is; requests that wait are refused.
    void clear();

    bool isOwner() const { return m_isOwner; }
    bool isTransferring() const { return !m_transfers.empty(); }
    /// The owner of the selection in the eyes of the display server.
    xcb_window_t window() const { return m_window; }
    int fileDescriptor() const;
    bool isConnected() const;
    void processEvents();

    /// Another program took the selection.
    std::function<void()> onLost;

private:
    /// A content on its way to one reader that takes the next piece when it has deleted the last.
    struct Transfer
    {
        xcb_window_t requestor;
        xcb_atom_t property;
        xcb_atom_t type;
        SelectionBytes bytes;
        size_t offset = 0;
        std::chrono::steady_clock::time_point lastUse;
    };

    explicit SelectionServer(xcb_connection_t *connection, int screen);

    xcb_atom_t atom(const std::string &name);
    xcb_timestamp_t currentTime();
    xcb_window_t currentOwner();
    void handle(const xcb_generic_event_t *event);
    void selectionRequested(const xcb_selection_request_event_t &request);
    void answer(const xcb_selection_request_event_t &request, bool isServed);
    bool serve(const xcb_selection_request_event_t &request);
    bool serveMultiple(const xcb_selection_request_event_t &request);
    bool deliver(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    void beginTransfer(Transfer transfer);
    void propertyDeleted(xcb_window_t requestor, xcb_atom_t property);
    void endTransfers(const std::function<bool(const Transfer &)> &matches);
    void answerWaiting();

    xcb_connection_t *m_connection;
    xcb_window_t m_root;
    xcb_window_t m_window;
    std::map<std::string, xcb_atom_t> m_atoms;
    size_t m_largestPiece;
    SelectionContent m_content;
    xcb_timestamp_t m_ownedSince = XCB_CURRENT_TIME;
    bool m_isOwner = false;
    bool m_isReady = true;
    std::vector<xcb_selection_request_event_t> m_waiting;
    std::vector<Transfer> m_transfers;
    std::vector<X11Reply<xcb_generic_event_t>> m_backlog;
};

} // namespace tovek
