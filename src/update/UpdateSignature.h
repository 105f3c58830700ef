// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class QIODevice;

namespace tovek {

/// Signatures of packages: Ed25519 over a text that names the version, the length and the BLAKE2b
/// digest of the file. So a signed file cannot be passed off as another version.
namespace UpdateSignature {

inline constexpr qsizetype publicKeyBytes = 32;
inline constexpr qsizetype secretKeyBytes = 64;

/// The digest of all that the device gives from where it stands; absent when it cannot be read.
std::optional<QByteArray> digest(QIODevice &device);
bool isValid(const QByteArray &signature, const QByteArray &publicKey, const QString &version,
             qint64 length, const QByteArray &digest);
/// Empty when the key is none.
QByteArray sign(const QByteArray &secretKey, const QString &version, qint64 length,
                const QByteArray &digest);

struct KeyPair
{
    QByteArray publicKey;
    QByteArray secretKey;
};
KeyPair makeKeyPair();

} // namespace UpdateSignature

} // namespace tovek
