// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeScreenGrabber.h"

#include "foundation/WhenReady.h"

namespace tovek {

QFuture<QImage> FakeFrozenDisplay::pixels()
{
    return readyFuture(m_image);
}

std::optional<ShareableContent> FakeScreenGrabber::shareableContent()
{
    if (!hasContent)
        return std::nullopt;
    ShareableContent content;
    for (const auto &[id, image] : images)
        content.displays.push_back({id, image.rect()});
    content.snapshot = std::make_shared<std::map<quint32, QImage>>(images);
    return content;
}

QFuture<std::optional<ShareableContent>> FakeScreenGrabber::freeze()
{
    if (!freezesSlowly)
        return ScreenGrabber::freeze();
    m_freeze.emplace();
    m_freeze->start();
    return m_freeze->future();
}

void FakeScreenGrabber::finishFreeze()
{
    m_freeze->addResult(shareableContent());
    m_freeze->finish();
}

QFuture<ScreenGrabber::Result> FakeScreenGrabber::capture(const ShareableContent &content,
                                                          const CaptureDisplay &display,
                                                          const std::vector<quint32> &)
{
    const auto held = m_held.find(display.displayId);
    if (held == m_held.end())
        return readyFuture(resultFor(content, display.displayId));
    held->second = std::make_shared<Held>();
    held->second->content = content;
    held->second->promise.start();
    return held->second->promise.future();
}

void FakeScreenGrabber::finish(quint32 displayId)
{
    const std::shared_ptr<Held> held = m_held.at(displayId);
    m_held.erase(displayId);
    held->promise.addResult(resultFor(held->content, displayId));
    held->promise.finish();
}

QImage FakeScreenGrabber::captureFallback(QRect native, const std::vector<quint32> &)
{
    fallbackRects.push_back(native);
    return fallbackImage;
}

std::shared_ptr<FrozenDisplay> FakeScreenGrabber::frozenFromImage(const QImage &image)
{
    return std::make_shared<FakeFrozenDisplay>(image);
}

ScreenGrabber::Result FakeScreenGrabber::resultFor(const ShareableContent &content,
                                                   quint32 displayId) const
{
    if (const auto error = errors.find(displayId); error != errors.end())
        return {nullptr, error->second};
    const auto *snapshot = static_cast<std::map<quint32, QImage> *>(content.snapshot.get());
    if (!snapshot || !snapshot->contains(displayId))
        return {nullptr, QStringLiteral("the display is not part of the content")};
    return {std::make_shared<FakeFrozenDisplay>(snapshot->at(displayId)), {}};
}

} // namespace tovek
