// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Clipboard.h"
#include "platform/x11/clipboard/ClipboardHolder.h"
#include "platform/x11/clipboard/SelectionServer.h"

#include <QSocketNotifier>

namespace tovek {

/// The CLIPBOARD selection, owned by ourselves: the toolkit would offer a dozen forms of a picture
/// beside PNG, and at its end wait seconds for a clipboard manager that may lose the picture.
class X11Clipboard : public QObject, public Clipboard
{
public:
    /// Null without a display. `holder` is the program that keeps the clipboard after us. An empty
    /// display is that of the environment.
    static std::unique_ptr<X11Clipboard> create(const QString &holder = standardHolder(),
                                                const QString &display = {});
    ~X11Clipboard() override;

    void clear() override;
    void setText(const QString &text) override;
    void setPng(QFuture<QByteArray> png) override;
    /// Bytes that are still being made are waited for, for ten seconds at most, and so are readers
    /// that are in the middle, for two.
    void handOver() override;

    /// tovek-clipboard beside the program, or in its libexec folder.
    static QString standardHolder();

private:
    X11Clipboard(std::unique_ptr<SelectionServer> server, QString holder, QString display);

    void pngReady(quint64 generation, const QByteArray &png);
    void forget();
    void waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds limit);

    std::unique_ptr<SelectionServer> m_server;
    QSocketNotifier m_notifier;
    QString m_holder;
    QString m_display;
    SelectionBytes m_bytes; ///< what `handOver` passes on; empty while a PNG is being made
    HeldKind m_kind = HeldKind::text;
    quint64 m_generation = 0; ///< counts contents, so that an old PNG does not replace a new one
    bool m_isAwaiting = false;
};

} // namespace tovek
