// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/CapturePermission.h"

namespace tovek {

/// A session that cannot be captured, whatever the user allows; tells why.
class NullCapturePermission : public CapturePermission
{
public:
    explicit NullCapturePermission(CaptureAdvice advice) : m_advice(std::move(advice)) { }
    bool hasAccess() const override { return false; }
    void requestAccess() override { }
    void openSettings() override { }
    std::optional<CaptureAdvice> advice() const override { return m_advice; }

private:
    CaptureAdvice m_advice;
};

} // namespace tovek
