// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/x11/X11TestDesktop.h"
#include "platform/x11/capture/X11ScreenGrabber.h"
#include "platform/x11/capture/X11Screens.h"
#include "platform/x11/overlay/X11OverlaySurface.h"

#include <QApplication>
#include <QBackingStore>
#include <QMouseEvent>
#include <QPainter>
#include <QTest>
#include <QWidget>
#include <QWindow>

namespace tovek {

inline X11TestDesktop *desktop = nullptr;

/// A full-screen widget as the overlay has one: a child over the whole window.
class Overlay : public QWidget
{
public:
    Overlay() : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint)
    {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setAttribute(Qt::WA_NoSystemBackground);
        resize(100, 100);
        winId();
    }
    void open(OverlaySurface &surface)
    {
        setAttribute(Qt::WA_UpdatesDisabled);
        surface.orderFrontRegardless();
        QCoreApplication::removePostedEvents(this, QEvent::UpdateLater);
        backingStore()->resize(size());
        setAttribute(Qt::WA_UpdatesDisabled, false);
    }

    QRegion painted;
    int keys = 0;
    QPointF pointer;

private:
    void keyPressEvent(QKeyEvent *) override { ++keys; }
    void mouseMoveEvent(QMouseEvent *event) override { pointer = event->position(); }
    void focusInEvent(QFocusEvent *) override { }
    void focusOutEvent(QFocusEvent *) override { }
    void paintEvent(QPaintEvent *event) override
    {
        painted += event->region();
        QPainter(this).fillRect(event->rect(), Qt::magenta);
    }
};

/// What freezes the desktop's main screen, and shows it.
class X11OverlayFixture
{
protected:
    void setUp()
    {
        m_before = desktop->look();
        m_connection = X11Connection::create();
        QVERIFY(m_connection);
        m_monitors = std::make_shared<X11Monitors>(m_connection);
        m_screens = std::make_unique<X11Screens>(m_connection, m_monitors);
        m_grabber = std::make_unique<X11ScreenGrabber>(m_connection, m_monitors);
        m_shell = std::make_unique<X11OverlayShell>(m_connection, m_monitors);
        m_screen = *m_screens->main();
    }
    std::shared_ptr<FrozenDisplay> freeze()
    {
        const auto content = m_grabber->shareableContent();
        const auto result = m_grabber->capture(*content, content->displays.front(), {}).result();
        Q_ASSERT(result.frozen);
        return result.frozen;
    }

    QImage m_before;
    std::shared_ptr<X11Connection> m_connection;
    std::shared_ptr<X11Monitors> m_monitors;
    std::unique_ptr<X11Screens> m_screens;
    std::unique_ptr<X11ScreenGrabber> m_grabber;
    std::unique_ptr<X11OverlayShell> m_shell;
    Screen m_screen;
};

/// The main function of a test with a desktop of its own, where there can be one.
template <typename Test>
int runOnTestDesktop(int argc, char **argv)
{
    X11TestDesktop server;
    const int depth = qEnvironmentVariableIntValue("TOVEK_TEST_DEPTH");
    if (!server.start(QSize(1366, 768), depth ? depth : 24)) {
        std::puts("SKIP: no Xvfb");
        return 77;
    }
    desktop = &server;
    qputenv("DISPLAY", server.displayName());
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication application(argc, argv);
    Test test;
    return QTest::qExec(&test, argc, argv);
}

} // namespace tovek
