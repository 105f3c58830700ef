// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/clipboard/Selection.h"
#include "platform/x11/X11Reply.h"
#include "platform/x11/clipboard/SelectionTransfers.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <xcb/xcb.h>

namespace tovek {

/// Owns the CLIPBOARD selection on a connection of its own and answers its readers, large contents
/// piece by piece to any number of them at once. Knows no event loop: call `processEvents` when
/// the file descriptor is readable. No call waits for a reader; some wait for the display server.
class SelectionServer : public Selection
{
public:
    /// Null when there is no display. An empty name is the display of the environment.
    static std::unique_ptr<SelectionServer> create(const std::string &displayName);
    ~SelectionServer() override;
    SelectionServer(const SelectionServer &) = delete;
    SelectionServer &operator=(const SelectionServer &) = delete;

    bool take(SelectionContent content, Readiness readiness) override
    {
        return takeFrom(XCB_WINDOW_NONE, std::move(content), readiness);
    }
    /// The same, but only when that window owns the selection now.
    bool takeFrom(xcb_window_t owner, SelectionContent content, Readiness readiness);
    void provide(SelectionContent content) override;
    void clear() override;

    bool isOwner() const override { return m_isOwner; }
    bool isTransferring() const override { return !m_transfers.isEmpty(); }
    /// The owner of the selection in the eyes of the display server.
    xcb_window_t window() const { return m_window; }
    int fileDescriptor() const;
    bool isConnected() const;
    /// Another connection in the place of one that was lost, of which nothing is left. `take` does
    /// that by itself.
    bool reconnect();
    bool hasNoOwner() { return currentOwner() == XCB_WINDOW_NONE; }
    void processEvents();

    /// The file descriptor is another one.
    std::function<void()> onReconnected;

private:
    SelectionServer(std::string displayName, xcb_connection_t *connection, int screen);
    void setUp(int screen);

    xcb_atom_t atom(const std::string &name);
    xcb_timestamp_t currentTime();
    xcb_window_t currentOwner();
    void handle(const xcb_generic_event_t *event);
    void selectionRequested(const xcb_selection_request_event_t &request);
    void answer(const xcb_selection_request_event_t &request, bool isServed);
    bool serve(const xcb_selection_request_event_t &request);
    bool serveMultiple(const xcb_selection_request_event_t &request);
    bool deliver(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    void answerWaiting();

    std::string m_displayName;
    xcb_connection_t *m_connection;
    xcb_window_t m_root = XCB_WINDOW_NONE;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    std::map<std::string, xcb_atom_t> m_atoms;
    SelectionContent m_content;
    xcb_timestamp_t m_ownedSince = XCB_CURRENT_TIME;
    bool m_isOwner = false;
    bool m_isReady = true;
    std::vector<xcb_selection_request_event_t> m_waiting;
    SelectionTransfers m_transfers;
    std::vector<X11Reply<xcb_generic_event_t>> m_backlog;
};

} // namespace tovek
