// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/clipboard/SelectionClipboard.h"
#include "platform/x11/clipboard/SelectionServer.h"

#include <QSocketNotifier>

namespace tovek {

/// The CLIPBOARD selection.
class X11Clipboard : public SelectionClipboard
{
public:
    /// Null without a display. `holder` is the program that keeps the clipboard after us. An empty
    /// display is that of the environment.
    static std::unique_ptr<X11Clipboard> create(const QString &holder = standardHolder(),
                                                const QString &display = {});
    ~X11Clipboard() override;

    /// tovek-clipboard beside the program, or in its libexec folder.
    static QString standardHolder();

protected:
    QList<QByteArray> holderArguments() const override;
    void processEvents() override { m_server.processEvents(); }
    bool isConnected() const override { return m_server.isConnected(); }

private:
    void follow();
    void recover();

    X11Clipboard(std::unique_ptr<SelectionServer> server, const QString &holder, QString display);

    SelectionServer &m_server; ///< the base class owns it
    QSocketNotifier m_notifier;
    QString m_display;
};

} // namespace tovek
