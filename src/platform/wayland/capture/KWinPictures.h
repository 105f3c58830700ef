// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

#include <functional>
#include <memory>

namespace tovek {

/// One picture asked of KWin, on its way through a pipe. The reply comes before the pixels.
class KWinPicture
{
public:
    /// `likely` is the size that memory is reserved for.
    KWinPicture(const QString &output, QSize likely);
    ~KWinPicture();
    KWinPicture(const KWinPicture &) = delete;
    KWinPicture &operator=(const KWinPicture &) = delete;

    /// Readable when pixels have come; -1 once all have.
    int descriptor() const { return m_descriptor; }
    /// Takes what has come. True once nothing more will.
    bool advance();
    bool isRefused() const { return m_isRefused; } ///< for want of authorisation
    QString error() const { return m_error; }
    /// Null while incomplete, or when it failed.
    QImage image() const;

private:
    struct Call;
    void readReply();
    void readPixels();
    void fail(const QString &reason);

    std::unique_ptr<Call> m_call;
    int m_descriptor = -1;
    QByteArray m_bytes;
    bool m_hasEnded = false; ///< nobody writes any more
    QSize m_size;
    qsizetype m_bytesPerLine = 0;
    QImage::Format m_format = QImage::Format_Invalid;
    bool m_isRefused = false;
    QString m_error;
};

/// Whether KWin offers pictures at all, and whether this program may have them: a picture of one
/// pixel tells. Waits for the answer, a second at most.
enum class KWinAccess { absent, refused, granted };
KWinAccess kwinAccess();

} // namespace tovek
