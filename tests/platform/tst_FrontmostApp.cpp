// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/Contract.h"
#include "fakes/FakeFrontmostApp.h"
#include "platform/x11/capture/X11FrontmostApp.h"
#include "support/Hand.h"
#include "support/TestDesktop.h"
#include "support/Wait.h"

#include <QGuiApplication>
#include <QTest>
#include <QtEndian>

using namespace tovek;

namespace {

TestDesktop *desktop = nullptr;

constexpr int deadline = 20000;

/// A desktop with windows of other programs.
class Desk
{
public:
    virtual ~Desk() = default;
    virtual FrontmostApp &frontmostApp() = 0;
    /// Opens the window of a program; 0 when it did not come.
    virtual quint64 open(qint64 processId) = 0;
    virtual void click(quint64 window) = 0;
    [[nodiscard]] virtual bool close(quint64 window) = 0;
    virtual void show(QWindow &window) = 0;
    /// All that was going to happen has happened.
    virtual void settle() { }
};

class FakeDesk : public Desk
{
public:
    FrontmostApp &frontmostApp() override { return m_app; }
    quint64 open(qint64 processId) override
    {
        m_app.running.push_back({++m_lastWindow, 0, processId});
        m_app.front = m_app.running.back();
        return m_lastWindow;
    }
    void click(quint64 window) override
    {
        for (const RunningApplication &application : m_app.running) {
            if (application.window == window)
                m_app.front = application;
        }
    }
    bool close(quint64 window) override
    {
        std::erase_if(m_app.running, [window](const RunningApplication &application) {
            return application.window == window;
        });
        if (m_app.front && m_app.front->window == window)
            m_app.front.reset();
        return true;
    }
    void show(QWindow &) override { }

private:
    FakeFrontmostApp m_app;
    quint64 m_lastWindow = 0;
};

/// With a window manager.
class X11Desk : public Desk
{
public:
    FrontmostApp &frontmostApp() override { return m_app; }
    quint64 open(qint64 processId) override
    {
        const xcb_window_t window = xcb_generate_id(m_client);
        xcb_create_window(m_client, XCB_COPY_FROM_PARENT, window, m_client.root(), 0, 0, 300, 200,
                          0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        const auto id = uint32_t(processId);
        xcb_change_property(m_client, XCB_PROP_MODE_REPLACE, window, m_client.atom("_NET_WM_PID"),
                            XCB_ATOM_CARDINAL, 32, 1, &id);
        xcb_map_window(m_client, window);
        m_client.sync();
        return waitUntil([&] { return isManaged(window) && hasFocus(window); }) ? window : 0;
    }
    void click(quint64 window) override
    {
        const XPtr<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(
            m_client,
            xcb_translate_coordinates(m_client, xcb_window_t(window), m_client.root(), 30, 30),
            nullptr));
        if (place)
            Hand(desktop->displayName()).click({place->dst_x, place->dst_y});
    }
    bool close(quint64 window) override
    {
        xcb_destroy_window(m_client, xcb_window_t(window));
        m_client.sync();
        return waitUntil([&] { return !isManaged(xcb_window_t(window)); });
    }
    void show(QWindow &window) override
    {
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window, deadline));
    }
    void settle() override { QTest::qWait(150); }

private:
    bool isManaged(xcb_window_t window) const
    {
        const QByteArray list =
            m_client.property(m_client.root(), m_client.atom("_NET_CLIENT_LIST"));
        for (qsizetype at = 0; at + 4 <= list.size(); at += 4) {
            if (qFromUnaligned<xcb_window_t>(list.constData() + at) == window)
                return true;
        }
        return false;
    }
    bool hasFocus(xcb_window_t window) const
    {
        const XPtr<xcb_get_input_focus_reply_t> focus(
            xcb_get_input_focus_reply(m_client, xcb_get_input_focus(m_client), nullptr));
        return focus && focus->focus == window;
    }

    XConnection m_client{desktop->displayName()};
    X11FrontmostApp m_app{X11Connection::create()};
};

} // namespace

/// What every implementation of the active program keeps to.
class TestFrontmostApp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data() { addImplementations(TestDesktop::missing(plan())); }

    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_desk = makeDesk<Desk, FakeDesk, X11Desk>();
        m_first = m_desk->open(firstProcess);
        m_second = m_desk->open(secondProcess);
        QVERIFY(m_first && m_second && m_first != m_second);
        m_desk->settle(); // a window manager goes on for a moment with a window that is new
    }

    void takesOnlyAGuestsClientForAProgram()
    {
        QFETCH_GLOBAL(bool, isReal);
        if (!isReal)
            return; // there is no server
        const X11FrontmostApp guests(X11Connection::create(), X11FrontmostApp::Server::guest);
        QVERIFY(guests.frontmost());
        QCOMPARE(guests.frontmost(), m_desk->frontmostApp().frontmost());
        // Mutter calls a window of its own the active one.
        const XConnection client(desktop->displayName());
        const uint32_t none = client.root() + 1;
        xcb_change_property(client, XCB_PROP_MODE_REPLACE, client.root(),
                            client.atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW, 32, 1, &none);
        client.sync();
        QVERIFY(m_desk->frontmostApp().frontmost());
        QVERIFY(!guests.frontmost());
    }
    void cleanup() { m_desk.reset(); }

    void namesTheProgramThatTheUserClicked()
    {
        m_desk->click(m_first);
        QVERIFY(comesToFront(m_first, firstProcess));
        m_desk->click(m_second);
        QVERIFY(comesToFront(m_second, secondProcess));
    }

    void namesTheKeyboardsWindowOnlyWhereItIsAnotherOne()
    {
        m_desk->click(m_first);
        QVERIFY(comesToFront(m_first, firstProcess));
        QTRY_COMPARE_WITH_TIMEOUT(app().frontmost()->focus, quint64(0), deadline);
    }

    void bringsAProgramBack()
    {
        const RunningApplication before = click(m_first, firstProcess);
        click(m_second, secondProcess);
        app().activate(before);
        QTRY_VERIFY_WITH_TIMEOUT(app().frontmost() == before, deadline);
    }

    void leavesTheActiveProgramAsItIs()
    {
        const RunningApplication before = click(m_second, secondProcess);
        app().activate(before);
        m_desk->settle();
        QVERIFY(app().frontmost() == before);
    }

    void doesNothingForAWindowThatHasGone()
    {
        const RunningApplication before = click(m_first, firstProcess);
        const RunningApplication now = click(m_second, secondProcess);
        QVERIFY(m_desk->close(m_first));
        app().activate(before);
        m_desk->settle();
        QVERIFY(app().frontmost() == now);
    }

    void bringsOurWindowForward()
    {
        QWindow window;
        window.resize(200, 150);
        m_desk->show(window);
        click(m_first, firstProcess);
        app().bringForward(window);
        QTRY_VERIFY_WITH_TIMEOUT(isFront(window.winId(), QCoreApplication::applicationPid()),
                                 deadline);
    }

    void keepsThePolicy()
    {
        QCOMPARE(app().activationPolicy(), ActivationPolicy::accessory);
        app().setActivationPolicy(ActivationPolicy::regular);
        QCOMPARE(app().activationPolicy(), ActivationPolicy::regular);
        app().setActivationPolicy(ActivationPolicy::accessory);
        QCOMPARE(app().activationPolicy(), ActivationPolicy::accessory);
    }

public:
    static DesktopPlan plan()
    {
        DesktopPlan plan;
        plan.hasBus = false;
        return plan;
    }

private:
    static constexpr qint64 firstProcess = 4711;
    static constexpr qint64 secondProcess = 4712;

    FrontmostApp &app() { return m_desk->frontmostApp(); }
    bool isFront(quint64 window, qint64 processId)
    {
        const auto front = app().frontmost();
        return front && front->window == window && front->processId == processId;
    }
    bool comesToFront(quint64 window, qint64 processId)
    {
        return waitUntil([&] { return isFront(window, processId); },
                         std::chrono::milliseconds(deadline));
    }
    /// The program that is in front then.
    RunningApplication click(quint64 window, qint64 processId)
    {
        const RunningApplication expected{window, 0, processId};
        m_desk->click(window);
        if (!waitUntil([&] { return app().frontmost() == expected; }))
            qWarning("The click had no effect");
        return expected;
    }

    std::unique_ptr<Desk> m_desk;
    quint64 m_first = 0;
    quint64 m_second = 0;
};

int main(int argc, char **argv)
{
    TestDesktop testDesktop(TestFrontmostApp::plan());
    if (TestDesktop::missing(TestFrontmostApp::plan()).isEmpty()) {
        if (!testDesktop.start())
            qFatal("%s", qPrintable(testDesktop.error()));
        desktop = &testDesktop;
        qputenv("DISPLAY", testDesktop.displayName().toUtf8());
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
    QGuiApplication application(argc, argv);
    TestFrontmostApp test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_FrontmostApp.moc"
