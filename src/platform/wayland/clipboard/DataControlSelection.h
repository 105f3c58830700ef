// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/clipboard/Selection.h"
#include "platform/wayland/clipboard/PipeWriters.h"

#include <memory>
#include <string>

struct ext_data_control_manager_v1;
struct wl_display;
struct wl_seat;
struct zwlr_data_control_manager_v1;

namespace tovek {

/// The clipboard through one of the protocols for clipboard managers, which ask for no focus and
/// no window. Knows no event loop: the display's events are its owner's to dispatch, and so are
/// the `writers` that can go on.
class DataControlSelection : public Selection
{
public:
    /// What there is on a connection. The managers and the seat are taken over.
    struct Globals
    {
        wl_display *display = nullptr;
        wl_seat *seat = nullptr;
        ext_data_control_manager_v1 *ext = nullptr;
        zwlr_data_control_manager_v1 *wlr = nullptr;
        std::shared_ptr<const void> connection; ///< what the display lives in, if anything
    };
    /// Through the first of the two protocols that is there; null without one.
    static std::unique_ptr<DataControlSelection> create(const Globals &globals);
    /// The versions that are spoken here.
    static constexpr uint32_t extVersion = 1;
    static constexpr uint32_t wlrVersion = 2;

    ~DataControlSelection() override;

    void provide(SelectionContent content) override;
    bool isTransferring() const override { return !m_writers.isEmpty() || !m_waiting.empty(); }
    PipeWriters &writers() { return m_writers; }

protected:
    void setContent(SelectionContent content, Readiness readiness);
    /// A reader asks for this type. Takes the descriptor over.
    void send(const std::string &type, int descriptor);

private:
    struct Request
    {
        std::string type;
        int descriptor;
    };
    void answerWaiting();

    SelectionContent m_content;
    bool m_isReady = true;
    std::vector<Request> m_waiting;
    PipeWriters m_writers;
};

} // namespace tovek
