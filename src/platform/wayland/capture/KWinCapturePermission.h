// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/CapturePermission.h"

namespace tovek {

/// What KWin makes of this program.
class KWinCapturePermission : public CapturePermission
{
public:
    bool hasAccess() const override;
    void requestAccess() override { }
    void openSettings() override { }
    std::optional<CaptureAdvice> advice() const override;

private:
    mutable bool m_isGranted = false; ///< it is not taken back while both run
};

} // namespace tovek
