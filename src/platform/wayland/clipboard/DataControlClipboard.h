// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/linux/clipboard/SelectionClipboard.h"
#include "platform/wayland/clipboard/DataControlSelection.h"

#include <QSocketNotifier>
#include <QTimer>

#include <map>

namespace tovek {

class WaylandConnection;

/// The clipboard of a compositor that lets clipboard managers work.
class DataControlClipboard : public SelectionClipboard
{
public:
    /// Null where it does not. `holder` is the program that keeps the clipboard after us.
    static std::unique_ptr<DataControlClipboard>
    create(std::shared_ptr<WaylandConnection> connection, const QString &holder = standardHolder());
    /// The clipboard of one that does not, but lets programs with windows copy.
    static std::unique_ptr<DataControlClipboard>
    createWithFocus(std::shared_ptr<WaylandConnection> connection);
    ~DataControlClipboard() override;

    /// tovek-clipboard-wayland beside the program, or in its libexec folder.
    static QString standardHolder();

protected:
    QList<QByteArray> holderArguments() const override;
    void processEvents() override;
    void catchUp() override;
    bool isConnected() const override;

private:
    DataControlClipboard(std::shared_ptr<WaylandConnection> connection,
                         std::unique_ptr<DataControlSelection> owned, const QString &holder);
    void watchWriters();

    std::shared_ptr<WaylandConnection> m_connection;
    PipeWriters &m_writers; ///< of the selection, which the base class owns
    std::map<int, std::unique_ptr<QSocketNotifier>> m_notifiers; ///< by descriptor
    QTimer m_stalledCheck; ///< runs while there are readers in the middle
};

} // namespace tovek
