// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QMenu>

#include <functional>

namespace tovek {

/// A menu that writes the keys of its items as the rest of the program writes keys, and obeys them
/// while it is open, which the toolkit's menus do not.
class ItemMenu : public QMenu
{
public:
    using QMenu::QMenu;

    std::function<QString(const QKeySequence &keys)> describeKeys;
    /// It is about to be hidden; its window is still there.
    std::function<void()> onLeaving;

    void setVisible(bool isVisible) override;

    void initStyleOption(QStyleOptionMenuItem *option, const QAction *action) const override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
};

} // namespace tovek
