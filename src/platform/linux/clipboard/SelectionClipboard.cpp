// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/clipboard/SelectionClipboard.h"

#include "foundation/Log.h"
#include "foundation/WhenReady.h"

#include <QEventLoop>
#include <QTimer>

namespace tovek {

namespace {

constexpr std::chrono::seconds encodingLimit(10);
constexpr std::chrono::seconds readersLimit(2);
constexpr std::chrono::milliseconds readerPollInterval(1);

SelectionBytes shared(const QByteArray &bytes)
{
    const auto owner = std::make_shared<const QByteArray>(bytes);
    return {reinterpret_cast<const uint8_t *>(owner->constData()), size_t(owner->size()), owner};
}

} // namespace

SelectionClipboard::SelectionClipboard(std::unique_ptr<Selection> selection, QString holder)
    : m_selection(std::move(selection))
    , m_holder(std::move(holder))
{
    m_selection->onLost = [this] { forget(); };
    m_selection->onRefused = [this] {
        logLine(QStringLiteral("Failed to take the clipboard: the desktop gives it to the program "
                               "with the keyboard only"));
        replace(m_kind);
        fail();
    };
}

SelectionClipboard::~SelectionClipboard() = default;

void SelectionClipboard::clear()
{
    replace(HeldKind::text);
    m_selection->clear();
}

void SelectionClipboard::setText(const QString &text)
{
    replace(HeldKind::text);
    m_bytes = shared(text.toUtf8());
    if (!m_selection->take(textContent(m_bytes), Selection::Readiness::ready)) {
        logLine(QStringLiteral("Failed to take the clipboard"));
        fail();
    }
}

void SelectionClipboard::setPng(QFuture<QByteArray> png)
{
    replace(HeldKind::png);
    if (!m_selection->take(pngContent({}), Selection::Readiness::awaited)) {
        logLine(QStringLiteral("Failed to take the clipboard"));
        return fail();
    }
    m_isAwaiting = true;
    const quint64 generation = m_generation;
    whenFinished(png, this,
                 [this, generation](const QByteArray &bytes) { pngReady(generation, bytes); });
}

/// What was on the clipboard, or was to come there, does not count any more.
void SelectionClipboard::replace(HeldKind kind)
{
    forget();
    ++m_generation;
    m_isAwaiting = false;
    m_kind = kind;
}

void SelectionClipboard::pngReady(quint64 generation, const QByteArray &png)
{
    if (generation != m_generation)
        return;
    m_isAwaiting = false;
    if (png.isEmpty()) {
        fail();
        if (m_selection->isOwner())
            m_selection->clear();
        else
            m_selection->provide({}); // refuses the readers that wait
        return;
    }
    m_bytes = shared(png);
    m_selection->provide(pngContent(m_bytes));
    if (!m_selection->isOwner())
        m_bytes = {};
}

void SelectionClipboard::handOver()
{
    waitUntil([this] { return !m_isAwaiting; }, encodingLimit);
    catchUp();
    if (m_selection->isOwner() && m_bytes.size > 0 && !m_holder.isEmpty()) {
        // The readers that are in the middle are served until the end.
        const SelectionBytes bytes = m_bytes;
        // The result says no more than what the log line does.
        static_cast<void>(startClipboardHolder(m_holder, holderArguments(), m_kind, bytes,
                                               [this] { processEvents(); }));
    }
    waitUntil([this] { return !m_selection->isTransferring(); }, readersLimit);
}

/// The content is not ours to pass on any more. A PNG that is being made still answers the
/// readers that wait for it.
void SelectionClipboard::forget()
{
    m_bytes = {};
}

void SelectionClipboard::takeAgain()
{
    if (!m_isAwaiting && m_bytes.size == 0)
        return;
    const SelectionContent content =
        m_kind == HeldKind::png ? pngContent(m_bytes) : textContent(m_bytes);
    if (!m_selection->take(
            content, m_isAwaiting ? Selection::Readiness::awaited : Selection::Readiness::ready))
        logLine(QStringLiteral("Failed to take the clipboard again"));
}

void SelectionClipboard::fail() const
{
    if (onFailed)
        onFailed(m_kind == HeldKind::png ? Content::picture : Content::text);
}

/// Runs the main loop, without the user's events, until the condition holds or time is up.
void SelectionClipboard::waitUntil(const std::function<bool()> &condition,
                                   std::chrono::milliseconds limit)
{
    if (condition())
        return;
    QEventLoop loop;
    QTimer poll;
    connect(&poll, &QTimer::timeout, &loop, [&] {
        if (condition() || !isConnected())
            loop.quit();
    });
    poll.start(readerPollInterval);
    QTimer::singleShot(limit, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}

} // namespace tovek
