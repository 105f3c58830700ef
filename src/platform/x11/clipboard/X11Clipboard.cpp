// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/clipboard/X11Clipboard.h"

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
    connect(&m_notifier, &QSocketNotifier::activated, this, [this] {
        m_server.processEvents();
        if (!m_server.isConnected())
            m_notifier.setEnabled(false);
    });
}

X11Clipboard::~X11Clipboard() = default;

QString X11Clipboard::standardHolder()
{
    return holderNamed(QStringLiteral("tovek-clipboard"));
}

QList<QByteArray> X11Clipboard::holderArguments() const
{
    return {m_display.toLocal8Bit(), QByteArray::number(m_server.window())};
}

} // namespace tovek
