// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "command/ScreenShot.h"

#include "command/ShotComposition.h"
#include "foundation/WhenReady.h"
#include "platform/FrontmostApp.h"
#include "platform/ScreenGrabber.h"

#include <QEventLoop>
#include <QTimer>

#include <algorithm>

namespace tovek {

namespace {

constexpr std::chrono::seconds patience(10);

/// An empty value where none came in time.
template <typename T>
T waitFor(QFuture<T> future)
{
    QEventLoop loop;
    T result{};
    whenFinished(future, &loop, [&](const T &value) {
        result = value;
        loop.quit();
    });
    if (!future.isFinished()) {
        QTimer::singleShot(patience, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return result;
}

Shot failure(const QString &reason)
{
    return {{}, reason};
}

QString namesOf(const std::vector<Screen> &screens)
{
    QStringList names;
    for (const Screen &screen : screens)
        names += screen.name;
    return names.join(QStringLiteral(", "));
}

/// The area in native pixels; empty with a reason where there is none.
QRect areaOf(const ShotCommand &command, const std::vector<Screen> &screens,
             const FrontmostApp &frontmostApp, QString &error)
{
    std::vector<QRect> natives;
    QRect desktop;
    for (const Screen &screen : screens) {
        natives.push_back(screen.native);
        desktop |= screen.native;
    }
    switch (command.area) {
    case ShotArea::allScreens:
        return desktop;
    case ShotArea::screen: {
        const auto found = std::find_if(screens.begin(), screens.end(), [&](const Screen &screen) {
            return screen.name == command.screen;
        });
        if (found != screens.end())
            return found->native;
        error = QStringLiteral("there is no screen %1; there are: %2")
                    .arg(command.screen, namesOf(screens));
        return {};
    }
    case ShotArea::region: {
        const QRect area = areaOnDesktop(command.region, natives);
        if (area.isEmpty())
            error = QStringLiteral("the region lies outside the desktop of %1x%2 pixels")
                        .arg(desktop.width())
                        .arg(desktop.height());
        return area;
    }
    case ShotArea::activeWindow: {
        const std::optional<QRect> window = frontmostApp.activeWindowFrame();
        const QRect area = window ? areaOnDesktop(*window, natives) : QRect();
        if (area.isEmpty())
            error = QStringLiteral("no window is active, or the desktop does not tell which");
        return area;
    }
    }
    return {};
}

/// The scale of the screen that shows most of the area.
double scaleOf(const QRect &area, const std::vector<Screen> &screens)
{
    double scale = 1;
    qint64 most = 0;
    for (const Screen &screen : screens) {
        const QRect part = screen.native & area;
        const qint64 pixels = qint64(part.width()) * part.height();
        if (!part.isEmpty() && pixels > most) {
            most = pixels;
            scale = screen.scale;
        }
    }
    return scale;
}

} // namespace

Shot takeShot(const ShotCommand &command, const ShotServices &services)
{
    const std::optional<ShareableContent> content = services.grabber.shareableContent();
    const std::vector<Screen> screens = services.screens.all();
    if (!content || screens.empty())
        return failure(QStringLiteral("the screens of this session cannot be captured"));
    QString error;
    const QRect area = areaOf(command, screens, services.frontmostApp, error);
    if (!error.isEmpty())
        return failure(error);

    std::vector<ScreenPixels> parts;
    for (const CaptureDisplay &display : content->displays) {
        if (!display.native.intersects(area))
            continue;
        const auto captured = waitFor(services.grabber.capture(*content, display, {}));
        QImage pixels = captured.frozen ? waitFor(captured.frozen->pixels()) : QImage();
        if (pixels.size() != display.native.size())
            return failure(captured.error.isEmpty()
                               ? QStringLiteral("the pixels of a screen did not arrive")
                               : captured.error);
        parts.push_back({display.native, std::move(pixels)});
    }
    Image image{composeArea(area, parts), {}};
    if (image.isEmpty())
        return failure(QStringLiteral("there is not enough memory for the picture"));
    const double scale = scaleOf(area, screens);
    image.size = {area.width() / scale, area.height() / scale};
    return {image, {}};
}

} // namespace tovek
