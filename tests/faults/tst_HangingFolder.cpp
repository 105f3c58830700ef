// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Screenshots are saved to a file system that does not answer.

#include "desktop/Session.h"
#include "faults/HangingFolder.h"
#include "support/Skip.h"

#include <QElapsedTimer>
#include <QTest>

#include <csignal>

using namespace std::chrono_literals;
using namespace tovek;

namespace {

const QString helper = QStringLiteral(TOVEK_HANGING_MOUNT);

struct HangingSession : Session
{
    /// `isChosen`: the user chose that folder; else it is Downloads.
    [[nodiscard]] bool start(bool isChosen)
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
        QJsonObject settings;
        if (isChosen)
            settings.insert(QStringLiteral("saveFolderPath"), folder);
        return tovek->start(1, settings) || fail(tovek->error());
    }
    bool hasWindow(const char *title)
    {
        return waitUntil([&] {
            const QList<SeenWindow> windows = tovek->eye().windows();
            return std::any_of(windows.begin(), windows.end(), [&](const SeenWindow &window) {
                return window.title == QLatin1String(title);
            });
        });
    }
    bool openSettings()
    {
        Program *gdbus = desktop.run("/usr/bin/gdbus",
                                     {"call", "--session", "--dest", "org.tovek.Tovek",
                                      "--object-path", "/org/tovek/Tovek", "--method",
                                      "org.freedesktop.Application.Activate", "{}"});
        return gdbus && gdbus->waitForExit() == 0 && hasWindow("General");
    }
};

} // namespace

class TestHangingFolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        skipBecause(TestDesktop::missing());
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
};

QTEST_GUILESS_MAIN(TestHangingFolder)
#include "tst_HangingFolder.moc"
