// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/FrozenContent.h"

#include "foundation/WhenReady.h"

#include <QEventLoop>

#include <map>

namespace tovek {

namespace {

struct FrozenSnapshot
{
    std::map<quint32, std::shared_ptr<FrozenDisplay>> displays;
};

} // namespace

ShareableContent frozenContent(const std::vector<PortalDisplay> &displays,
                               const std::vector<std::shared_ptr<FrozenDisplay>> &frozen)
{
    const auto snapshot = std::make_shared<FrozenSnapshot>();
    ShareableContent content;
    for (size_t i = 0; i < displays.size(); ++i) {
        content.displays.push_back({displays[i].id, displays[i].native});
        snapshot->displays.emplace(displays[i].id, frozen[i]);
    }
    content.snapshot = snapshot;
    return content;
}

QFuture<ScreenGrabber::Result> captureOf(const ShareableContent &frozenContent,
                                         const CaptureDisplay &display,
                                         const std::vector<quint32> &excludedWindows)
{
    using Result = ScreenGrabber::Result;
    const auto *snapshot = static_cast<FrozenSnapshot *>(frozenContent.snapshot.get());
    if (!excludedWindows.empty())
        return readyFuture(Result{nullptr, QStringLiteral("windows cannot be left out")});
    if (!snapshot || !snapshot->displays.contains(display.displayId))
        return readyFuture(
            Result{nullptr, QStringLiteral("the display is not part of the content")});
    return readyFuture(Result{snapshot->displays.at(display.displayId), {}});
}

std::optional<ShareableContent> waitFor(const QFuture<std::optional<ShareableContent>> &content)
{
    QEventLoop loop;
    if (!content.isFinished()) {
        whenOver(content, &loop,
                 [&loop](const QFuture<std::optional<ShareableContent>> &) { loop.quit(); });
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    return content.result();
}

} // namespace tovek
