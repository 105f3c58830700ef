// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Screenshots are saved to a file system that does not answer.

#include "desktop/Session.h"
#include "faults/HangingFolder.h"
#include "support/Skip.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <csignal>

using namespace std::chrono_literals;
using namespace tovek;

namespace {

const QString helper = QStringLiteral(TOVEK_HANGING_MOUNT);

struct HangingSession : Session
{
    /// `isChosen`: the user chose that folder; else it is Downloads.
    [[nodiscard]] bool start(bool isChosen, QJsonObject settings = {})
    {
        if (!startDesktop())
            return false;
        const QString folder =
            isChosen ? desktop.home() + QStringLiteral("/elsewhere") : desktop.downloads();
        const QString script =
            programWithHangingFolder(desktop.home() + QStringLiteral("/tovek"), folder, helper);
        tovek = std::make_unique<RunningTovek>(desktop, script);
        if (!QDir().mkpath(folder) || script.isEmpty())
            return fail(QStringLiteral("no script"));
        if (isChosen && settings.isEmpty())
            settings.insert(QStringLiteral("saveFolderPath"), folder);
        return tovek->start(1, settings) || fail(tovek->error());
    }
    std::optional<SeenWindow> windowNow(const char *title) const
    {
        for (const SeenWindow &window : tovek->eye().windows()) {
            if (window.title == QLatin1String(title))
                return window;
        }
        return std::nullopt;
    }
    bool hasWindow(const char *title)
    {
        return waitUntil([&] { return windowNow(title).has_value(); });
    }
    /// The number of the window in which folders are chosen, with the keyboard; another one than
    /// before. 0 when it does not come.
    xcb_window_t openChooser(xcb_window_t before = 0)
    {
        if (!hasWindow("General"))
            return 0;
        tovek->hand().click(windowNow("General")->native.topLeft() + QPoint(382, 203));
        const auto isThere = [&] {
            const auto window = windowNow(chooser);
            return window && window->id != before && tovek->eye().activeTitle() == chooser;
        };
        return waitUntil(isThere) ? windowNow(chooser)->id : 0;
    }
    QString storedFolder() const
    {
        QFile store(desktop.configFolder() + QStringLiteral("/tovek/defaults.json"));
        return store.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(store.readAll())
                                                     .object()
                                                     .value(QStringLiteral("saveFolderPath"))
                                                     .toString()
                                               : QString();
    }

    static constexpr auto chooser = "Select the folder where screenshots will be saved";
    bool call(const QStringList &method)
    {
        Program *gdbus = desktop.run("/usr/bin/gdbus",
                                     QStringList{"call", "--session", "--dest", "org.tovek.Tovek",
                                                 "--object-path", "/org/tovek/Tovek", "--timeout",
                                                 "2", "--method"}
                                         + method);
        return gdbus && gdbus->waitForExit() == 0;
    }
    bool openSettings()
    {
        return call({"org.freedesktop.Application.Activate", "{}"}) && hasWindow("General");
    }
};

} // namespace

class TestHangingFolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        SKIP_BECAUSE(TestDesktop::missing());
        if (!hangingMountOptions(helper))
            QSKIP("The kernel permits no mount of a program's own here");
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void holdsUpNothing_data()
    {
        QTest::addColumn<bool>("isChosen");
        QTest::newRow("the chosen folder") << true;
        QTest::newRow("Downloads") << false;
    }
    void holdsUpNothing()
    {
        QFETCH(bool, isChosen);
        HangingSession s;
        QVERIFY2(s.start(isChosen), qPrintable(s.error));
        QVERIFY(s.open());
        s.select({150, 150}, {350, 300});
        QVERIFY(s.tap("Control_L+s"));
        QVERIFY(s.isClosed());
        QVERIFY(s.openSettings());

        // Captures go on, and the save that cannot end is told.
        QVERIFY(s.tovek->program().waitForLine(
            QStringLiteral("Saving has not ended: the folder does not answer"), 10s));
        QVERIFY(s.hasWindow("Save folder is not answering"));
        QVERIFY(s.copy({100, 100}, {300, 250}));
        const QByteArray png = s.pasted();
        QVERIFY(!png.isEmpty());

        QElapsedTimer timer;
        timer.start();
        QCOMPARE(kill(pid_t(s.tovek->program().pid()), SIGTERM), 0);
        ClipboardReader reader(s.desktop.displayName());
        QVERIFY(waitUntil([&] {
            return s.tovek->program().lines().contains(
                QStringLiteral("Gave up a save: its folder does not answer"));
        }));
        QCOMPARE(reader.read(QStringLiteral("image/png")), std::optional(png));
        QCOMPARE(s.tovek->program().waitForExit(), std::optional(0));
        QVERIFY2(timer.elapsed() < 8000, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(reader.read(QStringLiteral("image/png")), std::optional(png));
    }

    void isNotEnteredWhereFoldersAreChosen()
    {
        HangingSession s;
        // The folder beside it does answer, and is listed together with it.
        QVERIFY2(s.start(true, {{QStringLiteral("saveFolderPath"), s.desktop.home()}}),
                 qPrintable(s.error));
        QVERIFY(s.openSettings());
        const xcb_window_t first = s.openChooser();
        QVERIFY(first);
        QVERIFY(s.tovek->hand().typePath(s.desktop.home() + QStringLiteral("/elsewhere/")));
        QTest::qWait(500);

        // Nothing else does, and what hangs goes, with the keyboard that its list of names has.
        QVERIFY(s.call({"org.freedesktop.DBus.Peer.Ping"}));
        QVERIFY(s.tovek->program().waitForLine(
            QStringLiteral("Closed the folder chooser: a folder does not answer"), 10s));
        QVERIFY(waitUntil([&] { return !s.windowNow(s.chooser); }));
        QVERIFY(s.tovek->open(RunningTovek::captureScreenshot, s.monitors()));
        QVERIFY(s.tap("Escape") && s.isClosed());
        QVERIFY(s.openChooser(first));
        QVERIFY(s.tovek->hand().typePath(s.desktop.downloads()));
        QVERIFY(s.tap("Return"));
        QVERIFY(waitUntil([&] { return s.storedFolder() == s.desktop.downloads(); }));

        QElapsedTimer timer;
        timer.start();
        QCOMPARE(kill(pid_t(s.tovek->program().pid()), SIGTERM), 0);
        QCOMPARE(s.tovek->program().waitForExit(), std::optional(0));
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    }
};

QTEST_GUILESS_MAIN(TestHangingFolder)
#include "tst_HangingFolder.moc"
