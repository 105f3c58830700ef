// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/keys/X11ScreenLock.h"
#include "support/Skip.h"
#include "support/TestDesktop.h"
#include "support/XConnection.h"

#include <QRect>
#include <QTest>

#include <xcb/shape.h>

using namespace tovek;

namespace {

const QRect screen(0, 0, 1280, 800); ///< the first of two
const QRect second(1280, 0, 640, 800);
const QRect menu(200, 300, 180, 240);

DesktopPlan twoMonitors()
{
    DesktopPlan plan;
    plan.size = {1920, 800};
    plan.monitors = {screen, second};
    plan.windowManager.clear();
    plan.hasBus = false;
    return plan;
}

enum class Kind { seen, inputOnly, inputPassesThrough, notification };

struct Window
{
    QRect rect;
    Kind kind = Kind::seen;
};

} // namespace

/// What lies on top tells a locked screen from an open menu.
class TestX11ScreenLock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        SKIP_BECAUSE(TestDesktop::missing(twoMonitors()));
        QVERIFY2(m_desktop.start(), qPrintable(m_desktop.error()));
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void knowsALocker_data()
    {
        QTest::addColumn<QList<Window>>("windows"); // bottom to top
        QTest::addColumn<bool>("isLocked");
        const auto row = [](const char *name, bool isLocked, const QList<Window> &windows) {
            QTest::newRow(name) << windows << isLocked;
        };
        const QRect edgeFree = screen.adjusted(1, 1, -1, -1);
        row("nothing", false, {});
        row("a window all over the screen", true, {{screen}});
        row("all but the outermost pixels", true, {{edgeFree}});
        row("all but two pixels", true, {{screen.adjusted(2, 2, -2, -2)}});
        row("all but three pixels on the right", false, {{screen.adjusted(0, 0, -3, 0)}});
        row("more than the screen", true, {{screen.adjusted(-5, -5, 5, 5)}});
        row("one of two monitors", true, {{second}});
        row("a menu", false, {{menu}});
        row("a menu above a full screen", false, {{screen}, {menu}});
        row("a locker above windows", true, {{menu}, {screen}});
        row("a locker that shows the screen", true, {{menu}, {screen, Kind::inputOnly}});
        row("what a compositor draws on", false, {{menu}, {screen, Kind::inputPassesThrough}});
        row("a locker below what a compositor draws on", true,
            {{edgeFree}, {screen, Kind::inputPassesThrough}});
        row("a notification", false, {{menu, Kind::notification}});
        row("a locker below a notification", true, {{screen}, {menu, Kind::notification}});
        row("a menu below a notification", false, {{screen}, {menu}, {menu, Kind::notification}});
        row("a locker below a window off the screen", true, {{screen}, {{-100, -100, 10, 10}}});
        row("a locker below a window that only takes input", true,
            {{screen}, {{0, 0, 1, 1}, Kind::inputOnly}});
    }
    void knowsALocker()
    {
        QFETCH(QList<Window>, windows);
        QFETCH(bool, isLocked);
        const XConnection connection(m_desktop.displayName());
        QVERIFY(connection.isOpen());
        for (const Window &window : windows)
            open(connection, window);
        connection.sync();
        QCOMPARE(isTopmostWindowCovering(connection), isLocked);
    }

private:
    static void open(const XConnection &connection, const Window &window)
    {
        const xcb_window_t id = xcb_generate_id(connection);
        const bool isInputOnly = window.kind == Kind::inputOnly;
        const quint32 isUnmanaged = 1;
        xcb_create_window(connection, XCB_COPY_FROM_PARENT, id, connection.root(),
                          int16_t(window.rect.x()), int16_t(window.rect.y()),
                          uint16_t(window.rect.width()), uint16_t(window.rect.height()), 0,
                          isInputOnly ? XCB_WINDOW_CLASS_INPUT_ONLY : XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT, &isUnmanaged);
        if (window.kind == Kind::inputPassesThrough)
            xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, 0, id, 0, 0, 0,
                                 nullptr);
        if (window.kind == Kind::notification) {
            const xcb_atom_t types[]{connection.atom("_NET_WM_WINDOW_TYPE_NOTIFICATION"),
                                     connection.atom("_NET_WM_WINDOW_TYPE_UTILITY")};
            xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id,
                                connection.atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32, 2,
                                types);
        }
        xcb_map_window(connection, id);
    }

    TestDesktop m_desktop{twoMonitors()};
};

QTEST_GUILESS_MAIN(TestX11ScreenLock)
#include "tst_X11ScreenLock.moc"
