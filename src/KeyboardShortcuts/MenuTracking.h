// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QSet>

#include <functional>

namespace KeyboardShortcuts {

/// Tells when the first popup of this program opens and when the last one closes: menus, and the
/// lists of combo boxes, which hold the keyboard in the same way. Main thread only; needs the
/// application.
class MenuTracking : public QObject
{
public:
    MenuTracking();

    bool isOpen() const { return !m_open.isEmpty(); }

    std::function<void(bool isOpen)> onChanged;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setOpen(QObject *popup, bool isOpen);

    QSet<QObject *> m_open;
};

} // namespace KeyboardShortcuts
