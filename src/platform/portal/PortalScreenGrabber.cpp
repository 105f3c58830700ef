// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PortalScreenGrabber.h"

#include "foundation/AskAside.h"
#include "foundation/Log.h"
#include "foundation/WhenReady.h"
#include "platform/portal/FrozenContent.h"
#include "platform/portal/HostAppId.h"
#include "platform/portal/PermissionStore.h"
#include "platform/portal/PortalPicture.h"
#include "platform/portal/PortalRequest.h"

#include <QDBusMessage>
#include <QTimer>

#include <algorithm>

namespace tovek {

namespace {

using namespace std::chrono_literals;

/// Large desktops take seconds to be written.
constexpr auto pictureLimit = 8s;
/// A person may be asked first.
constexpr auto questionLimit = 60s;
/// After the overlays have come.
constexpr auto memoryLingering = 300ms;

} // namespace

/// What a picture was cut into.
struct PortalScreenGrabber::Cut
{
    std::vector<QImage> images; ///< one a display
    QString error;
    FileState file;

    static Cut of(const PortalPicture &picture, const std::vector<PortalDisplay> &displays)
    {
        if (picture.image.isNull())
            return {{}, picture.error, {}};
        const std::vector<QRect> parts = partsOfPicture(picture.image.size(), displays);
        if (parts.empty())
            return {{}, QStringLiteral("the desktop's picture does not show these screens"), {}};
        Cut cut{{}, {}, picture.state};
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

PortalScreenGrabber::PortalScreenGrabber(std::shared_ptr<PortalBus> bus, Desktop desktop)
    : m_bus(std::move(bus))
    , m_desktop(std::move(desktop))
    , m_early(m_desktop.folders)
{
    if (m_desktop.growing)
        m_early.onRows = [this](const QImage &picture, int rows) { grow(picture, rows); };
    m_early.onRead = [this](const PortalPicture &picture) { prepare(picture); };
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
        PortalRequest::send(*m_bus, ask, {{QStringLiteral("interactive"), false}}, questionLimit,
                            this, [this](const PortalAnswer &answer) {
                                if (answer.kind == PortalAnswer::Kind::given)
                                    take(answer.results.value(QStringLiteral("uri")).toString());
                                else
                                    fail(answer.reason());
                            });
    // Looked up while the portal works.
    request->setLimit(limit());
    request->onLate = [](const QVariantMap &results) {
        dropPortalPicture(results.value(QStringLiteral("uri")).toString());
    };
    return future;
}

PortalScreenGrabber::Content PortalScreenGrabber::shareableContent()
{
    return waitFor(freeze());
}

void PortalScreenGrabber::take(const QString &uri)
{
    const std::vector<PortalDisplay> displays = m_desktop.displays();
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
            : Cut{{}, QStringLiteral("there is not enough memory"), {}};
        if (cut.images.empty())
            return fail(cut.error);
        const bool isPrepared =
            m_prepared && m_prepared->file == cut.file && m_prepared->displays == displays;
        finish(isPrepared ? m_prepared->content : frozenContent(displays, frozenOf(cut.images)));
    });
}

PortalScreenGrabber::Growing *PortalScreenGrabber::growingOf(const QImage &picture)
{
    const auto known = std::find_if(m_growing.begin(), m_growing.end(), [&](const Growing &one) {
        return one.picture.constBits() == picture.constBits();
    });
    return known == m_growing.end() ? nullptr : &*known;
}

void PortalScreenGrabber::grow(const QImage &picture, int rows)
{
    Growing *growing = growingOf(picture);
    if (!growing) {
        if (m_growing.size() == EarlyPictures::mostAtATime)
            return;
        const std::vector<PortalDisplay> displays = m_desktop.displays();
        growing = &m_growing.emplace_back(
            Growing{picture, 0, displays, partsOfPicture(picture.size(), displays), {}});
        const auto isWhole = [](const QRect &part, const PortalDisplay &display) {
            return part.size() == display.native.size();
        };
        if (std::equal(growing->parts.begin(), growing->parts.end(), displays.begin(),
                       displays.end(), isWhole)) {
            for (const QRect &part : growing->parts)
                growing->growing.push_back(m_desktop.growing(part.size()));
        }
    }
    for (size_t i = 0; i < growing->growing.size(); ++i) {
        const QRect fresh(0, growing->rows, picture.width(), rows - growing->rows);
        const QRect part = growing->parts[i] & fresh;
        if (growing->growing[i] && !part.isEmpty())
            growing->growing[i]->addRows(cutOut(picture, part, part.size()));
    }
    growing->rows = rows;
}

void PortalScreenGrabber::prepare(const PortalPicture &picture)
{
    const std::vector<PortalDisplay> displays = m_desktop.displays();
    const std::vector<QRect> parts = partsOfPicture(picture.image.size(), displays);
    std::vector<QImage> images;
    for (size_t i = 0; i < parts.size(); ++i) {
        // Scaling takes its time, and may be for nothing.
        if (parts[i].size() != displays[i].native.size())
            return;
        images.push_back(cutOut(picture.image, parts[i], parts[i].size()));
    }
    if (images.empty())
        return;
    Growing *growing = growingOf(picture.image);
    if (!growing || growing->displays != displays || growing->growing.size() != images.size()) {
        m_prepared = {picture.state, displays, frozenContent(displays, frozenOf(images))};
        return;
    }
    grow(picture.image, picture.image.height());
    std::vector<std::shared_ptr<FrozenDisplay>> frozen;
    for (size_t i = 0; i < images.size(); ++i) {
        auto grown = growing->growing[i] ? growing->growing[i]->finished(images[i]) : nullptr;
        frozen.push_back(grown ? std::move(grown) : frozenFromImage(images[i]));
    }
    m_prepared = {picture.state, displays, frozenContent(displays, frozen)};
}

std::vector<std::shared_ptr<FrozenDisplay>>
PortalScreenGrabber::frozenOf(const std::vector<QImage> &images)
{
    std::vector<std::shared_ptr<FrozenDisplay>> frozen;
    for (const QImage &image : images)
        frozen.push_back(frozenFromImage(image));
    return frozen;
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
    // To give so much memory back takes some milliseconds, for which nobody should wait.
    const auto memory = std::make_shared<std::vector<Growing>>(std::move(m_growing));
    QTimer::singleShot(memoryLingering, this, [memory] { memory->clear(); });
    m_growing.clear();
    m_prepared.reset();
    QPromise<Content> promise = std::move(*m_running);
    m_running.reset();
    promise.addResult(std::move(content));
    promise.finish();
}

QFuture<ScreenGrabber::Result> PortalScreenGrabber::capture(const ShareableContent &content,
                                                            const CaptureDisplay &display,
                                                            const std::vector<quint32> &excluded)
{
    return captureOf(content, display, excluded);
}

std::shared_ptr<FrozenDisplay> PortalScreenGrabber::frozenFromImage(const QImage &image)
{
    const QImage pixels = image.convertToFormat(QImage::Format_RGB32);
    const auto frozen = m_desktop.frozen ? m_desktop.frozen(pixels) : nullptr;
    return frozen ? frozen : std::make_shared<ImageFrozenDisplay>(pixels);
}

} // namespace tovek
