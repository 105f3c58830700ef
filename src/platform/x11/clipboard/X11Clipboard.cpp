// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/clipboard/X11Clipboard.h"

#include "foundation/HelperProgram.h"

namespace tovek {

std::unique_ptr<X11Clipboard> X11Clipboard::create(const QString &holder, const QString &display)
{
    auto server = SelectionServer::create(display.toStdString());
    if (!server)
        return nullptr;
    // Not make_unique, which cannot reach the constructor.
    return std::unique_ptr<X11Clipboard>(new X11Clipboard(std::move(server), holder, display));
}

X11Clipboard::X11Clipboard(std::unique_ptr<SelectionServer> server, const QString &holder,
                           QString display)
    : SelectionClipboard(std::move(server), holder)
    , m_server(static_cast<SelectionServer &>(selection()))
    , m_notifier(m_server.fileDescriptor(), QSocketNotifier::Read)
    , m_display(std::move(display))
{
    m_server.onReconnected = [this] { follow(); };
    connect(&m_notifier, &QSocketNotifier::activated, this, [this] {
        m_server.processEvents();
        if (m_server.isConnected())
            return;
        m_notifier.setEnabled(false);
        // Not from inside the notifier, whose descriptor changes.
        QMetaObject::invokeMethod(
            this, [this] { recover(); }, Qt::QueuedConnection);
    });
}

void X11Clipboard::follow()
{
    m_notifier.setEnabled(false);
    m_notifier.setSocket(m_server.fileDescriptor());
    m_notifier.setEnabled(true);
}

/// Someone had the server close our connection: what we held is still ours to give, unless another
/// program has taken the clipboard meanwhile.
void X11Clipboard::recover()
{
    if (m_server.isConnected() || !m_server.reconnect())
        return;
    if (m_server.hasNoOwner())
        takeAgain();
}

X11Clipboard::~X11Clipboard() = default;

QString X11Clipboard::standardHolder()
{
    return helperProgram(QStringLiteral("tovek-clipboard"));
}

QList<QByteArray> X11Clipboard::holderArguments() const
{
    return {m_display.toLocal8Bit(), QByteArray::number(m_server.window())};
}

} // namespace tovek
