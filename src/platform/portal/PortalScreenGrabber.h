// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/ScreenGrabber.h"
#include "platform/portal/EarlyPictures.h"
#include "platform/portal/PictureCut.h"
#include "platform/portal/PortalBus.h"

#include <QPromise>

#include <memory>

namespace tovek {

/// A display in memory, for which there is nothing to wait.
class ImageFrozenDisplay : public FrozenDisplay
{
public:
    explicit ImageFrozenDisplay(QImage image);
    QSize size() const override { return m_image.size(); }
    QFuture<QImage> pixels() override;

private:
    const QImage m_image;
};

/// Pictures of the whole desktop as its portal takes them: one at a time, left in a file, with
/// whatever the desktop shows and sounds meanwhile. Main thread only.
class PortalScreenGrabber : public QObject, public ScreenGrabber
{
public:
    using Content = std::optional<ShareableContent>;
    struct Desktop
    {
        /// The screens as they are now, in the units of the desktop's layout.
        std::function<std::vector<PortalDisplay>()> displays;
        /// A display as the overlays show it soonest; unset, it stays in memory.
        std::function<std::shared_ptr<FrozenDisplay>(const QImage &)> frozen;
        /// A display of this size whose pixels are on their way; unset where nothing is won by it.
        std::function<std::unique_ptr<GrowingDisplay>(QSize)> growing;
        /// In which pictures are read before the portal names them.
        QStringList folders;
    };

    PortalScreenGrabber(std::shared_ptr<PortalBus> bus, Desktop desktop);
    ~PortalScreenGrabber() override;

    void prepare() override { }
    /// As `freeze`, waiting, while events are handled.
    Content shareableContent() override;
    QFuture<Content> freeze() override;
    QFuture<Result> capture(const ShareableContent &content, const CaptureDisplay &display,
                            const std::vector<quint32> &excludedWindows) override;
    /// There is no other way.
    QImage captureFallback(QRect, const std::vector<quint32> &) override { return {}; }
    std::shared_ptr<FrozenDisplay> frozenFromImage(const QImage &image) override;
    QString failure() const override { return m_failure; }

    /// How long the portal may take. Unset, it is longer where the user may be asked first.
    void setLimit(std::chrono::milliseconds limit) { m_limit = limit; }

private:
    struct Cut;
    /// What a file that may never be named would show.
    struct Prepared
    {
        FileState file;
        std::vector<PortalDisplay> displays;
        ShareableContent content;
    };
    /// The same while it is written.
    struct Growing
    {
        QImage picture;
        int rows = 0;
        std::vector<PortalDisplay> displays;
        std::vector<QRect> parts;
        std::vector<std::unique_ptr<GrowingDisplay>> growing; ///< none where the parts are scaled
    };
    std::chrono::milliseconds limit() const;
    Growing *growingOf(const QImage &picture);
    void grow(const QImage &picture, int rows);
    void prepare(const PortalPicture &picture);
    std::vector<std::shared_ptr<FrozenDisplay>> frozenOf(const std::vector<QImage> &images);
    void take(const QString &uri);
    void finish(Content content);
    void fail(const QString &reason);

    std::shared_ptr<PortalBus> m_bus;
    const Desktop m_desktop;
    std::optional<std::chrono::milliseconds> m_limit;
    EarlyPictures m_early;
    std::vector<Growing> m_growing;
    std::optional<Prepared> m_prepared;
    std::optional<QPromise<Content>> m_running;
    QString m_failure;
};

} // namespace tovek
