// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Clipboard.h"

namespace tovek {

/// No clipboard: what is copied goes nowhere, with a log line each time.
class NullClipboard : public Clipboard
{
public:
    void clear() override { }
    void setText(const QString &text) override;
    void setPng(QFuture<QByteArray> png) override;
    void handOver() override { }
};

} // namespace tovek
