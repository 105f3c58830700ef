// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/capture/WaylandScreenGrabber.h"

#include "foundation/Log.h"
#include "foundation/MainThread.h"
#include "foundation/WhenReady.h"
#include "platform/wayland/capture/WaylandFrozenDisplay.h"
#include "platform/wayland/capture/WaylandPixelFormat.h"

#include <QPromise>

#include <cmath>
#include <cstring>
#include <map>
#include <numeric>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto captureAnswerLimit = 3s;
constexpr auto spareLimit = 5s;
constexpr auto comparisonDelay = 3s; // the program has started, or the capture is over
constexpr int mostComparisons = 4; // they cost a moment each, in which somebody may be dragging
constexpr int largestCursor = 256; // what changes more than that is something else

struct WaylandSnapshot
{
    std::map<quint32, ScreenGrabber::Result> results;
};

/// The smallest rectangle in which two pictures of one shape differ; all of it for two shapes.
QRect differenceOf(const SharedPixels &one, const SharedPixels &other)
{
    const QRect bounds(QPoint(), one.size());
    if (one.size() != other.size() || one.bytesPerLine() != other.bytesPerLine())
        return bounds;
    QRect difference;
    const qsizetype bytesPerPixel = one.bytesPerLine() / std::max(1, one.size().width());
    for (int y = 0; y < bounds.height(); ++y) {
        const uchar *a = one.data() + y * one.bytesPerLine();
        const uchar *b = other.data() + y * other.bytesPerLine();
        if (std::memcmp(a, b, size_t(one.bytesPerLine())) == 0)
            continue;
        const auto first = std::mismatch(a, a + one.bytesPerLine(), b).first - a;
        qsizetype last = one.bytesPerLine() - 1;
        while (a[last] == b[last])
            --last;
        const int left = int(first / bytesPerPixel);
        difference |= QRect(left, y, int(last / bytesPerPixel) - left + 1, 1);
    }
    return difference;
}

} // namespace

std::shared_ptr<WaylandFrozenDisplay> WaylandFrozenDisplay::fromImage(const QImage &image)
{
    auto pixels = SharedPixels::fromImage(image);
    return pixels ? std::make_shared<WaylandFrozenDisplay>(std::move(pixels)) : nullptr;
}

QFuture<QImage> WaylandFrozenDisplay::pixels()
{
    if (m_future)
        return *m_future;
    const auto promise = std::make_shared<QPromise<QImage>>();
    promise->start();
    m_future = promise->future();
    const auto fill = [promise, pixels = m_pixels] {
        // A compositor need not fill the byte that is not looked at; the toolkit takes it for
        // opaque without looking, and copies it to where it counts. Nobody sees it change.
        auto *pixel = reinterpret_cast<uint32_t *>(pixels->data());
        const auto *end = pixel + pixels->bytesPerLine() / 4 * pixels->size().height();
        for (; pixel != end; ++pixel)
            *pixel |= 0xff000000U;
        promise->addResult(SharedPixels::image(pixels, QImage::Format_RGB32));
        promise->finish();
    };
    if (!m_thread.start(fill))
        fill();
    return *m_future;
}

namespace {

/// Where each output begins along one axis: right behind those that end before it, or as far from
/// the first as it is in points, whichever is more.
std::vector<int> packed(const std::vector<WaylandOutput> &outputs, double scale,
                        const std::function<int(const QRect &)> &start,
                        const std::function<int(const QSize &)> &length)
{
    std::vector<size_t> order(outputs.size());
    std::iota(order.begin(), order.end(), size_t(0));
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        return start(outputs[a].logical) < start(outputs[b].logical);
    });
    std::vector<int> starts(outputs.size());
    for (size_t i = 0; i < order.size(); ++i) {
        const QRect &logical = outputs[order[i]].logical;
        const int distance = start(logical) - start(outputs[order.front()].logical);
        int at = int(std::lround(distance * scale));
        for (size_t before = 0; before < i; ++before) {
            const WaylandOutput &other = outputs[order[before]];
            if (start(other.logical) + length(other.logical.size()) <= start(logical))
                at = std::max(at, starts[order[before]] + length(other.native));
        }
        starts[order[i]] = at;
    }
    return starts;
}

} // namespace

std::vector<QRect> nativeRects(const std::vector<WaylandOutput> &outputs)
{
    double smallest = outputs.empty() ? 1 : outputs.front().scale;
    for (const WaylandOutput &output : outputs)
        smallest = std::min(smallest, output.scale);
    const std::vector<int> lefts = packed(
        outputs, smallest, [](const QRect &rect) { return rect.x(); },
        [](const QSize &size) { return size.width(); });
    const std::vector<int> tops = packed(
        outputs, smallest, [](const QRect &rect) { return rect.y(); },
        [](const QSize &size) { return size.height(); });
    std::vector<QRect> rects;
    for (size_t i = 0; i < outputs.size(); ++i)
        rects.emplace_back(QPoint(lefts[i], tops[i]), outputs[i].native);
    return rects;
}

std::optional<QRect> nativeRectOf(const QRectF &points, const std::vector<WaylandOutput> &outputs)
{
    const std::vector<QRect> natives = nativeRects(outputs);
    std::optional<size_t> most;
    const auto shown = [&](size_t i) {
        const QSizeF part = (QRectF(outputs[i].logical) & points).size();
        return part.isEmpty() ? 0 : part.width() * part.height();
    };
    for (size_t i = 0; i < outputs.size(); ++i) {
        if (shown(i) > (most ? shown(*most) : 0))
            most = i;
    }
    if (!most)
        return std::nullopt;
    const WaylandOutput &output = outputs[*most];
    const QRectF place = points.translated(-output.logical.topLeft());
    // The compositor rounds each edge by itself.
    const auto pixel = [&](double point) { return int(std::lround(point * output.scale)); };
    const QPoint from(pixel(place.left()), pixel(place.top()));
    const QPoint to(pixel(place.left() + place.width()), pixel(place.top() + place.height()));
    return QRect(from, QSize(to.x() - from.x(), to.y() - from.y()))
        .translated(natives[*most].topLeft());
}

WaylandScreenGrabber::WaylandScreenGrabber(std::shared_ptr<WaylandConnection> connection,
                                           std::shared_ptr<WaylandOutputs> outputs)
    : m_connection(std::move(connection))
    , m_outputs(std::move(outputs))
    , m_shm(m_connection->bind<wl_shm>(wl_shm_interface, 1))
{
    m_dropSpare.setSingleShot(true);
    m_dropSpare.setInterval(spareLimit);
    connect(&m_dropSpare, &QTimer::timeout, this, [this] { m_spare.clear(); });
}

WaylandScreenGrabber::~WaylandScreenGrabber()
{
    if (m_shm)
        wl_shm_destroy(m_shm);
}

void WaylandScreenGrabber::prepare()
{
    m_dropSpare.start();
    if (!m_spare.empty())
        return;
    for (const WaylandOutput &output : m_outputs->list()) {
        const QSize size = output.transform & 1 ? output.native.transposed() : output.native;
        if (auto pixels = SharedPixels::create(size)) {
            pixels->populate();
            m_spare.push_back(std::move(pixels));
        }
    }
}

std::shared_ptr<SharedPixels> WaylandScreenGrabber::takePixels(QSize size, qsizetype bytesPerLine)
{
    const auto ready = std::find_if(m_spare.begin(), m_spare.end(), [&](const auto &pixels) {
        return pixels->size() == size && pixels->bytesPerLine() == bytesPerLine;
    });
    if (ready == m_spare.end())
        return SharedPixels::create(size, bytesPerLine);
    auto pixels = std::move(*ready);
    m_spare.erase(ready);
    return pixels;
}

std::optional<ShareableContent> WaylandScreenGrabber::shareableContent()
{
    const std::vector<WaylandOutput> outputs = m_outputs->list();
    if (m_cursorHider)
        m_cursorHider->hide(outputs);
    const auto captures = takeAll(Cursor::leftOut);
    if (m_cursorHider) {
        m_cursorHider->show();
        if (m_cursorHider->isInVain())
            m_cursorHider.reset();
        else if (m_comparisons < mostComparisons)
            m_compareCursors.start();
    }
    m_spare.clear();

    const auto snapshot = std::make_shared<WaylandSnapshot>();
    const std::vector<QRect> rects = nativeRects(outputs);
    ShareableContent content;
    content.snapshot = snapshot;
    m_failure.clear();
    for (size_t i = 0; i < outputs.size(); ++i) {
        Result result = resultOf(*captures[i]);
        if (!result.frozen && m_failure.isEmpty())
            m_failure = result.error;
        content.displays.push_back({outputs[i].id, rects[i]});
        snapshot->results.emplace(outputs[i].id, std::move(result));
    }
    const bool hasAny = std::any_of(snapshot->results.begin(), snapshot->results.end(),
                                    [](const auto &entry) { return bool(entry.second.frozen); });
    if (hasAny)
        return content;
    if (m_failure.isEmpty())
        m_failure = QStringLiteral("there is no screen");
    logLine(QStringLiteral("Failed to capture: ") + m_failure);
    return std::nullopt;
}

std::vector<std::unique_ptr<OutputCapture>> WaylandScreenGrabber::takeAll(Cursor cursor)
{
    Q_ASSERT(isMainThread());
    // All of them are asked before any answer is looked at: one instant for all.
    std::vector<std::unique_ptr<OutputCapture>> captures;
    for (const WaylandOutput &output : m_outputs->list())
        captures.push_back(begin(output, cursor));
    wait(captures, captureAnswerLimit);
    return captures;
}

void WaylandScreenGrabber::distrustCursor()
{
    m_cursorHider = CursorHider::create(m_connection);
    m_compareCursors.setSingleShot(true);
    m_compareCursors.setInterval(comparisonDelay);
    connect(&m_compareCursors, &QTimer::timeout, this, [this] { compareCursors(); });
    if (m_cursorHider)
        m_compareCursors.start();
}

void WaylandScreenGrabber::compareCursors()
{
    // A cursor that comes only when it is asked for is one of the hardware's. Where both pictures
    // are alike it is in both, or it was nowhere to be seen.
    ++m_comparisons;
    const auto without = takeAll(Cursor::leftOut);
    const auto with = takeAll(Cursor::painted);
    for (size_t i = 0; i < without.size() && i < with.size(); ++i) {
        if (without[i]->state != OutputCapture::State::done
            || with[i]->state != OutputCapture::State::done)
            continue;
        const QRect difference = differenceOf(*without[i]->pixels, *with[i]->pixels);
        if (!difference.isEmpty() && difference.width() <= largestCursor
            && difference.height() <= largestCursor) {
            // sway (1.7 to 1.12) goes on drawing a cursor itself that it was asked to paint once,
            // until that is set anew: it would be in the pictures that follow.
            m_cursorHider->hide(m_outputs->list());
            m_cursorHider->show();
            m_cursorHider.reset();
            return;
        }
    }
}

void WaylandScreenGrabber::wait(const std::vector<std::unique_ptr<OutputCapture>> &captures,
                                std::chrono::milliseconds limit)
{
    m_connection->waitFor(
        [&] {
            return std::all_of(captures.begin(), captures.end(), [](const auto &capture) {
                return capture->state != OutputCapture::State::waiting;
            });
        },
        limit);
}

ScreenGrabber::Result WaylandScreenGrabber::resultOf(OutputCapture &capture)
{
    if (capture.state == OutputCapture::State::waiting)
        return {nullptr, QStringLiteral("the compositor does not answer")};
    if (capture.state == OutputCapture::State::failed)
        return {nullptr, capture.error};
    const QImage::Format format = imageFormat(capture.shmFormat);
    std::shared_ptr<SharedPixels> pixels = std::move(capture.pixels);
    if (format != QImage::Format_RGB32 || capture.transform != WL_OUTPUT_TRANSFORM_NORMAL
        || capture.isUpsideDown)
        pixels = SharedPixels::fromImage(
            upright(SharedPixels::image(pixels, format), capture.transform, capture.isUpsideDown));
    if (!pixels)
        return {nullptr, QStringLiteral("there is no memory for the picture")};
    return {std::make_shared<WaylandFrozenDisplay>(std::move(pixels)), {}};
}

QFuture<ScreenGrabber::Result> WaylandScreenGrabber::capture(const ShareableContent &content,
                                                             const CaptureDisplay &display,
                                                             const std::vector<quint32> &)
{
    if (const auto snapshot = std::static_pointer_cast<WaylandSnapshot>(content.snapshot)) {
        const auto found = snapshot->results.find(display.displayId);
        if (found != snapshot->results.end())
            return readyFuture(found->second);
    }
    return readyFuture(Result{nullptr, QStringLiteral("the screen was not there")});
}

std::shared_ptr<FrozenDisplay> WaylandScreenGrabber::frozenFromImage(const QImage &image)
{
    return WaylandFrozenDisplay::fromImage(image);
}

} // namespace tovek
