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

struct Words
{
    QString key, date, version, kind, architecture, minimumSystem, package;
};

int sign(const Words &words)
{
    QFile key(words.key);
    if (!key.open(QIODevice::ReadOnly))
        return fail(words.key + QStringLiteral(": ") + key.errorString());
    QFile package(words.package);
    if (!package.open(QIODevice::ReadOnly))
        return fail(words.package + QStringLiteral(": ") + package.errorString());
    SignedEntry entry;
    entry.version = words.version;
    entry.architecture = words.architecture;
    entry.length = package.size();
    entry.minimumSystem =
        words.minimumSystem == QLatin1String("any") ? QString() : words.minimumSystem;
    entry.date = QDateTime::fromString(words.date, Qt::RFC2822Date).toUTC();
    const auto kind = packageKind(words.kind);
    const bool isSystemClear =
        entry.minimumSystem.isEmpty() || Version::fromString(entry.minimumSystem);
    if (!Version::fromString(words.version) || !isSystemClear)
        return fail(QStringLiteral("no version: %1, %2").arg(words.version, words.minimumSystem));
    if (!kind || !entry.date.isValid())
        return fail(QStringLiteral("no kind or no date: %1, %2").arg(words.kind, words.date));
    entry.kind = *kind;
    const auto digest = UpdateSignature::digest(package);
    entry.digest = digest.value_or(QByteArray());
    const QByteArray signature = digest
        ? UpdateSignature::sign(QByteArray::fromBase64(key.readAll().trimmed()), entry)
        : QByteArray();
    if (signature.isEmpty())
        return fail(words.key + QStringLiteral(" holds no key"));
    std::printf("kind=\"%s\" architecture=\"%s\" length=\"%lld\" digest=\"%s\" signature=\"%s\"\n",
                qPrintable(words.kind), qPrintable(words.architecture), entry.length,
                entry.digest.toBase64().constData(), signature.toBase64().constData());
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
    if (words.size() == 8 && words[0] == QLatin1String("sign"))
        return tovek::sign({words[1], words[2], words[3], words[4], words[5], words[6], words[7]});
    std::fputs(
        "sign_update make-key KEYFILE\n"
        "sign_update sign KEYFILE DATE VERSION KIND ARCHITECTURE MINIMUM-SYSTEM|any PACKAGE\n",
        stderr);
    return 2;
}
