// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/HotKeys.h"

#include <QObject>

#include <map>

class QKeyEvent;

namespace tovek {

/// Offers the keys that the toolkit brings to windows of this program, one of its open menus for
/// example, before they get there. For window systems on which a program sees no other keys.
class RawKeyFilter : public QObject
{
public:
    /// True swallows the key.
    using Callback = std::function<bool(KeyCombo combo, bool isDown)>;
    explicit RawKeyFilter(Callback callback);

    /// Needs the application. May be called from within the callback.
    void setWatching(bool isOn);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Press
    {
        KeyCombo combo;
        bool isSwallowed = false;
    };

    bool press(const QKeyEvent &event);
    bool release(const QKeyEvent &event);

    Callback m_callback;
    std::map<quint32, Press> m_down; ///< by scan code
    bool m_isWatching = false;
};

} // namespace tovek
