// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/XConnection.h"

#include <QList>
#include <QPoint>
#include <QString>

#include <optional>

namespace tovek {

/// Presses real keys and moves the real mouse of a test desktop. Every call returns when the
/// server has carried it out; what programs make of it is for the caller to wait for. Places are
/// native pixels, y down.
class Hand
{
public:
    explicit Hand(const QString &displayName);

    void move(QPoint to);
    void press(int button = 1);
    void release(int button = 1);
    void click(QPoint at, int button = 1);
    /// Two clicks as far apart as a toolkit takes them for one double click.
    void doubleClick(QPoint at);
    /// Press, a smooth way of about 15 steps, release.
    void drag(QPoint from, QPoint to);
    /// As `drag`, without the release.
    void dragAndHold(QPoint from, QPoint to);

    /// Keys by the names of their key symbols, joined by "+": "Super_L+Shift_L+c", "Return".
    /// False when the keyboard has no such key.
    [[nodiscard]] bool tap(const QString &chord);
    [[nodiscard]] bool hold(const QString &chord);
    [[nodiscard]] bool letGo(const QString &chord);
    /// Letter by letter, as far as the letters are those of a temporary folder's path.
    [[nodiscard]] bool typePath(const QString &path);
    /// Whether another client holds the keys, the last of the chord being the key itself. Super_L,
    /// Shift_L, Control_L and Alt_L may stand before it.
    bool isTaken(const QString &chord) const;

private:
    std::optional<QList<uint8_t>> keyCodesOf(const QString &chord) const;
    void fake(uint8_t type, uint8_t detail, QPoint at = {});

    XConnection m_connection;
    QPoint m_at;
};

} // namespace tovek
