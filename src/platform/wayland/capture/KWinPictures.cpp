// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/capture/KWinPictures.h"

#include "platform/linux/SessionBus.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>
#include <QDeadlineTimer>

#include <algorithm>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace tovek {

namespace {

constexpr int pipeBytes = 1 << 20; // as much as an ordinary user may ask for
constexpr qsizetype chunk = 1 << 18;
constexpr int probeLimitMs = 1000;

QDBusMessage request(const QString &method)
{
    return QDBusMessage::createMethodCall(QStringLiteral("org.kde.KWin"),
                                          QStringLiteral("/org/kde/KWin/ScreenShot2"),
                                          QStringLiteral("org.kde.KWin.ScreenShot2"), method);
}

QVariantMap options()
{
    return {{QStringLiteral("native-resolution"), true},
            {QStringLiteral("include-cursor"), false},
            // Our settings are windows like any other.
            {QStringLiteral("hide-caller-windows"), false}};
}

/// True when nobody serves it.
bool isMissing(const QDBusMessage &reply)
{
    using Error = QDBusError;
    switch (Error(reply).type()) {
    case Error::ServiceUnknown:
    case Error::UnknownInterface:
    case Error::UnknownMethod:
    case Error::UnknownObject:
    case Error::Disconnected:
    case Error::AccessDenied:
        return true;
    default:
        return false;
    }
}

/// Both ends of a pipe from which reading never waits.
bool openPipe(int (&ends)[2])
{
    if (pipe2(ends, O_CLOEXEC) != 0)
        return false;
    fcntl(ends[0], F_SETFL, O_NONBLOCK);
    fcntl(ends[0], F_SETPIPE_SZ, pipeBytes);
    return true;
}

} // namespace

struct KWinPicture::Call
{
    QDBusPendingCall pending;
};

KWinPicture::KWinPicture(const QString &output, QSize likely)
{
    int ends[2];
    if (!openPipe(ends)) {
        fail(QStringLiteral("there is no pipe to be had"));
        return;
    }
    m_descriptor = ends[0];
    m_bytes.reserve(qsizetype(likely.width()) * likely.height() * 4 + chunk);
    QDBusMessage message = request(QStringLiteral("CaptureScreen"));
    QDBusUnixFileDescriptor writer;
    writer.giveFileDescriptor(ends[1]);
    message.setArguments({output, options(), QVariant::fromValue(writer)});
    m_call.reset(new Call{SessionBus::current().asyncCall(message)});
}

KWinPicture::~KWinPicture()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

void KWinPicture::fail(const QString &reason)
{
    m_error = reason;
    m_call.reset();
    if (m_descriptor >= 0)
        close(std::exchange(m_descriptor, -1));
}

bool KWinPicture::advance()
{
    if (m_call && m_call->pending.isFinished())
        readReply();
    if (m_descriptor >= 0)
        readPixels();
    if (!m_error.isEmpty())
        return true;
    const bool isComplete = !m_size.isEmpty() && m_bytes.size() >= m_bytesPerLine * m_size.height();
    if (!isComplete && m_hasEnded && !m_call)
        fail(QStringLiteral("KWin did not send all of the picture"));
    return isComplete || !m_error.isEmpty();
}

void KWinPicture::readReply()
{
    const QDBusPendingReply<QVariantMap> reply = m_call->pending;
    if (reply.isError()) {
        m_isRefused = reply.error().name().endsWith(QLatin1String("NoAuthorized"));
        return fail((m_isRefused ? QStringLiteral("KWin refused the picture (%1)")
                                 : QStringLiteral("KWin can take no picture now (%1)"))
                        .arg(reply.error().name()));
    }
    const QVariantMap values = reply.value();
    m_size = QSize(values.value(QStringLiteral("width")).toInt(),
                   values.value(QStringLiteral("height")).toInt());
    m_bytesPerLine = values.value(QStringLiteral("stride")).toInt();
    m_format = QImage::Format(values.value(QStringLiteral("format")).toInt());
    // It keeps the message, and with it the writing end of the pipe open: no end would be seen.
    m_call.reset();
    if (m_size.isEmpty() || m_bytesPerLine <= 0 || m_format <= QImage::Format_Invalid
        || m_format >= QImage::NImageFormats
        || m_bytesPerLine
            < (qsizetype(m_size.width()) * QImage::toPixelFormat(m_format).bitsPerPixel() + 7) / 8)
        fail(QStringLiteral("KWin's pixels have an unknown format"));
}

void KWinPicture::readPixels()
{
    while (!m_hasEnded) {
        const qsizetype before = m_bytes.size();
        m_bytes.resize(before + chunk);
        const ssize_t count = read(m_descriptor, m_bytes.data() + before, size_t(chunk));
        m_bytes.resize(before + std::max<ssize_t>(count, 0));
        if (count < 0)
            return;
        m_hasEnded = count == 0;
    }
    close(std::exchange(m_descriptor, -1));
}

QImage KWinPicture::image() const
{
    if (!m_error.isEmpty() || m_size.isEmpty() || m_bytes.size() < m_bytesPerLine * m_size.height())
        return {};
    return QImage(reinterpret_cast<const uchar *>(m_bytes.constData()), m_size.width(),
                  m_size.height(), m_bytesPerLine, m_format);
}

KWinAccess kwinAccess()
{
    int ends[2];
    if (!openPipe(ends))
        return KWinAccess::absent;
    QDBusMessage message = request(QStringLiteral("CaptureArea"));
    QDBusUnixFileDescriptor writer;
    writer.giveFileDescriptor(ends[1]);
    message.setArguments({0, 0, 1U, 1U, options(), QVariant::fromValue(writer)});
    const QDBusMessage reply = SessionBus::current().call(message, QDBus::Block, probeLimitMs);
    close(ends[0]);
    if (reply.errorName().endsWith(QLatin1String("NoAuthorized")))
        return KWinAccess::refused;
    // It may be busy, or unable to draw for a moment, as with a screen that sleeps at login: a
    // capture then tells so. Only where there is no such service will there be none later on.
    return isMissing(reply) ? KWinAccess::absent : KWinAccess::granted;
}

} // namespace tovek
