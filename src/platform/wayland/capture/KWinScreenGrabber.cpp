// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/capture/KWinScreenGrabber.h"

#include "foundation/MainThread.h"
#include "platform/wayland/capture/KWinPictures.h"

#include <QDeadlineTimer>

#include <poll.h>

namespace tovek {

namespace {

constexpr int replyCheckMs = 2; // while the reply, which no descriptor announces, is not there

} // namespace

/// A picture, and a second one if the first came without its end (KWin 6.7 does not always flush).
class KWinCapture : public OutputCapture
{
public:
    explicit KWinCapture(const WaylandOutput &output)
        : m_output(output)
        , m_picture(std::make_unique<KWinPicture>(output.name, output.native))
    {
    }

    int descriptor() const { return m_picture->descriptor(); }
    void advance()
    {
        if (state != State::waiting || !m_picture->advance())
            return;
        QImage image = m_picture->image();
        if (image.isNull() && !m_picture->isRefused() && !std::exchange(m_hasRetried, true)) {
            m_picture = std::make_unique<KWinPicture>(m_output.name, m_output.native);
            return;
        }
        if (image.isNull())
            return fail(m_picture->error());
        // A fraction of a pixel may have been rounded the other way.
        if (image.size() != m_output.native)
            image = image.copy(QRect(QPoint(), m_output.native));
        pixels = SharedPixels::fromImage(image);
        if (!pixels)
            return fail(QStringLiteral("there is no memory for the picture"));
        state = State::done;
    }

private:
    const WaylandOutput m_output;
    std::unique_ptr<KWinPicture> m_picture;
    bool m_hasRetried = false;
};

std::unique_ptr<ScreenGrabber>
KWinScreenGrabber::create(std::shared_ptr<WaylandConnection> connection,
                          std::shared_ptr<WaylandOutputs> outputs)
{
    if (kwinAccess() == KWinAccess::absent)
        return nullptr;
    return std::unique_ptr<ScreenGrabber>(
        new KWinScreenGrabber(std::move(connection), std::move(outputs)));
}

std::unique_ptr<OutputCapture> KWinScreenGrabber::begin(const WaylandOutput &output, Cursor)
{
    Q_ASSERT(isMainThread());
    return std::make_unique<KWinCapture>(output);
}

void KWinScreenGrabber::wait(const std::vector<std::unique_ptr<OutputCapture>> &captures,
                             std::chrono::milliseconds limit)
{
    const QDeadlineTimer deadline(limit);
    while (!deadline.hasExpired()) {
        std::vector<pollfd> descriptors;
        for (const auto &capture : captures) {
            auto &picture = static_cast<KWinCapture &>(*capture);
            picture.advance();
            if (picture.state == OutputCapture::State::waiting)
                descriptors.push_back({picture.descriptor(), POLLIN, 0});
        }
        if (descriptors.empty())
            return;
        poll(descriptors.data(), descriptors.size(), replyCheckMs);
    }
}

} // namespace tovek
