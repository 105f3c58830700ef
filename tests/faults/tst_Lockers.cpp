// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The screen is locked while an overlay is open.

#include "desktop/Drawing.h"
#include "support/Skip.h"
#include "support/XConnection.h"

#include <QStandardPaths>
#include <QTest>

#include <array>
#include <sys/uio.h>
#include <unistd.h>
#include <xcb/xcbext.h>

using namespace std::chrono_literals;
using namespace tovek;

namespace {

constexpr uid_t nobody = 65534;

/// Whether some program holds the keyboard.
bool isKeyboardHeld(const QString &displayName)
{
    XConnection connection(displayName);
    const auto cookie = xcb_grab_keyboard(connection, 0, connection.root(), XCB_CURRENT_TIME,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    xcb_grab_keyboard_reply_t *reply = xcb_grab_keyboard_reply(connection, cookie, nullptr);
    const bool isHeld = reply && reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
    std::free(reply);
    return isHeld;
}

/// Someone who locks the screen; xscreensaver refuses to do that for root.
struct LockingSession : Drawing
{
    Program *run(QStringList command)
    {
        std::map<QString, QString> variables;
        if (getuid() == 0 && command.first().startsWith(QStringLiteral("xscreensaver"))) {
            const QByteArray folder = QFile::encodeName(lockerHome.path());
            if (chown(folder.constData(), nobody, nobody) != 0)
                return nullptr;
            command = QStringList{"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"}
                + command;
            variables[QStringLiteral("HOME")] = lockerHome.path();
        }
        return desktop.run(command.first(), command.mid(1), variables);
    }
    /// What of the locker runs all the time.
    [[nodiscard]] bool prepare(const QString &locker)
    {
        if (locker == QLatin1String("i3lock"))
            return true;
        daemon = run({locker, "--no-splash", "--verbose"});
        return daemon && waitUntil([&] {
                   return !daemon->errorLines().filter(QStringLiteral("-auth exited")).isEmpty();
               });
    }
    [[nodiscard]] bool lock(const QString &locker)
    {
        return run(daemon ? QStringList{"xscreensaver-command", "-lock"}
                          : QStringList{locker, "--nofork"});
    }

    QTemporaryDir lockerHome;
    Program *daemon = nullptr; ///< xscreensaver's
};

template <size_t words>
void *ask(xcb_connection_t *connection, xcb_extension_t &extension, uint8_t opcode, bool isAnswered,
          std::array<uint32_t, words> arguments)
{
    std::array<uint32_t, words + 1> bytes{};
    std::copy(arguments.begin(), arguments.end(), bytes.begin() + 1);
    iovec parts[3]{{}, {}, {bytes.data(), sizeof bytes}}; // the first two are the library's
    const xcb_protocol_request_t request{1, &extension, opcode, !isAnswered};
    const unsigned sequence =
        xcb_send_request(connection, isAnswered ? XCB_REQUEST_CHECKED : 0, parts + 2, &request);
    return isAnswered ? xcb_wait_for_reply(connection, sequence, nullptr) : nullptr;
}

/// The window over everything that the server puts up for a compositing manager.
xcb_window_t canvasOf(const XConnection &connection)
{
    static xcb_extension_t composite{"Composite", 0};
    constexpr uint8_t getOverlayWindow = 7;
    const XPtr<uint32_t> reply(static_cast<uint32_t *>(
        ask(connection, composite, getOverlayWindow, true, std::array{connection.root()})));
    return reply ? reply.get()[2] : xcb_window_t(XCB_NONE);
}

void letClicksFallThrough(const XConnection &connection, xcb_window_t window)
{
    static xcb_extension_t shape{"SHAPE", 0};
    constexpr uint8_t rectangles = 1;
    constexpr uint32_t setInputTo = 2 << 8;
    ask(connection, shape, rectangles, false, std::array{setInputTo, uint32_t(window), 0u});
    connection.sync();
}

} // namespace

class TestLockers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void getTheScreen_data()
    {
        QTest::addColumn<QString>("locker");
        QTest::addColumn<bool>("isAnnounced");
        QTest::newRow("a window over everything") << QStringLiteral("i3lock") << true;
        const auto saver = QStringLiteral("xscreensaver");
        QTest::newRow("the keyboard before a window") << saver << true;
        QTest::newRow("the keyboard, and nobody told") << saver << false;
    }
    void getTheScreen()
    {
        QFETCH(QString, locker);
        QFETCH(bool, isAnnounced);
        if (QStandardPaths::findExecutable(locker).isEmpty())
            QSKIP(qPrintable(locker + QStringLiteral(" is not installed")));
        LockingSession s;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(!isAnnounced || s.prepare(locker));
        QVERIFY(s.open());
        QVERIFY(isAnnounced || s.prepare(locker)); // too late to be listened to
        s.tovek->hand().drag({100, 100}, {300, 250});
        QVERIFY(s.lock(locker));
        QVERIFY(s.tovek->program().waitForLine(
            QStringLiteral("The capture ends: the screen is being locked"), 15s));
        QVERIFY(s.isClosed());
        // Nobody else can have it: ours let go half a second after the last key at the latest.
        QTest::qWait(1500);
        QVERIFY(isKeyboardHeld(s.desktop.displayName()));
        // It tries once a second: no longer than that is the screen open.
        if (s.daemon && isAnnounced)
            QVERIFY2(s.daemon->errorLines().filter(QStringLiteral(": AlreadyGrabbed")).size() <= 1,
                     qPrintable(s.daemon->errorLines().join(QChar(10))));
    }

    void areNotTakenForACompositor_data()
    {
        QTest::addColumn<bool>("takesInput");
        QTest::newRow("draws, and clicks fall through") << false;
        QTest::newRow("keeps the clicks") << true;
    }
    void areNotTakenForACompositor()
    {
        QFETCH(bool, takesInput);
        LockingSession s;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.open());
        const XConnection compositor(s.desktop.displayName());
        const xcb_window_t canvas = canvasOf(compositor);
        QVERIFY(canvas != XCB_NONE);
        compositor.sync();
        QTest::qWait(100); // what happens between two requests of a busy compositor
        if (!takesInput)
            letClicksFallThrough(compositor, canvas);
        QTest::qWait(600);
        QCOMPARE(s.tovek->covers(s.monitors()), !takesInput);
        if (takesInput)
            return;
        s.select({100, 100}, {300, 250});
        QVERIFY(s.tap("Return"));
        QCOMPARE(QImage::fromData(s.pasted()).size(), QSize(200, 150));
    }

    void getsTheScreenOfTheServersSaver()
    {
        LockingSession s;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.open());
        QVERIFY(s.run({"xset", "s", "activate"})->waitForExit() == 0);
        QVERIFY(s.isClosed());
        QVERIFY(s.run({"xset", "s", "reset"})->waitForExit() == 0);
        QVERIFY(s.open());
        QVERIFY(s.tap("Escape") && s.isClosed());
    }

    void leavesTheDrawingForTheNextCapture()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("i3lock")).isEmpty())
            QSKIP("i3lock is not installed");
        LockingSession s;
        QVERIFY2(s.begin(QRect(100, 100, 400, 300)), qPrintable(s.error));
        QVERIFY(s.tap("r"));
        s.drag({40, 50}, {200, 150});
        Program *locker = s.run({"i3lock", "--nofork"});
        QVERIFY(locker && s.isClosed());
        locker->stop();
        QVERIFY(s.open(RunningTovek::captureImage)); // which cannot be drawn on
        QVERIFY(s.tap("Escape") && s.isClosed());
        QVERIFY(s.open());
        QTRY_VERIFY(!s.activeButton().isEmpty()); // the toolbar is there without a drag
        const QImage copied = s.copied();
        QCOMPARE(copied.size(), QSize(400, 300));
        QVERIFY2(isNear(boxOf(copied, Ink::red), QRect(38, 48, 164, 104)),
                 qPrintable(toText(boxOf(copied, Ink::red))));
        QVERIFY(s.open()); // once only
        QTest::qWait(300);
        QVERIFY(s.activeButton().isEmpty());
        QVERIFY(s.tap("Escape") && s.isClosed());
    }
};

QTEST_GUILESS_MAIN(TestLockers)
#include "tst_Lockers.moc"
