// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/Clipboard.h"
#include "platform/linux/clipboard/ClipboardHolder.h"
#include "platform/linux/clipboard/Selection.h"

#include <QObject>

#include <chrono>

namespace tovek {

/// A clipboard that we own ourselves: the toolkit would offer a dozen forms of a picture beside
/// PNG, and at its end wait seconds for a clipboard manager that may lose the picture, or lose it
/// at once.
class SelectionClipboard : public QObject, public Clipboard
{
public:
    ~SelectionClipboard() override;

    void clear() override;
    void setText(const QString &text) override;
    void setPng(QFuture<QByteArray> png) override;
    /// Bytes that are still being made are waited for, for ten seconds at most, and so are readers
    /// that are in the middle, for two.
    void handOver() override;

protected:
    /// `holder` is the program that keeps the clipboard after us; empty where the desktop does.
    SelectionClipboard(std::unique_ptr<Selection> selection, QString holder);

    Selection &selection() { return *m_selection; }
    /// What the holder is told beside the kind of the bytes.
    virtual QList<QByteArray> holderArguments() const = 0;
    /// Handles what has arrived, without waiting.
    virtual void processEvents() = 0;
    /// Handles everything that the window system knows by now.
    virtual void catchUp() { processEvents(); }
    virtual bool isConnected() const = 0;
    /// Takes what it had again: the connection was lost, and with it the selection.
    void takeAgain();

private:
    void replace(HeldKind kind);
    void pngReady(quint64 generation, const QByteArray &png);
    void forget();
    void fail() const;
    void waitUntil(const std::function<bool()> &condition, std::chrono::milliseconds limit);

    std::unique_ptr<Selection> m_selection;
    QString m_holder;
    SelectionBytes m_bytes; ///< what `handOver` passes on; empty while a PNG is being made
    HeldKind m_kind = HeldKind::text;
    quint64 m_generation = 0; ///< counts contents, so that an old PNG does not replace a new one
    bool m_isAwaiting = false;
};

} // namespace tovek
