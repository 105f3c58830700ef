// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/KGlobalAccel.h"

#include <QDBusMetaType>

namespace tovek::KGlobalAccel {

QDBusArgument &operator<<(QDBusArgument &out, const Sequence &sequence)
{
    out.beginStructure();
    out << sequence.keys;
    out.endStructure();
    return out;
}

const QDBusArgument &operator>>(const QDBusArgument &in, Sequence &sequence)
{
    in.beginStructure();
    in >> sequence.keys;
    in.endStructure();
    return in;
}

Sequence sequence(int key)
{
    return {{key, 0, 0, 0}};
}

void registerTypes()
{
    qDBusRegisterMetaType<Sequence>();
    qDBusRegisterMetaType<QList<Sequence>>();
}

QDBusMessage call(const QString &method)
{
    return QDBusMessage::createMethodCall(service, QStringLiteral("/kglobalaccel"),
                                          QStringLiteral("org.kde.KGlobalAccel"), method);
}

} // namespace tovek::KGlobalAccel
