// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/WaylandConnection.h"
#include "platform/wayland/clipboard/DataControlSelection.h"

#include <QTimer>

namespace tovek {

/// The clipboard of a compositor that lets only the program with the keyboard copy: for a moment a
/// window that nobody sees has it. Main thread only.
class FocusedSelection : public DataControlSelection
{
public:
    /// Null where the compositor does not offer what it takes.
    static std::unique_ptr<FocusedSelection>
    create(const std::shared_ptr<WaylandConnection> &connection);
    ~FocusedSelection() override;

    /// `onRefused` tells when it could not be had after all.
    bool take(SelectionContent content, Readiness readiness) override;
    void clear() override;
    bool isOwner() const override { return m_source != nullptr; }

    /// How long the keyboard may take to come.
    void setLimit(std::chrono::milliseconds limit) { m_limit.setInterval(limit); }

private:
    struct Globals;
    class Window;
    friend struct FocusedEvents;
    explicit FocusedSelection(std::unique_ptr<Globals> globals);
    void makeSource();
    void dropSource();
    void ask();
    void openWindow();
    void claim(uint32_t serial);
    void claimed();
    void overtaken();
    void giveUp();

    std::unique_ptr<Globals> m_globals;
    std::unique_ptr<Window> m_window; ///< while the keyboard is asked for
    WaylandPtr<wl_callback, wl_callback_destroy> m_answer; ///< while a claim is on its way
    std::vector<std::string> m_types; ///< none: the clipboard is cleared
    wl_data_source *m_source = nullptr;
    bool m_hasKeyboard = false;
    QTimer m_limit;
};

} // namespace tovek
