// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/XConnection.h"

#include <QImage>
#include <QPoint>

#include <optional>

namespace tovek::bench {

/// Key codes of a keyboard with the evdev rules.
enum Key : uint8_t {
    escapeKey = 9,
    returnKey = 36,
    controlKey = 37,
    sKey = 39,
    shiftKey = 50,
    cKey = 54,
    f8 = 74,
    superKey = 133,
};

/// A picture all over a desktop, the hand that uses keyboard and mouse, and the eye that sees when
/// the picture is covered.
///
/// The picture's last pixel is a witness. It changes its colour without end, and each time the
/// pixel of the screen is read at once, in the same batch of requests. As long as nothing covers
/// the picture, the screen shows the new colour. As soon as something does, it shows another. That
/// is the pixel which a window that is painted from the top paints last.
class Scene
{
public:
    Scene(const QString &displayName, const QImage &picture);

    void key(Key key, bool isDown);
    void move(QPoint to);
    void button(bool isDown);

    bool isCovered();
    [[nodiscard]] bool waitUntilCovered();
    [[nodiscard]] bool waitUntilUncovered();
    /// Lets the key go; milliseconds until the picture was covered. Absent when it was not within
    /// five seconds.
    std::optional<double> releaseUntilCovered(Key key);
    /// What the screen shows at the witness.
    QRgb cornerOfScreen();
    /// Whether a client holds the key with Super and Shift.
    bool isTaken(Key key);

private:
    void show(const QImage &picture);
    void fake(uint8_t type, uint8_t detail, QPoint at = {});
    [[nodiscard]] bool waitUntil(bool isCovered);

    XConnection m_connection;
    QPoint m_corner;
    xcb_window_t m_window = 0;
    xcb_gcontext_t m_gc = 0;
    uint32_t m_color = 0;
};

} // namespace tovek::bench
