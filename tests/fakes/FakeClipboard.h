// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Clipboard.h"

#include <QStringList>

namespace tovek {

/// A clipboard that lives in this object and remembers how it was used.
class FakeClipboard : public Clipboard
{
public:
    void clear() override;
    void setText(const QString &text) override;
    void setPng(QFuture<QByteArray> png) override;
    void handOver() override;

    /// What a reader would get now. A PNG that is being made is waited for.
    QByteArray lastPng() const;
    QString lastText() const { return m_text; }
    /// The names under which the content is offered, as a reader would see them.
    QStringList targets() const;

    QStringList operations; ///< "clear", "text", "png", "handOver" in the order of the calls

private:
    QString m_text;
    QFuture<QByteArray> m_png;
    bool m_hasText = false;
    bool m_hasPng = false;
};

} // namespace tovek
