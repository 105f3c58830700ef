// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The screen is locked while an overlay is open.

#include "desktop/Session.h"
#include "support/Skip.h"
#include "support/XConnection.h"

#include <QStandardPaths>
#include <QTest>

#include <unistd.h>

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
struct LockingSession : Session
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
    [[nodiscard]] bool lock(const QString &locker)
    {
        if (locker == QLatin1String("i3lock"))
            return run({locker, "--nofork"});
        Program *daemon = run({locker, "--no-splash", "--verbose"});
        return daemon && waitUntil([&] {
                   return !daemon->errorLines().filter(QStringLiteral("-auth exited")).isEmpty();
               })
            && run({"xscreensaver-command", "-lock"});
    }

    QTemporaryDir lockerHome;
};

} // namespace

class TestLockers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { skipBecause(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void getTheScreen_data()
    {
        QTest::addColumn<QString>("locker");
        QTest::newRow("a window over everything") << QStringLiteral("i3lock");
        QTest::newRow("the keyboard before a window") << QStringLiteral("xscreensaver");
    }
    void getTheScreen()
    {
        QFETCH(QString, locker);
        if (QStandardPaths::findExecutable(locker).isEmpty())
            QSKIP(qPrintable(locker + QStringLiteral(" is not installed")));
        LockingSession s;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.open());
        s.tovek->hand().drag({100, 100}, {300, 250});
        QVERIFY(s.lock(locker));
        QVERIFY(s.tovek->program().waitForLine(
            QStringLiteral("The capture ends: the screen is being locked"), 15s));
        QVERIFY(s.isClosed());
        // Nobody else can have it: ours let go half a second after the last key at the latest.
        QTest::qWait(1500);
        QVERIFY(isKeyboardHeld(s.desktop.displayName()));
    }
};

QTEST_GUILESS_MAIN(TestLockers)
#include "tst_Lockers.moc"
