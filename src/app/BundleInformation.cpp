// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/BundleInformation.h"

namespace tovek::BundleInformation {

namespace {

const QString shortVersion = QStringLiteral("CFBundleShortVersionString");
const QString buildVersion = QStringLiteral("CFBundleVersion");

} // namespace

QVariantMap standard()
{
    return {{QStringLiteral("CFBundleName"), QStringLiteral("Tovek")},
            {shortVersion, version()},
            {buildVersion, QStringLiteral(TOVEK_BUILD)}};
}

QString version()
{
    return QStringLiteral(TOVEK_VERSION);
}

QString string(const QVariantMap &information, const QString &key)
{
    const QVariant value = information.value(key);
    return value.typeId() == QMetaType::QString ? value.toString() : QStringLiteral("Unknown");
}

QString versionLine(const QVariantMap &information)
{
    return QStringLiteral("Version %1 (%2)")
        .arg(string(information, shortVersion), string(information, buildVersion));
}

} // namespace tovek::BundleInformation
