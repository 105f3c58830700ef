// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QDBusConnection>
#include <QImage>

namespace tovek {

/// The pixels of KWin's outputs, from its own service, which looks up whom it answers.
class KWinEye
{
public:
    explicit KWinEye(const QString &busAddress);
    ~KWinEye();
    KWinEye(const KWinEye &) = delete;
    KWinEye &operator=(const KWinEye &) = delete;

    /// In native pixels, as Format_RGB32, with the pointer; null when KWin does not answer.
    QImage look(const QString &output);

private:
    QDBusConnection m_bus;
};

} // namespace tovek
