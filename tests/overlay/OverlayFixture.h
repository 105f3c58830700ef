// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "fakes/FakeClock.h"
#include "fakes/FakeOverlayShell.h"
#include "fakes/FakeScreenGrabber.h"
#include "fakes/FakeScreens.h"
#include "foundation/UserDefaults.h"
#include "overlay/OverlayWindow.h"

#include <QMouseEvent>
#include <QTest>

namespace tovek {

inline QImage plain(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    return image;
}

/// A window over a screen of 400 by 300 points at scale 2, and what it reported.
struct OverlayFixture
{
    explicit OverlayFixture(CaptureMode mode = CaptureMode::normal,
                            const QImage &frozen = plain({800, 600}))
        : screen(FakeScreens::screen(1, {0, 0, 400, 300}, 2))
        , window({screen, std::make_shared<FakeFrozenDisplay>(frozen), mode, clock, defaults},
                 shell)
    {
        window.callbacks().onCancel = [this] { reports << QStringLiteral("cancel"); };
        window.callbacks().onSelectionComplete = [this](const Rect &rect) {
            reports << "complete " + toString(rect);
        };
        window.callbacks().onCopyImage = [this](const Rect &rect) {
            reports << "copy " + toString(rect);
        };
        window.callbacks().onSaveImage = [this](const Rect &rect) {
            reports << "save " + toString(rect);
        };
        window.callbacks().onCopyAnnotatedImage = [this](const Image &) {
            reports << QStringLiteral("copy drawn");
        };
        window.callbacks().onSaveAnnotatedImage = [this](const Image &) {
            reports << QStringLiteral("save drawn");
        };
        window.orderFrontRegardless();
    }

    /// On the screen, for what the toolkit does of itself.
    [[nodiscard]] bool show()
    {
        window.show();
        return QTest::qWaitForWindowExposed(&window);
    }
    /// To the window, as a hand does: what is on top there gets it.
    void point(QPoint at)
    {
        QTest::mouseMove(window.windowHandle(), at);
        QCoreApplication::processEvents();
    }
    void press(QPoint at) { QTest::mousePress(window.windowHandle(), Qt::LeftButton, {}, at); }
    void release(QPoint at) { QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, at); }

    SelectionOverlayView *view() { return window.selectionView(); }
    FakeOverlaySurface &surface() { return *shell.surfaces.front(); }
    /// From one point to another, in widget coordinates.
    void drag(QPoint from, QPoint to)
    {
        QTest::mousePress(view(), Qt::LeftButton, {}, from);
        move(to);
        QTest::mouseRelease(view(), Qt::LeftButton, {}, to);
    }
    void move(QPoint to)
    {
        QMouseEvent event(QEvent::MouseMove, to, to, Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(view(), &event);
    }
    void key(Qt::Key code, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(view(), code, modifiers);
    }

    UserDefaults defaults{QStringLiteral("/nonexistent/defaults.json")};
    FakeClock clock;
    FakeOverlayShell shell;
    Screen screen;
    OverlayWindow window;
    QStringList reports;
};

} // namespace tovek
