// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QStringList>

namespace tovek {

class WaylandDesktop;

/// Another program that reads the clipboard of a Wayland test desktop. The main loop runs
/// meanwhile, so that a clipboard in this process can be read too.
class WaylandClipboardReader
{
public:
    explicit WaylandClipboardReader(WaylandDesktop &desktop) : m_desktop(desktop) { }

    /// Why there is none on this machine; empty when there is.
    static QString missing();
    /// Sorted; none when the clipboard is empty.
    QStringList targets();
    /// Null where the clipboard has no such target.
    QByteArray read(const QString &target);
    QByteArray read(const char *target) { return read(QString::fromLatin1(target)); }

private:
    QByteArray paste(const QStringList &arguments);

    WaylandDesktop &m_desktop;
};

} // namespace tovek
