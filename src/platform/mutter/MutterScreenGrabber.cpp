// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/mutter/MutterScreenGrabber.h"

#include "foundation/Log.h"
#include "foundation/WhenReady.h"

#include <QEventLoop>

namespace tovek {

namespace {

struct MutterSnapshot
{
    std::map<quint32, std::shared_ptr<FrozenDisplay>> displays;
    std::optional<ShareableContent> other; ///< of the other grabber, in their place
};

} // namespace

MutterScreenGrabber::MutterScreenGrabber(QString program, Displays displays,
                                         std::unique_ptr<ScreenGrabber> other)
    : m_program(std::move(program))
    , m_displays(std::move(displays))
    , m_other(std::move(other))
{
}

MutterScreenGrabber::~MutterScreenGrabber()
{
    if (m_running)
        finish(std::nullopt);
}

QFuture<MutterScreenGrabber::Content> MutterScreenGrabber::freeze()
{
    if (m_running)
        return m_running->future();
    m_running.emplace();
    m_running->start();
    const std::vector<PortalDisplay> displays = m_displays();
    m_cast = std::make_unique<MutterScreenCast>(m_program, displays, m_limit);
    m_cast->onFinished = [this, displays](const std::vector<QImage> &images, const QString &error) {
        m_cast.release()->deleteLater(); // it is what calls
        if (error.isEmpty())
            return recorded(displays, images);
        logLine(QStringLiteral("Mutter's ScreenCast gave no picture (%1): asking the desktop's "
                               "portal for one")
                    .arg(error));
        whenFinished(m_other->freeze(), this, [this](const Content &content) {
            if (!content)
                return finish(std::nullopt);
            ShareableContent wrapped = *content;
            wrapped.snapshot = std::make_shared<MutterSnapshot>(MutterSnapshot{{}, content});
            finish(wrapped);
        });
    };
    return m_running->future();
}

void MutterScreenGrabber::recorded(const std::vector<PortalDisplay> &displays,
                                   const std::vector<QImage> &images)
{
    const auto snapshot = std::make_shared<MutterSnapshot>();
    ShareableContent content;
    for (size_t i = 0; i < displays.size(); ++i) {
        content.displays.push_back({displays[i].id, displays[i].native});
        snapshot->displays.emplace(displays[i].id, frozenFromImage(images[i]));
    }
    content.snapshot = snapshot;
    finish(content);
}

MutterScreenGrabber::Content MutterScreenGrabber::shareableContent()
{
    const QFuture<Content> content = freeze();
    QEventLoop loop;
    if (!content.isFinished()) {
        whenOver(content, &loop, [&loop](const QFuture<Content> &) { loop.quit(); });
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    return content.result();
}

void MutterScreenGrabber::finish(Content content)
{
    QPromise<Content> promise = std::move(*m_running);
    m_running.reset();
    promise.addResult(std::move(content));
    promise.finish();
}

QFuture<ScreenGrabber::Result> MutterScreenGrabber::capture(const ShareableContent &content,
                                                            const CaptureDisplay &display,
                                                            const std::vector<quint32> &excluded)
{
    const auto *snapshot = static_cast<MutterSnapshot *>(content.snapshot.get());
    if (snapshot && snapshot->other)
        return m_other->capture(*snapshot->other, display, excluded);
    if (!excluded.empty())
        return readyFuture(Result{nullptr, QStringLiteral("windows cannot be left out")});
    if (!snapshot || !snapshot->displays.contains(display.displayId))
        return readyFuture(
            Result{nullptr, QStringLiteral("the display is not part of the content")});
    return readyFuture(Result{snapshot->displays.at(display.displayId), {}});
}

} // namespace tovek
