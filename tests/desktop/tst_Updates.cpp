// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "desktop/Launched.h"
#include "update/UpdateServer.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <algorithm>
#include <signal.h>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

const char offerTitle[] = "A new version of Tovek is available";
const char refusalTitle[] = "Tovek could not be updated";
constexpr auto patience = 20s;

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly)
        && file.write(bytes) == bytes.size()
        && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

/// What the new program is: it tells how it was started.
const QByteArray &newProgram()
{
    static const QByteArray bytes =
        content(QCoreApplication::applicationDirPath() + QStringLiteral("/update_successor"));
    return bytes;
}

} // namespace

/// Both programs of a build with updates, a server, and someone who uses them.
class TestUpdates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QString missing = TestDesktop::missing();
        if (missing.isEmpty() && !m_server.start())
            missing = m_server.error();
        if (!missing.isEmpty())
            QSKIP(qPrintable(missing));
    }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_launched = std::make_unique<Launched>();
        m_launched->path = folder() + QStringLiteral("/tovek_with_updates");
        QVERIFY(m_launched->startDesktop());
        QVERIFY(write(appImage(), "the old program"));
        m_launched->variables = {
            {"TEST_FEED", m_server.feedUrl().toString()},
            {"TEST_KEY", QString::fromLatin1(m_server.keys().publicKey.toBase64())},
            {"TEST_CERTIFICATE", m_server.certificateFile()},
            {"APPIMAGE", appImage()},
            {"APPDIR", folder()},
        };
        m_server.publish({QStringLiteral("99.0"), newProgram()});
    }
    void cleanup() { m_launched.reset(); }

    void becomesTheNewProgram()
    {
        QVERIFY(start());
        const qint64 process = m_launched->program->pid();
        QVERIFY(isOffered());
        QVERIFY(m_launched->hand->tap("Return"));
        QCOMPARE(exitCode(), std::optional(0));
        QCOMPARE(m_launched->program->errorLines(), QStringList());
        QCOMPARE(content(appImage() + QStringLiteral(".started")),
                 QByteArray("started --background\n"));
        QCOMPARE(content(appImage()), newProgram());
        QVERIFY(kill(pid_t(process), 0) != 0);
    }

    void remindsLaterOnEscape()
    {
        QVERIFY(start());
        QVERIFY(isOffered());
        QVERIFY(m_launched->hand->tap("Escape"));
        QVERIFY(isUpdateClosed());
        QVERIFY(nothingHasChanged());
        // The next check asks the same, as soon as this one has gone.
        QVERIFY(waitUntil(
            [&] {
                return check()
                    && waitUntil([&] { return m_launched->eye->activeTitle() == offerTitle; }, 1s);
            },
            patience));
    }

    void skipsAVersionOnAClick()
    {
        QVERIFY(start());
        QVERIFY(isOffered());
        const QRect window = m_launched->window(offerTitle).native;
        QVERIFY(!window.isEmpty());
        m_launched->hand->click(window.bottomLeft() + QPoint(60, -30));
        QVERIFY(isUpdateClosed());
        QVERIFY(content(m_launched->desktop->configFolder() + "/tovek/update-memory.json")
                    .contains("\"skippedVersion\": \"99.0\""));
        QVERIFY(nothingHasChanged());
    }

    void refusesWhatTheMakersDidNotSign()
    {
        const auto stranger = UpdateSignature::makeKeyPair();
        m_launched->variables["TEST_KEY"] = QString::fromLatin1(stranger.publicKey.toBase64());
        QVERIFY(start());
        QVERIFY(check());
        QVERIFY(m_launched->program->waitForLine("Update: The list of versions is not signed",
                                                 patience));
        QVERIFY(nothingHasChanged());
        QVERIFY(m_launched->isInFront(refusalTitle));
        QVERIFY(m_launched->hand->tap("Return"));
        QVERIFY(isUpdateClosed());
        QVERIFY(m_launched->program->isRunning());
    }

    void leavesNothingBehindWhenTheProgramQuits()
    {
        ServerAnswer endless{newProgram(), 200, {}, ServerAnswer::End::never};
        m_server.answer(UpdateServer::packagePath(), endless);
        QVERIFY(start());
        QVERIFY(isOffered());
        const auto requests = m_server.requests().size();
        QVERIFY(m_launched->hand->tap("Return"));
        QVERIFY(waitUntil([&] { return m_server.requests().size() > requests; }, patience));
        QVERIFY(m_launched->activateAction("quit"));
        QCOMPARE(exitCode(), std::optional(0));
        QVERIFY(isUpdateClosed());
        QVERIFY(nothingHasChanged());
    }

    void saysThatTheDiskIsFull()
    {
        m_server.publish({QStringLiteral("99.0"), QByteArray(300000, 'x')});
        // A file may grow to 100 kB here, as if no more were left. A process that writes on then
        // gets a signal first, which a full disk does not send.
        Program *update = m_launched->desktop->run(
            QStringLiteral("/bin/sh"),
            {"-c", "trap '' XFSZ; exec prlimit --fsize=100000 \"$0\" --installed-version 1.0",
             folder() + QStringLiteral("/update_under_test")},
            m_launched->variables);
        QVERIFY(update);
        QVERIFY(m_launched->isInFront(offerTitle));
        QVERIFY(m_launched->hand->tap("Return"));
        QVERIFY(update->waitForLine("Update: The update could not be written: ", patience));
        QVERIFY(nothingHasChanged());
    }

    void saysThatTheFolderCannotBeWritten()
    {
        // A mount that only this program sees; even root cannot write there.
        const QString script = QStringLiteral(
            "mount --bind \"$1\" \"$1\" && mount -o remount,ro,bind \"$1\" || exit 77\n"
            "exec \"$0\" --installed-version 1.0");
        Program *update = m_launched->desktop->run(
            QStringLiteral("unshare"),
            {"--map-root-user", "--mount", "/bin/sh", "-c", script,
             folder() + QStringLiteral("/update_under_test"), QFileInfo(appImage()).path()},
            m_launched->variables);
        if (!update
            || !waitUntil(
                [&] {
                    return !update->isRunning()
                        || !windowsTitled(*m_launched->eye, offerTitle).isEmpty();
                },
                patience)
            || !update->isRunning())
            QSKIP("no mounts for users on this machine");
        QVERIFY(m_launched->isInFront(offerTitle));
        QVERIFY(m_launched->hand->tap("Return"));
        QVERIFY(update->waitForLine("Update: The update could not be written: ", patience));
        QVERIFY(update->lines().last().contains(QStringLiteral("Read-only file system")));
        QVERIFY(nothingHasChanged());
    }

    void handsADebianPackageToTheDesktop()
    {
        PublishedPackage package{QStringLiteral("99.0"), newProgram()};
        package.kind = "debian";
        m_server.publish(package);
        // Stand-ins for the package manager, which knows the program, and for the desktop.
        const QString tools = m_launched->desktop->home() + QStringLiteral("/tools");
        const QString opened = m_launched->desktop->home() + QStringLiteral("/opened");
        QVERIFY(write(tools + "/dpkg-query", "#!/bin/sh\nexit 0\n"));
        QVERIFY(write(tools + "/xdg-open", "#!/bin/sh\ncp \"$1\" '" + opened.toUtf8() + "'\n"));
        m_launched->variables["PATH"] = tools + QStringLiteral(":/usr/bin:/bin");
        m_launched->variables.erase("APPIMAGE");
        QVERIFY(start());
        QVERIFY(isOffered());
        QVERIFY(m_launched->hand->tap("Return"));
        QVERIFY(waitUntil([&] { return content(opened) == newProgram(); }, patience));
        QVERIFY(m_launched->program->isRunning());
        QVERIFY(nothingHasChanged());
    }

    void asksNobodyUntilItIsToldTo()
    {
        const int connections = m_server.connections();
        QVERIFY(start());
        // Checks that happen by themselves start a second after the program.
        QVERIFY(!waitUntil([&] { return m_server.connections() > connections; }, 4s));
    }

    void saysThatThisBuildCannotCheck()
    {
        m_launched->path = qEnvironmentVariable("TOVEK_PROGRAM");
        QVERIFY(start());
        QVERIFY(check());
        QVERIFY(showsToast("This build of Tovek does not update itself: it was made without an "
                           "update address"));
    }

    void saysThatACheckHasCrashed()
    {
        QVERIFY(start());
        QVERIFY(isOffered());
        const qint64 parent = m_launched->program->pid();
        const QByteArray children =
            content(QStringLiteral("/proc/%1/task/%1/children").arg(parent)).trimmed();
        const pid_t process = pid_t(children.toInt());
        QVERIFY(process > 0);
        QCOMPARE(kill(process, SIGKILL), 0);
        QVERIFY(showsToast("Failed to check for updates: Process crashed"));
        // The next one finds nothing in its way.
        QVERIFY(isOffered());
    }

    void offersByItselfWithoutTakingTheKeyboard()
    {
        QVERIFY(write(m_launched->desktop->configFolder() + "/tovek/updates.json",
                      "{\"automaticallyChecksForUpdates\": true}"));
        // A window that somebody works in.
        m_launched->program = m_launched->launch();
        QVERIFY(m_launched->isInFront("General"));
        const xcb_window_t before = m_launched->eye->activeWindow();
        QVERIFY(waitUntil([&] { return !windowsTitled(*m_launched->eye, offerTitle).isEmpty(); },
                          patience));
        QCOMPARE(m_launched->eye->activeWindow(), before);
        // The item of the menu is not blocked by it, and brings it to the front.
        QVERIFY(isOffered());
        QCOMPARE(windowsTitled(*m_launched->eye, offerTitle).size(), 1);
    }

private:
    static QString folder() { return QCoreApplication::applicationDirPath(); }
    QString appImage() const
    {
        return m_launched->desktop->home() + QStringLiteral("/programs/Tovek.AppImage");
    }
    /// In the background; returns when it answers to commands.
    bool start()
    {
        m_launched->program = m_launched->launch({"--background"});
        return m_launched->program && waitUntil([&] { return m_launched->activateAction("about"); })
            && m_launched->isInFront("About") && m_launched->hand->tap("Escape")
            && m_launched->isClosed();
    }
    bool check() { return m_launched->activateAction("check-for-updates"); }
    /// Of the program, which may need the server before it ends.
    std::optional<int> exitCode()
    {
        static_cast<void>(waitUntil([&] { return !m_launched->program->isRunning(); }, patience));
        return m_launched->program->waitForExit(1ms);
    }
    bool showsToast(const char *message) const
    {
        return waitUntil([&] { return windowsTitled(*m_launched->eye, message).size() == 1; },
                         patience);
    }
    /// Asks for a check, and waits for the offer.
    bool isOffered() { return check() && m_launched->isInFront(offerTitle); }
    /// Whether no window of either program is there any more.
    bool isUpdateClosed()
    {
        return waitUntil(
            [&] {
                const QList<SeenWindow> windows = m_launched->eye->windows();
                return std::none_of(windows.begin(), windows.end(), [](const SeenWindow &window) {
                    return window.windowClass.compare("tovek", Qt::CaseInsensitive) == 0;
                });
            },
            patience);
    }
    bool nothingHasChanged() const
    {
        return content(appImage()) == "the old program"
            && QDir(QFileInfo(appImage()).path()).entryList(QDir::Files | QDir::Hidden)
            == QStringList{QStringLiteral("Tovek.AppImage")};
    }

    UpdateServer m_server;
    std::unique_ptr<Launched> m_launched;
};

QTEST_GUILESS_MAIN(TestUpdates)
#include "tst_Updates.moc"
