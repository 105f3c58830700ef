// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusArgument>
#include <QDBusMessage>
#include <QList>
#include <QString>

namespace tovek::KGlobalAccel {

const inline QString service = QStringLiteral("org.kde.kglobalaccel");
const inline QString componentInterface = QStringLiteral("org.kde.kglobalaccel.Component");
/// Under which this program's shortcuts stand in KDE's table.
const inline QString ownComponent = QStringLiteral("tovek");

/// One shortcut as the service writes it: up to four keys, one after the other.
struct Sequence
{
    QList<int> keys;
};
QDBusArgument &operator<<(QDBusArgument &out, const Sequence &sequence);
const QDBusArgument &operator>>(const QDBusArgument &in, Sequence &sequence);

/// Of a single key.
Sequence sequence(int key);
/// Must have been called before a sequence is sent.
void registerTypes();
/// A call of the service's main object.
QDBusMessage call(const QString &method);

} // namespace tovek::KGlobalAccel

Q_DECLARE_METATYPE(tovek::KGlobalAccel::Sequence)
