// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QFuture>
#include <QString>

#include <functional>

namespace tovek {

/// The desktop's clipboard (not the primary selection). Main thread only.
class Clipboard
{
public:
    virtual ~Clipboard() = default;
    virtual void clear() = 0;
    /// Replaces the content by plain text.
    virtual void setText(const QString &text) = 0;
    /// Replaces the content by a PNG, offered as `image/png` and nothing else. The clipboard is
    /// taken at once; a reader that comes before the bytes are ready waits for them. Empty bytes
    /// leave the clipboard cleared.
    virtual void setPng(QFuture<QByteArray> png) = 0;
    /// Called once when the program quits: what we put on the clipboard stays there, without a
    /// pause. Nothing happens when the clipboard is not ours any more.
    virtual void handOver() = 0;

    /// What was to be there could not be put there, or could not be made.
    enum class Content { picture, text };
    std::function<void(Content)> onFailed;
};

} // namespace tovek
