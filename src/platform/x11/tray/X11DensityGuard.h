// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <functional>
#include <optional>
#include <xcb/xcb.h>

namespace tovek {

/// The dots per inch that the desktop's settings daemon publishes, as the toolkit obeys them;
/// absent where it publishes none. Asked over a connection made for this call. Needs no
/// application.
std::optional<double> publishedDotsPerInch();

/// Keeps from the toolkit what the settings daemon publishes while that names dots per inch that
/// are impossible: it would make all windows anew at that scale, in gigabytes. Main thread only.
class X11DensityGuard : public QObject, private QAbstractNativeEventFilter
{
public:
    /// `isPossible` is asked once for each new value.
    X11DensityGuard(std::function<bool(double dotsPerInch)> isPossible, QObject *parent);
    ~X11DensityGuard() override;

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;

    std::function<bool(double)> m_isPossible;
    xcb_atom_t m_settings;
    std::optional<double> m_last;
    bool m_isLastPossible = true;
};

} // namespace tovek
