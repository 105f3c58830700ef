// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/clipboard/Selection.h"

#include <chrono>
#include <functional>
#include <vector>
#include <xcb/xcb.h>

namespace tovek {

/// Contents that are too large for one request, on their way to readers that take them piece by
/// piece (the ICCCM's INCR): the next when the reader has deleted the last. Never waits.
class SelectionTransfers
{
public:
    struct Content
    {
        xcb_window_t requestor;
        xcb_atom_t property;
        xcb_atom_t type;
        SelectionBytes bytes;
    };

    SelectionTransfers() = default;
    /// `increment`: the atom INCR. The connection must outlive this.
    SelectionTransfers(xcb_connection_t *connection, xcb_atom_t increment);

    /// Bytes; what is larger cannot be put at once.
    size_t largestPiece() const { return m_largestPiece; }
    bool isEmpty() const { return m_transfers.empty(); }

    /// A reader that asks again has given up what it got so far.
    void begin(Content content);
    void propertyDeleted(xcb_window_t requestor, xcb_atom_t property);
    /// The reader's window is gone.
    void endOf(xcb_window_t requestor);
    /// Those whose reader has taken nothing for a minute.
    void endForgotten();

private:
    struct Transfer
    {
        Content content;
        size_t offset = 0; ///< of the next piece
        std::chrono::steady_clock::time_point lastUse;

        bool isOf(xcb_window_t requestor, xcb_atom_t property) const
        {
            return content.requestor == requestor && content.property == property;
        }
    };

    void end(const std::function<bool(const Transfer &)> &matches);

    xcb_connection_t *m_connection = nullptr;
    xcb_atom_t m_increment = XCB_ATOM_NONE;
    size_t m_largestPiece = 0;
    std::vector<Transfer> m_transfers;
};

} // namespace tovek
