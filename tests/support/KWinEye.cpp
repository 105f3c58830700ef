// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "support/KWinEye.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusUnixFileDescriptor>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace tovek {

namespace {

constexpr int patienceMs = 5000;

/// So many bytes, or fewer when they do not come.
QByteArray readBytes(int descriptor, qsizetype count)
{
    QByteArray bytes(count, Qt::Uninitialized);
    qsizetype have = 0;
    pollfd ready{descriptor, POLLIN, 0};
    while (have < count && poll(&ready, 1, patienceMs) > 0) {
        const ssize_t more = read(descriptor, bytes.data() + have, size_t(count - have));
        if (more <= 0)
            break;
        have += more;
    }
    return bytes.left(have);
}

} // namespace

KWinEye::KWinEye(const QString &busAddress)
    : m_bus(QDBusConnection::connectToBus(busAddress, busAddress))
{
}

KWinEye::~KWinEye()
{
    QDBusConnection::disconnectFromBus(m_bus.name());
}

QImage KWinEye::look(const QString &output)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return {};
    QVariantMap values;
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            QStringLiteral("org.kde.KWin"), QStringLiteral("/org/kde/KWin/ScreenShot2"),
            QStringLiteral("org.kde.KWin.ScreenShot2"), QStringLiteral("CaptureScreen"));
        QDBusUnixFileDescriptor writer;
        writer.giveFileDescriptor(ends[1]);
        message.setArguments({output,
                              QVariantMap{{QStringLiteral("native-resolution"), true},
                                          {QStringLiteral("include-cursor"), true}},
                              QVariant::fromValue(writer)});
        values = QDBusReply<QVariantMap>(m_bus.call(message, QDBus::Block, patienceMs)).value();
    }
    const int stride = values.value(QStringLiteral("stride")).toInt();
    const QSize size(values.value(QStringLiteral("width")).toInt(),
                     values.value(QStringLiteral("height")).toInt());
    const QByteArray bytes = readBytes(ends[0], qsizetype(stride) * size.height());
    close(ends[0]);
    if (size.isEmpty() || bytes.size() < qsizetype(stride) * size.height())
        return {};
    return QImage(reinterpret_cast<const uchar *>(bytes.constData()), size.width(), size.height(),
                  stride, QImage::Format(values.value(QStringLiteral("format")).toInt()))
        .convertToFormat(QImage::Format_RGB32);
}

} // namespace tovek
