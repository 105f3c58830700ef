// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/clipboard/SelectionTransfers.h"

#include <algorithm>
#include <limits>

namespace tovek {

namespace {

/// A reader that takes nothing for so long has hung or forgotten.
constexpr std::chrono::seconds readerPatience(60);
constexpr size_t transferHeaderBytes = 64;
constexpr size_t incrementBytes = 1024 * 1024;

} // namespace

SelectionTransfers::SelectionTransfers(xcb_connection_t *connection, xcb_atom_t increment)
    : m_connection(connection)
    , m_increment(increment)
    , m_largestPiece(4 * size_t(xcb_get_maximum_request_length(connection)) - transferHeaderBytes)
{
}

void SelectionTransfers::begin(Content content)
{
    std::erase_if(m_transfers, [&](const Transfer &other) {
        return other.isOf(content.requestor, content.property);
    });
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection, content.requestor, XCB_CW_EVENT_MASK, &events);
    const auto atLeast =
        uint32_t(std::min<size_t>(content.bytes.size, std::numeric_limits<uint32_t>::max()));
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, content.requestor, content.property,
                        m_increment, 32, 1, &atLeast);
    m_transfers.push_back({std::move(content), 0, std::chrono::steady_clock::now()});
}

void SelectionTransfers::propertyDeleted(xcb_window_t requestor, xcb_atom_t property)
{
    const auto isMeant = [=](const Transfer &one) { return one.isOf(requestor, property); };
    const auto found = std::find_if(m_transfers.begin(), m_transfers.end(), isMeant);
    if (found == m_transfers.end())
        return;
    // The empty piece at the end tells the reader that it has everything.
    const SelectionBytes &bytes = found->content.bytes;
    const size_t size = std::min({bytes.size - found->offset, m_largestPiece, incrementBytes});
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, requestor, property,
                        found->content.type, 8, uint32_t(size), bytes.data + found->offset);
    found->offset += size;
    found->lastUse = std::chrono::steady_clock::now();
    if (size == 0)
        end(isMeant);
}

void SelectionTransfers::endOf(xcb_window_t requestor)
{
    end([=](const Transfer &one) { return one.content.requestor == requestor; });
}

void SelectionTransfers::endForgotten()
{
    const auto now = std::chrono::steady_clock::now();
    end([now](const Transfer &one) { return now - one.lastUse > readerPatience; });
}

void SelectionTransfers::end(const std::function<bool(const Transfer &)> &matches)
{
    std::vector<xcb_window_t> requestors;
    for (const Transfer &transfer : m_transfers) {
        if (matches(transfer))
            requestors.push_back(transfer.content.requestor);
    }
    if (requestors.empty())
        return;
    std::erase_if(m_transfers, matches);
    for (const xcb_window_t requestor : requestors) {
        const bool isUsed =
            std::any_of(m_transfers.begin(), m_transfers.end(), [&](const Transfer &transfer) {
                return transfer.content.requestor == requestor;
            });
        const uint32_t events = XCB_EVENT_MASK_NO_EVENT;
        if (!isUsed)
            xcb_change_window_attributes(m_connection, requestor, XCB_CW_EVENT_MASK, &events);
    }
    xcb_flush(m_connection);
}

} // namespace tovek
