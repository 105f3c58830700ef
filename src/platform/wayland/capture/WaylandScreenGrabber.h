// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/ScreenGrabber.h"
#include "platform/wayland/SharedPixels.h"
#include "platform/wayland/capture/CursorHider.h"

#include <QTimer>

namespace tovek {

/// The picture of one output on its way. Destroying it gives up.
class OutputCapture
{
public:
    virtual ~OutputCapture() = default;

    enum class State { waiting, done, failed };
    State state = State::waiting;
    QString error; ///< when it failed
    std::shared_ptr<SharedPixels> pixels;
    uint32_t shmFormat = WL_SHM_FORMAT_XRGB8888;
    int32_t transform = WL_OUTPUT_TRANSFORM_NORMAL;
    bool isUpsideDown = false;

protected:
    void fail(const QString &reason)
    {
        state = State::failed;
        error = reason;
    }
};

/// Takes the pictures of all outputs at one instant, over a protocol that copies them into memory
/// of ours. Main thread only.
class WaylandScreenGrabber : public QObject, public ScreenGrabber
{
public:
    WaylandScreenGrabber(std::shared_ptr<WaylandConnection> connection,
                         std::shared_ptr<WaylandOutputs> outputs);
    ~WaylandScreenGrabber() override;

    void prepare() override;
    /// Waits for the compositor, three seconds at most.
    std::optional<ShareableContent> shareableContent() override;
    QFuture<Result> capture(const ShareableContent &content, const CaptureDisplay &display,
                            const std::vector<quint32> &excludedWindows) override;
    /// There is no other way.
    QImage captureFallback(QRect, const std::vector<quint32> &) override { return {}; }
    std::shared_ptr<FrozenDisplay> frozenFromImage(const QImage &image) override;
    QString failure() const override { return m_failure; }

protected:
    enum class Cursor { leftOut, painted };
    /// Asks for the picture; the answer comes while the connection is waited on.
    virtual std::unique_ptr<OutputCapture> begin(const WaylandOutput &output, Cursor cursor) = 0;
    /// For compositors that leave the cursor out only when the hardware draws it: from now on it is
    /// hidden for each picture, unless a comparison shows that this is not needed.
    void distrustCursor();
    /// Returns when none of them waits any more, or after the limit.
    virtual void wait(const std::vector<std::unique_ptr<OutputCapture>> &captures,
                      std::chrono::milliseconds limit);
    WaylandConnection &connection() { return *m_connection; }
    wl_shm *shm() { return m_shm; }
    /// Memory of this shape, made before where that was foreseen.
    std::shared_ptr<SharedPixels> takePixels(QSize size, qsizetype bytesPerLine);

private:
    void compareCursors();
    std::vector<std::unique_ptr<OutputCapture>> takeAll(Cursor cursor);
    Result resultOf(OutputCapture &capture);

    std::shared_ptr<WaylandConnection> m_connection;
    std::shared_ptr<WaylandOutputs> m_outputs;
    wl_shm *m_shm;
    std::vector<std::shared_ptr<SharedPixels>> m_spare;
    QTimer m_dropSpare;
    std::unique_ptr<CursorHider> m_cursorHider; ///< null where the cursor is left out anyway
    QTimer m_compareCursors;
    int m_comparisons = 0;
    QString m_failure;
};

/// The native pixels of each output in one plane, arranged as the outputs are, without overlaps and
/// without gaps that the outputs have not: Wayland has no such plane of its own.
std::vector<QRect> nativeRects(const std::vector<WaylandOutput> &outputs);
/// A rectangle of the desktop's points in that plane, by the output that shows most of it; absent
/// where none shows any of it.
std::optional<QRect> nativeRectOf(const QRectF &points, const std::vector<WaylandOutput> &outputs);

} // namespace tovek
