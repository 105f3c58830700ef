// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QStringList>

#include <functional>
#include <future>
#include <optional>
#include <xcb/xcb.h>

namespace tovek {

/// Another program that reads the clipboard, spoken in the raw protocol. Blocks: use it on a
/// thread of its own while the clipboard is served on the main one.
class SelectionReader
{
public:
    explicit SelectionReader(const QByteArray &display, const char *selection = "CLIPBOARD");
    ~SelectionReader();
    SelectionReader(const SelectionReader &) = delete;
    SelectionReader &operator=(const SelectionReader &) = delete;

    struct Value
    {
        QByteArray bytes;
        QByteArray type;
        int pieces = 0; ///< 0 when it came in one property
    };
    /// Absent when the owner refuses or there is none. `onPiece` may return false to vanish.
    std::optional<Value> read(const char *target, const std::function<bool(int)> &onPiece = {},
                              xcb_timestamp_t time = XCB_CURRENT_TIME);
    /// Names of the targets, sorted.
    QStringList targets();
    /// Several targets in one request; an absent entry is one that was refused.
    std::vector<std::optional<QByteArray>> readMultiple(const std::vector<const char *> &targets);
    void request(const char *target, xcb_timestamp_t time = XCB_CURRENT_TIME);
    xcb_window_t owner();
    /// Takes the selection away from its owner, with nothing to offer.
    void take();

private:
    xcb_atom_t atom(const char *name);
    QByteArray nameOf(xcb_atom_t atom);
    Value property(xcb_atom_t property, bool isDeleted);
    std::optional<xcb_atom_t> waitForNotify();
    bool waitForNewValue(xcb_atom_t property);

    xcb_connection_t *m_connection;
    xcb_window_t m_window;
    xcb_atom_t m_selection;
};

/// The result of a call that blocks, made on another thread while the main loop runs.
template <typename Call>
auto whileServing(const Call &call)
{
    auto result = std::async(std::launch::async, call);
    while (result.wait_for(std::chrono::milliseconds(0)) != std::future_status::ready)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return result.get();
}

} // namespace tovek
