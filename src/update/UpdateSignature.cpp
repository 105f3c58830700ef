// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/UpdateSignature.h"

#include <QIODevice>

#include <sodium.h>

namespace tovek::UpdateSignature {

namespace {

constexpr qint64 blockBytes = 256 * 1024;

const unsigned char *bytes(const QByteArray &array)
{
    return reinterpret_cast<const unsigned char *>(array.constData());
}

unsigned char *bytes(QByteArray &array)
{
    return reinterpret_cast<unsigned char *>(array.data());
}

bool isReady()
{
    static const bool isReady = sodium_init() >= 0;
    return isReady;
}

/// One line each, so that no value can run into the next: none of them has a line feed.
QByteArray message(const SignedEntry &entry)
{
    const QString lines[] = {QStringLiteral("tovek update 2"),
                             QStringLiteral("version ") + entry.version,
                             QStringLiteral("kind ") + nameOf(entry.kind),
                             QStringLiteral("architecture ") + entry.architecture,
                             QStringLiteral("length ") + QString::number(entry.length),
                             QStringLiteral("blake2b ") + QLatin1String(entry.digest.toHex()),
                             QStringLiteral("minimumSystem ") + entry.minimumSystem,
                             QStringLiteral("date ") + entry.date.toUTC().toString(Qt::ISODate)};
    QByteArray text;
    for (QString line : lines)
        text += line.replace(QLatin1Char('\n'), QLatin1Char(' ')).toUtf8() + '\n';
    return text;
}

} // namespace

std::optional<QByteArray> digest(QIODevice &device)
{
    crypto_generichash_state state;
    if (!isReady()
        || crypto_generichash_init(&state, nullptr, 0, crypto_generichash_BYTES_MAX) != 0)
        return std::nullopt;
    QByteArray block(blockBytes, Qt::Uninitialized);
    qint64 count = 0;
    while ((count = device.read(block.data(), block.size())) > 0)
        crypto_generichash_update(&state, bytes(block), quint64(count));
    if (count < 0)
        return std::nullopt;
    QByteArray result(crypto_generichash_BYTES_MAX, Qt::Uninitialized);
    crypto_generichash_final(&state, bytes(result), size_t(result.size()));
    return result;
}

bool isValid(const QByteArray &signature, const QByteArray &publicKey, const SignedEntry &entry)
{
    const QByteArray text = message(entry);
    return isReady() && signature.size() == crypto_sign_BYTES && publicKey.size() == publicKeyBytes
        && crypto_sign_verify_detached(bytes(signature), bytes(text), quint64(text.size()),
                                       bytes(publicKey))
        == 0;
}

QByteArray sign(const QByteArray &secretKey, const SignedEntry &entry)
{
    if (!isReady() || secretKey.size() != secretKeyBytes)
        return {};
    const QByteArray text = message(entry);
    QByteArray signature(crypto_sign_BYTES, Qt::Uninitialized);
    crypto_sign_detached(bytes(signature), nullptr, bytes(text), quint64(text.size()),
                         bytes(secretKey));
    return signature;
}

UpdateFeed signedPart(const UpdateFeed &feed, const QByteArray &publicKey)
{
    UpdateFeed part{feed.date, {}};
    for (const UpdateItem &item : feed.items) {
        UpdateItem trusted = item;
        trusted.packages.removeIf([&](const UpdatePackage &package) {
            return !isValid(package.signature, publicKey, entryOf(feed, item, package));
        });
        if (!trusted.packages.isEmpty())
            part.items.append(trusted);
    }
    return part;
}

KeyPair makeKeyPair()
{
    KeyPair pair{QByteArray(publicKeyBytes, Qt::Uninitialized),
                 QByteArray(secretKeyBytes, Qt::Uninitialized)};
    if (!isReady() || crypto_sign_keypair(bytes(pair.publicKey), bytes(pair.secretKey)) != 0)
        return {};
    return pair;
}

} // namespace tovek::UpdateSignature
