// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QMenu>

#include <functional>

namespace tovek {

/// A menu that writes the keys of its items as the rest of the program writes keys.
class ItemMenu : public QMenu
{
public:
    using QMenu::QMenu;

    std::function<QString(const QKeySequence &keys)> describeKeys;

    void initStyleOption(QStyleOptionMenuItem *option, const QAction *action) const override;
};

} // namespace tovek
