// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/CapturePermission.h"

#include <QStringList>

namespace tovek {

/// Access as the test grants it.
class FakeCapturePermission : public CapturePermission
{
public:
    bool hasAccess() const override { return isGranted; }
    void requestAccess() override
    {
        calls << QStringLiteral("request");
        isBeingAsked = asksAtOnce;
    }
    bool isAsking() const override { return isBeingAsked; }
    /// Of what was asked at once.
    void answer(bool isYes)
    {
        isGranted = isYes;
        isBeingAsked = false;
        onAnswered();
    }
    void openSettings() override { calls << QStringLiteral("settings"); }

    std::optional<CaptureAdvice> advice() const override { return given; }

    bool isGranted = false;
    bool asksAtOnce = false;
    bool isBeingAsked = false;
    std::optional<CaptureAdvice> given;
    QStringList calls;
};

} // namespace tovek
