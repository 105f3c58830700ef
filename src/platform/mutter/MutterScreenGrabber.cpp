// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/mutter/MutterScreenGrabber.h"

#include "foundation/Log.h"
#include "foundation/WhenReady.h"
#include "platform/portal/FrozenContent.h"

namespace tovek {

namespace {

struct MutterSnapshot
{
    ShareableContent content;
    bool isOther; ///< it is the other grabber's
};

/// Of either, with a note of whose it is.
ShareableContent noted(const ShareableContent &content, bool isOther)
{
    return {content.displays, content.windows,
            std::make_shared<MutterSnapshot>(MutterSnapshot{content, isOther})};
}

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
            finish(content ? Content(noted(*content, true)) : std::nullopt);
        });
    };
    return m_running->future();
}

void MutterScreenGrabber::recorded(const std::vector<PortalDisplay> &displays,
                                   const std::vector<QImage> &images)
{
    std::vector<std::shared_ptr<FrozenDisplay>> frozen;
    for (const QImage &image : images)
        frozen.push_back(frozenFromImage(image));
    finish(noted(frozenContent(displays, frozen), false));
}

MutterScreenGrabber::Content MutterScreenGrabber::shareableContent()
{
    return waitFor(freeze());
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
    if (!snapshot)
        return captureOf(content, display, excluded);
    return snapshot->isOther ? m_other->capture(snapshot->content, display, excluded)
                             : captureOf(snapshot->content, display, excluded);
}

} // namespace tovek
