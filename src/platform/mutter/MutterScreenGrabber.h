// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/ScreenGrabber.h"
#include "platform/mutter/MutterScreenCast.h"

#include <QPromise>

namespace tovek {

/// Frames of a recording that mutter makes for its own programs, over an interface that may change
/// with any of its versions; another grabber where that fails. Its panel shows the sign of a
/// recording meanwhile, and so do the frames. Main thread only.
class MutterScreenGrabber : public QObject, public ScreenGrabber
{
public:
    using Content = std::optional<ShareableContent>;
    using Displays = std::function<std::vector<PortalDisplay>()>;

    /// `displays` are the screens as they are now.
    MutterScreenGrabber(QString program, Displays displays, std::unique_ptr<ScreenGrabber> other);
    ~MutterScreenGrabber() override;

    void prepare() override { m_other->prepare(); }
    /// As `freeze`, waiting, while events are handled.
    Content shareableContent() override;
    QFuture<Content> freeze() override;
    QFuture<Result> capture(const ShareableContent &content, const CaptureDisplay &display,
                            const std::vector<quint32> &excludedWindows) override;
    QImage captureFallback(QRect native, const std::vector<quint32> &excluded) override
    {
        return m_other->captureFallback(native, excluded);
    }
    std::shared_ptr<FrozenDisplay> frozenFromImage(const QImage &image) override
    {
        return m_other->frozenFromImage(image);
    }
    /// How long it may take.
    void setLimit(std::chrono::milliseconds limit) { m_limit = limit; }
    QString failure() const override { return m_other->failure(); }

private:
    void recorded(const std::vector<PortalDisplay> &displays, const std::vector<QImage> &images);
    void finish(Content content);

    const QString m_program;
    const Displays m_displays;
    const std::unique_ptr<ScreenGrabber> m_other;
    std::chrono::milliseconds m_limit = std::chrono::seconds(3);
    std::unique_ptr<MutterScreenCast> m_cast;
    std::optional<QPromise<Content>> m_running;
};

} // namespace tovek
