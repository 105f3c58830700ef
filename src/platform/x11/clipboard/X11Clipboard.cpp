// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/clipboard/X11Clipboard.h"

#include "foundation/Log.h"
#include "foundation/WhenReady.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>

namespace tovek {

namespace {

constexpr std::chrono::seconds encodingLimit(10);
constexpr std::chrono::seconds readersLimit(2);
constexpr std::chrono::milliseconds pollInterval(1);

SelectionBytes shared(const QByteArray &bytes)
{
    const auto owner = std::make_shared<const QByteArray>(bytes);
    return {reinterpret_cast<const uint8_t *>(owner->constData()), size_t(owner->size()), owner};
}

} // namespace

std::unique_ptr<X11Clipboard> X11Clipboard::create(const QString &holder, const QString &display)
{
    auto server = SelectionServer::create(display.toStdString());
    if (!server)
        return nullptr;
    // Not make_unique, which cannot reach the constructor.
    return std::unique_ptr<X11Clipboard>(new X11Clipboard(std::move(server), holder, display));
}

X11Clipboard::X11Clipboard(std::unique_ptr<SelectionServer> server, QString holder, QString display)
    : m_server(std::move(server))
    , m_notifier(m_server->fileDescriptor(), QSocketNotifier::Read)
    , m_holder(std::move(holder))
    , m_display(std::move(display))
{
    m_server->onLost = [this] { forget(); };
    connect(&m_notifier, &QSocketNotifier::activated, this, [this] {
        m_server->processEvents();
        if (!m_server->isConnected())
            m_notifier.setEnabled(false);
    });
}

X11Clipboard::~X11Clipboard() = default;

void X11Clipboard::clear()
{
    forget();
    ++m_generation;
    m_isAwaiting = false;
    m_server->clear();
}

void X11Clipboard::setText(const QString &text)
{
    forget();
    ++m_generation;
    m_isAwaiting = false;
    m_kind = HeldKind::text;
    m_bytes = shared(text.toUtf8());
    if (!m_server->take(textContent(m_bytes), SelectionServer::Readiness::ready))
        logLine(QStringLiteral("Failed to take the clipboard"));
}

void X11Clipboard::setPng(QFuture<QByteArray> png)
{
    forget();
    ++m_generation;
    m_isAwaiting = false;
    m_kind = HeldKind::png;
    if (!m_server->take(pngContent({}), SelectionServer::Readiness::awaited)) {
        logLine(QStringLiteral("Failed to take the clipboard"));
        return;
    }
    m_isAwaiting = true;
    const quint64 generation = m_generation;
    whenFinished(png, this,
                 [this, generation](const QByteArray &bytes) { pngReady(generation, bytes); });
}

void X11Clipboard::pngReady(quint64 generation, const QByteArray &png)
{
    if (generation != m_generation)
        return;
    m_isAwaiting = false;
    if (png.isEmpty()) {
        if (m_server->isOwner())
            m_server->clear();
        else
            m_server->provide({}); // refuses the readers that wait
        return;
    }
    m_bytes = shared(png);
    m_server->provide(pngContent(m_bytes));
    if (!m_server->isOwner())
        m_bytes = {};
}

void X11Clipboard::handOver()
{
    waitUntil([this] { return !m_isAwaiting; }, encodingLimit);
    if (m_server->isOwner() && m_bytes.size > 0) {
        // The readers that are in the middle are served until the end.
        const SelectionBytes bytes = m_bytes;
        // The result says no more than what the log line does.
        static_cast<void>(startClipboardHolder(m_holder, m_display, m_server->window(), m_kind,
                                               bytes, [this] { m_server->processEvents(); }));
    }
    waitUntil([this] { return !m_server->isTransferring(); }, readersLimit);
}

QString X11Clipboard::standardHolder()
{
    const QString folder = QCoreApplication::applicationDirPath();
    const QString beside = folder + QStringLiteral("/tovek-clipboard");
    const QString installed = folder + QStringLiteral("/../libexec/tovek/tovek-clipboard");
    return QFileInfo::exists(beside) ? beside : installed;
}

/// The content is not ours to pass on any more. A PNG that is being made still answers the
/// readers that wait for it.
void X11Clipboard::forget()
{
    m_bytes = {};
}

/// Runs the main loop, without the user's events, until the condition holds or time is up.
void X11Clipboard::waitUntil(const std::function<bool()> &condition,
                             std::chrono::milliseconds limit)
{
    if (condition())
        return;
    QEventLoop loop;
    QTimer poll;
    connect(&poll, &QTimer::timeout, &loop, [&] {
        if (condition() || !m_server->isConnected())
            loop.quit();
    });
    poll.start(pollInterval);
    QTimer::singleShot(limit, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}

} // namespace tovek
