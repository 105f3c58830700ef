// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace tovek {

/// What a person is told who wants to capture where that cannot be.
struct CaptureAdvice
{
    QString title;
    QString explanation;
    QStringList steps; ///< in which it can be had; may be empty
    bool hasSettings = false; ///< there is a page where access is granted
    QString button = QStringLiteral("Open System Settings"); ///< what leads there
};

/// Whether the desktop lets the program see the screen. Main thread only.
class CapturePermission
{
public:
    virtual ~CapturePermission() = default;
    /// Never asks the user.
    virtual bool hasAccess() const = 0;
    /// Tells the desktop that the program wants access; it may ask the user now.
    virtual void requestAccess() = 0;
    /// Opens the page of the desktop's settings where access is granted. Nothing where there is
    /// none.
    virtual void openSettings() = 0;
    /// What stands in the way; absent where it is nothing but the permission, which the user can
    /// grant in the settings.
    virtual std::optional<CaptureAdvice> advice() const { return std::nullopt; }
    /// True from `requestAccess` to `onAnswered` where the desktop asks the user at once. The
    /// window that led there stays: some desktops ask only for the program that has the focus.
    virtual bool isAsking() const { return false; }

    std::function<void()> onAnswered;
};

} // namespace tovek
