// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/XConnection.h"

#include <QByteArray>
#include <QStringList>

#include <chrono>
#include <optional>

namespace tovek {

/// Reads the clipboard as another program does that somebody pastes into.
class ClipboardReader
{
public:
    explicit ClipboardReader(const QString &displayName);
    ~ClipboardReader();
    ClipboardReader(const ClipboardReader &) = delete;
    ClipboardReader &operator=(const ClipboardReader &) = delete;

    bool hasOwner() const;
    /// Takes the clipboard from whoever has it; it holds nothing then.
    void clear();
    /// The types offered, sorted, without those that belong to the protocol itself.
    QStringList types(std::chrono::milliseconds deadline = std::chrono::seconds(10));
    /// The content as the type, in one piece or in many. Absent when it is not offered, or when
    /// the owner had not delivered all of it by the deadline.
    std::optional<QByteArray> read(const QString &type,
                                   std::chrono::milliseconds deadline = std::chrono::seconds(10));
    /// Whether the last content came in pieces.
    bool cameInPieces() const { return m_cameInPieces; }

private:
    std::optional<QByteArray> readPieces(std::chrono::milliseconds deadline);
    QByteArray take(xcb_atom_t *type);

    XConnection m_connection;
    xcb_window_t m_window = 0;
    xcb_atom_t m_clipboard = 0;
    xcb_atom_t m_property = 0;
    bool m_cameInPieces = false;
};

} // namespace tovek
