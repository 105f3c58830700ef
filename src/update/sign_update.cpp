// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// For whoever publishes new versions: makes the pair of keys, and signs packages for the feed.

#include "update/UpdateSignature.h"
#include "update/Version.h"

#include <QCoreApplication>
#include <QFile>
#include <QStringList>

#include <cstdio>

namespace tovek {

namespace {

int fail(const QString &reason)
{
    std::fputs(qPrintable(reason + QLatin1Char('\n')), stderr);
    return 1;
}

int makeKey(const QString &path)
{
    const auto pair = UpdateSignature::makeKeyPair();
    QFile file(path);
    // A key that is in use is never replaced: installed programs trust no other.
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return fail(path + QStringLiteral(": ") + file.errorString());
    const QByteArray text = pair.secretKey.toBase64() + '\n';
    if (!file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)
        || file.write(text) != text.size() || !file.flush())
        return fail(path + QStringLiteral(": ") + file.errorString());
    std::printf("TOVEK_UPDATE_KEY=%s\n", pair.publicKey.toBase64().constData());
    return 0;
}

int sign(const QString &keyPath, const QString &version, const QString &packagePath)
{
    QFile key(keyPath);
    if (!key.open(QIODevice::ReadOnly))
        return fail(keyPath + QStringLiteral(": ") + key.errorString());
    QFile package(packagePath);
    if (!package.open(QIODevice::ReadOnly))
        return fail(packagePath + QStringLiteral(": ") + package.errorString());
    if (!Version::fromString(version))
        return fail(version + QStringLiteral(" is no version"));
    const auto digest = UpdateSignature::digest(package);
    const QByteArray signature = digest
        ? UpdateSignature::sign(QByteArray::fromBase64(key.readAll().trimmed()), version,
                                package.size(), *digest)
        : QByteArray();
    if (signature.isEmpty())
        return fail(keyPath + QStringLiteral(" holds no key"));
    std::printf("length=\"%lld\" signature=\"%s\"\n", package.size(),
                signature.toBase64().constData());
    return 0;
}

} // namespace

} // namespace tovek

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments().mid(1);
    if (words.size() == 2 && words[0] == QLatin1String("make-key"))
        return tovek::makeKey(words[1]);
    if (words.size() == 4 && words[0] == QLatin1String("sign"))
        return tovek::sign(words[1], words[2], words[3]);
    std::fputs("sign_update make-key KEYFILE\nsign_update sign KEYFILE VERSION PACKAGE\n", stderr);
    return 2;
}
