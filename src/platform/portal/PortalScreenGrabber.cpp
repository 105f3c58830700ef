// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PortalScreenGrabber.h"

#include "foundation/AskAside.h"
#include "foundation/Log.h"
#include "foundation/WhenReady.h"
#include "platform/portal/HostAppId.h"
#include "platform/portal/PermissionStore.h"
#include "platform/portal/PortalPicture.h"
#include "platform/portal/PortalRequest.h"

#include <QDBusMessage>
#include <QEventLoop>

#include <map>

namespace tovek {

namespace {

using namespace std::chrono_literals;

/// Large desktops take seconds to be written.
constexpr auto pictureLimit = 8s;
/// A person may be asked first.
constexpr auto questionLimit = 60s;

struct PortalSnapshot
{
    std::map<quint32, std::shared_ptr<FrozenDisplay>> displays;
};

} // namespace

/// What a picture was cut into.
struct PortalScreenGrabber::Cut
{
    std::vector<QImage> images; ///< one a display
    QString error;

    static Cut of(const PortalPicture &picture, const std::vector<PortalDisplay> &displays)
    {
        if (picture.image.isNull())
            return {{}, picture.error};
        const std::vector<QRect> parts = partsOfPicture(picture.image.size(), displays);
        if (parts.empty())
            return {{}, QStringLiteral("the desktop's picture does not show these screens")};
        Cut cut;
        for (size_t i = 0; i < parts.size(); ++i)
            cut.images.push_back(cutOut(picture.image, parts[i], displays[i].native.size()));
        return cut;
    }
};

ImageFrozenDisplay::ImageFrozenDisplay(QImage image) : m_image(std::move(image)) { }

QFuture<QImage> ImageFrozenDisplay::pixels()
{
    return readyFuture(m_image);
}

PortalScreenGrabber::PortalScreenGrabber(std::shared_ptr<PortalBus> bus, Displays displays,
                                         const QStringList &folders)
    : m_bus(std::move(bus))
    , m_displays(std::move(displays))
    , m_early(folders)
{
}

PortalScreenGrabber::~PortalScreenGrabber()
{
    if (m_running)
        finish(std::nullopt);
}

std::chrono::milliseconds PortalScreenGrabber::limit() const
{
    if (m_limit)
        return *m_limit;
    const bool isKnown = !isInSandbox()
        && storedScreenshotAnswer(m_bus->connection(), m_bus->appId()) == StoredAnswer::yes;
    return isKnown ? pictureLimit : questionLimit;
}

QFuture<PortalScreenGrabber::Content> PortalScreenGrabber::freeze()
{
    if (m_running)
        return m_running->future();
    m_failure.clear();
    m_running.emplace();
    m_running->start();
    m_early.start();
    const QFuture<Content> future = m_running->future();
    QDBusMessage ask = Portal::call(QStringLiteral("Screenshot"), QStringLiteral("Screenshot"));
    ask << QString();
    auto *request =
        PortalRequest::send(*m_bus, ask, {{QStringLiteral("interactive"), false}}, limit(), this,
                            [this](const PortalAnswer &answer) {
                                if (answer.kind == PortalAnswer::Kind::given)
                                    take(answer.results.value(QStringLiteral("uri")).toString());
                                else
                                    fail(answer.reason());
                            });
    request->onLate = [](const QVariantMap &results) {
        dropPortalPicture(results.value(QStringLiteral("uri")).toString());
    };
    return future;
}

PortalScreenGrabber::Content PortalScreenGrabber::shareableContent()
{
    const QFuture<Content> content = freeze();
    QEventLoop loop;
    if (!content.isFinished()) {
        whenOver(content, &loop, [&loop](const QFuture<Content> &) { loop.quit(); });
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    return content.result();
}

void PortalScreenGrabber::take(const QString &uri)
{
    const std::vector<PortalDisplay> displays = m_displays();
    // The disk may be slow, and the picture large.
    const auto work = askAside<Cut>([uri, displays, early = m_early.take(uri)]() mutable {
        if (early)
            early->waitForFinished();
        const bool isRead = early && early->resultCount() > 0;
        return Cut::of(takePortalPicture(uri, isRead ? early->result() : PortalPicture()),
                       displays);
    });
    whenOver(work, this, [this, displays](const QFuture<Cut> &finished) {
        const Cut cut = finished.resultCount() > 0
            ? finished.result()
            : Cut{{}, QStringLiteral("there is not enough memory")};
        if (cut.images.empty())
            return fail(cut.error);
        const auto snapshot = std::make_shared<PortalSnapshot>();
        ShareableContent content;
        for (size_t i = 0; i < displays.size(); ++i) {
            content.displays.push_back({displays[i].id, displays[i].native});
            snapshot->displays.emplace(displays[i].id,
                                       std::make_shared<ImageFrozenDisplay>(cut.images[i]));
        }
        content.snapshot = snapshot;
        finish(content);
    });
}

void PortalScreenGrabber::fail(const QString &reason)
{
    m_failure = reason;
    logLine(QStringLiteral("Failed to capture: ") + m_failure);
    finish(std::nullopt);
}

void PortalScreenGrabber::finish(Content content)
{
    m_early.stop();
    QPromise<Content> promise = std::move(*m_running);
    m_running.reset();
    promise.addResult(std::move(content));
    promise.finish();
}

QFuture<ScreenGrabber::Result> PortalScreenGrabber::capture(const ShareableContent &content,
                                                            const CaptureDisplay &display,
                                                            const std::vector<quint32> &excluded)
{
    const auto *snapshot = static_cast<PortalSnapshot *>(content.snapshot.get());
    if (!excluded.empty())
        return readyFuture(Result{nullptr, QStringLiteral("windows cannot be left out")});
    if (!snapshot || !snapshot->displays.contains(display.displayId))
        return readyFuture(
            Result{nullptr, QStringLiteral("the display is not part of the content")});
    return readyFuture(Result{snapshot->displays.at(display.displayId), {}});
}

std::shared_ptr<FrozenDisplay> PortalScreenGrabber::frozenFromImage(const QImage &image)
{
    return std::make_shared<ImageFrozenDisplay>(image.convertToFormat(QImage::Format_RGB32));
}

} // namespace tovek
