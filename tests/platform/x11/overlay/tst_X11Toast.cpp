// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeScreens.h"
#include "feedback/Toast.h"
#include "platform/linux/QtClock.h"
#include "platform/x11/overlay/X11ToastShell.h"
#include "support/Eye.h"
#include "support/Hand.h"
#include "support/TestDesktop.h"
#include "support/Wait.h"

#include <QGuiApplication>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

using namespace tovek;

namespace {

TestDesktop *desktop = nullptr;

}

/// Toasts on a desktop of two monitors side by side.
class TestX11Toast : public QObject
{
    Q_OBJECT

private:
    struct Setup
    {
        Setup()
        {
            screens.screens = {FakeScreens::screen(1, {0, 0, 800, 600}),
                               FakeScreens::screen(2, {800, 0, 480, 600})};
        }
        QtClock clock;
        FakeScreens screens;
        std::unique_ptr<ToastShell> shell = X11ToastShell::create();
        Toast toast{clock, screens, *shell, {}};
    };
    static std::optional<SeenWindow> seen(const QString &title)
    {
        for (const SeenWindow &window : Eye(desktop->displayName()).windows()) {
            if (window.title == title)
                return window;
        }
        return std::nullopt;
    }
    /// Shows a toast and waits until it has come to rest.
    static SeenWindow showAndWait(Setup &s, const QString &message,
                                  const std::optional<Screen> &screen = std::nullopt)
    {
        s.toast.show(message, QStringLiteral("doc.text"), screen);
        const QRect everything(0, 0, 1280, 600);
        Eye(desktop->displayName()).lookWhenStill(everything);
        QTest::qWait(600); // the spring is over then, the toast is not
        return seen(message).value_or(SeenWindow());
    }

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        QVERIFY(desktop->showPicture({0, 0, 1280, 600}));
    }

    void standsWhereItBelongs()
    {
        Setup s;
        const SeenWindow toast = showAndWait(s, QStringLiteral("x"));
        QVERIFY(toast.isUnmanaged);
        QCOMPARE(toast.native, QRect(310, 400, 180, 120));
        QCOMPARE(toast.windowClass, QStringLiteral("tovek"));
        // The content's bottom edge stands at one fifth of the height.
        const Eye eye(desktop->displayName());
        const QImage look = eye.look({310, 400, 180, 120});
        QVERIFY(qGray(look.pixel(60, 75)) > 180);
    }

    void standsOnTheSecondScreen()
    {
        Setup s;
        const SeenWindow toast = showAndWait(s, QStringLiteral("x"), s.screens.screens[1]);
        QCOMPARE(toast.native, QRect(800 + 150, 400, 180, 120));
    }

    void replacesTheOneBefore()
    {
        Setup s;
        s.toast.show(QStringLiteral("first"), QStringLiteral("doc.text"));
        s.toast.show(QStringLiteral("second"), QStringLiteral("doc.text"));
        QVERIFY(waitUntil([] { return seen(QStringLiteral("second")).has_value(); }));
        QVERIFY(!seen(QStringLiteral("first")));
    }

    void leavesTheFocusAlone()
    {
        const Eye eye(desktop->displayName());
        Hand(desktop->displayName()).click({100, 100});
        // The window manager answers the click in its own time: its answer has come once nothing
        // changes any more.
        const auto state = [&] { return std::pair(eye.activeWindow(), eye.inputFocus()); };
        auto last = state();
        int alike = 0;
        QVERIFY(waitUntil([&] {
            const auto now = state();
            alike = now == last ? alike + 1 : 0;
            last = now;
            return now.first != 0 && alike > 50;
        }));
        const auto [active, focus] = last;
        Setup s;
        showAndWait(s, QStringLiteral("x"));
        QCOMPARE(eye.activeWindow(), active);
        QCOMPARE(eye.inputFocus(), focus);
    }

    void goesByItself()
    {
        Setup s;
        s.toast.show(QStringLiteral("x"), QStringLiteral("doc.text"));
        QVERIFY(waitUntil([] { return seen(QStringLiteral("x")).has_value(); }));
        QVERIFY(waitUntil([] { return !seen(QStringLiteral("x")); }));
        QVERIFY(!s.toast.isShown());
    }

    void isNotInACaptureTakenAtOnce_data()
    {
        QTest::addColumn<bool>("isComposited");
        QTest::newRow("without a compositing manager") << false;
        QTest::newRow("with a compositing manager") << true;
    }
    void isNotInACaptureTakenAtOnce()
    {
        QFETCH(bool, isComposited);
        Setup s;
        if (isComposited) {
            const QString picom = QStandardPaths::findExecutable(QStringLiteral("picom"));
            if (picom.isEmpty())
                QSKIP("picom is not installed");
            QVERIFY(desktop->run(
                picom,
                {"--config", "/dev/null", "--backend", "xrender", "--no-vsync", "--shadow"}));
            QVERIFY(waitUntil([&] { return s.shell->blends(); }));
        }
        QCOMPARE(s.shell->blends(), isComposited);
        const Eye eye(desktop->displayName());
        const QRect place(270, 380, 260, 160);
        const QImage before = eye.lookWhenStill(place);
        showAndWait(s, QStringLiteral("x"));
        QVERIFY(differentPixels(before, eye.look(place)) > 1000);
        s.toast.hideForCapture();
        QCOMPARE(differentPixels(before, eye.look(place)), 0);
        QVERIFY(!seen(QStringLiteral("x")));
        QCOMPARE(differentPixels(before, eye.lookWhenStill(place)), 0);
    }
};

int main(int argc, char **argv)
{
    DesktopPlan plan;
    plan.size = {1280, 600};
    plan.monitors = {{0, 0, 800, 600}, {800, 0, 480, 600}};
    if (const QString reason = TestDesktop::missing(plan); !reason.isEmpty()) {
        std::printf("%s\n", qPrintable(reason));
        return 77;
    }
    TestDesktop testDesktop(plan);
    if (!testDesktop.start())
        qFatal("%s", qPrintable(testDesktop.error()));
    desktop = &testDesktop;
    qputenv("DISPLAY", testDesktop.displayName().toUtf8());
    qputenv("QT_QPA_PLATFORM", "xcb");
    QGuiApplication application(argc, argv);
    TestX11Toast test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_X11Toast.moc"
