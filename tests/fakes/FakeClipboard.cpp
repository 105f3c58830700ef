// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeClipboard.h"

namespace tovek {

void FakeClipboard::clear()
{
    operations << QStringLiteral("clear");
    m_hasText = false;
    m_hasPng = false;
    m_text.clear();
    m_png = {};
}

void FakeClipboard::setText(const QString &text)
{
    operations << QStringLiteral("text");
    m_hasText = true;
    m_hasPng = false;
    m_text = text;
    m_png = {};
}

void FakeClipboard::setPng(QFuture<QByteArray> png)
{
    operations << QStringLiteral("png");
    m_hasText = false;
    m_hasPng = true;
    m_text.clear();
    m_png = std::move(png);
}

void FakeClipboard::handOver()
{
    operations << QStringLiteral("handOver");
}

QByteArray FakeClipboard::lastPng() const
{
    if (!m_hasPng)
        return {};
    QFuture<QByteArray> png = m_png;
    png.waitForFinished();
    return png.resultCount() ? png.result() : QByteArray();
}

QStringList FakeClipboard::targets() const
{
    const bool isFailed = m_hasPng && m_png.isFinished() && lastPng().isEmpty();
    if (m_hasPng && !isFailed)
        return {QStringLiteral("image/png")};
    if (m_hasText)
        return {QStringLiteral("STRING"), QStringLiteral("TEXT"), QStringLiteral("UTF8_STRING"),
                QStringLiteral("text/plain"), QStringLiteral("text/plain;charset=utf-8")};
    return {};
}

} // namespace tovek
