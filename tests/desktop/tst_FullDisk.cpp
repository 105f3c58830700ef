// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The program on a disk that is really full: a small one of its own, seen by nobody else.

#include "desktop/Session.h"
#include "desktop/SettingsHand.h"
#include "support/Skip.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <sys/statvfs.h>

using namespace tovek;

namespace {

constexpr int diskBytes = 300 * 1024;

/// What makes mounts of a program's own possible here; nothing when the kernel permits none.
std::optional<QStringList> mountOptions()
{
    const QTemporaryDir folder;
    for (const QStringList &options :
         {QStringList{"--mount"}, {"--user", "--map-current-user", "--keep-caps", "--mount"}}) {
        QProcess attempt;
        attempt.start(
            "unshare",
            options + QStringList{"mount", "-t", "tmpfs", "-o", "size=64k", "none", folder.path()});
        if (attempt.waitForFinished() && attempt.exitStatus() == QProcess::NormalExit
            && attempt.exitCode() == 0)
            return options;
    }
    return std::nullopt;
}

/// A program that is the one under test, with a disk of its own at the folder, on which whatever
/// is in the folder lies already. Empty when it cannot be written.
QString programWithDisk(const QString &script, const QString &folder)
{
    const QByteArray lines = QStringLiteral(R"(#!/bin/sh
exec unshare %1 sh -ec '
    mkdir -p "$1" "$1.kept"
    cp -r "$1/." "$1.kept"
    mount -t tmpfs -o size=%2 none "$1"
    cp -r "$1.kept/." "$1"
    shift
    exec "$@"
' sh '%3' '%4' "$@"
)")
                                 .arg(mountOptions()->join(QLatin1Char(' ')))
                                 .arg(diskBytes)
                                 .arg(folder, qEnvironmentVariable("TOVEK_PROGRAM"))
                                 .toUtf8();
    QFile file(script);
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(lines) == lines.size()
        && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return isWritten ? script : QString();
}

/// The disk as its program sees it.
class Disk
{
public:
    Disk(const Program &program, const QString &folder)
        : m_folder(QStringLiteral("/proc/%1/root%2").arg(program.pid()).arg(folder))
    {
    }
    /// Leaves only this much free.
    [[nodiscard]] bool fill(qint64 freeBytes) const
    {
        QFile filler(path(QStringLiteral("filler")));
        if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            return false;
        const QByteArray block(4096, 'x');
        while (filler.write(block) == block.size() && filler.size() <= diskBytes)
            continue;
        return filler.resize(filler.size() - freeBytes) && available() == freeBytes;
    }
    [[nodiscard]] bool makeRoom() const { return QFile::remove(path(QStringLiteral("filler"))); }
    qint64 available() const
    {
        struct statvfs status
        {
        };
        // QStorageInfo knows the disks of its own process only.
        return statvfs(QFile::encodeName(m_folder).constData(), &status) == 0
            ? qint64(status.f_bavail * status.f_frsize)
            : -1;
    }
    QStringList names() const
    {
        return QDir(m_folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    QString path(const QString &name) const { return QDir(m_folder).filePath(name); }
    QByteArray read(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QString m_folder;
};

/// The program with its Downloads on a disk of its own.
struct SmallDownloads : Session
{
    [[nodiscard]] bool start()
    {
        if (!startDesktop())
            return false;
        QFile older(QDir(desktop.downloads()).filePath(QStringLiteral("older.png")));
        const QString script =
            programWithDisk(desktop.home() + QStringLiteral("/tovek"), desktop.downloads());
        tovek = std::make_unique<RunningTovek>(desktop, script);
        if (!older.open(QIODevice::WriteOnly) || older.write("older") != 5 || script.isEmpty())
            return fail(QStringLiteral("no script"));
        older.close();
        return tovek->start() || fail(tovek->error());
    }
    [[nodiscard]] bool shows(const char *message)
    {
        return waitUntil([&] {
            const QList<SeenWindow> windows = tovek->eye().windows();
            return std::any_of(windows.begin(), windows.end(), [&](const SeenWindow &window) {
                return window.title == QLatin1String(message);
            });
        });
    }
    Disk disk() { return {tovek->program(), desktop.downloads()}; }
};

} // namespace

class TestFullDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        SKIP_BECAUSE(TestDesktop::missing());
        if (!mountOptions())
            QSKIP("The kernel permits no mount of a program's own here");
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void saysThatAFileCouldNotBeSaved_data()
    {
        QTest::addColumn<int>("freeBytes");
        QTest::newRow("nothing is free") << 0;
        QTest::newRow("there is room for half of it") << 40 * 1024;
    }
    void saysThatAFileCouldNotBeSaved()
    {
        QFETCH(int, freeBytes);
        SmallDownloads session;
        QVERIFY2(session.start(), qPrintable(session.error));
        const Disk disk = session.disk();
        QVERIFY(disk.fill(freeBytes));
        const QStringList names = disk.names();
        QCOMPARE(names, QStringList({"filler", "older.png"}));

        QVERIFY(session.open());
        session.select({150, 150}, {350, 300});
        QVERIFY(session.tap("Control_L+s"));
        QVERIFY(session.tovek->program().waitForLine(
            QStringLiteral("Failed to save image: No space left on device")));
        QVERIFY(session.shows("Failed to save image"));
        QCOMPARE(disk.names(), names);
        QCOMPARE(disk.available(), freeBytes);
        QCOMPARE(disk.read(QStringLiteral("older.png")), QByteArray("older"));

        // Copying needs no disk, and once there is room, neither does saving need a new start.
        QVERIFY(session.open());
        session.select({150, 150}, {350, 300});
        QVERIFY(session.tap("Return"));
        QCOMPARE(differentPixels(QImage::fromData(session.pasted()),
                                 session.expected({150, 150}, {350, 300})),
                 0);
        QVERIFY(disk.makeRoom());
        QVERIFY(session.open());
        session.select({150, 150}, {350, 300});
        QVERIFY(session.tap("Control_L+s"));
        QVERIFY(
            waitUntil([&] { return disk.names().filter(QStringLiteral("Tovek ")).size() == 1; }));
        const QByteArray png = disk.read(disk.names().filter(QStringLiteral("Tovek ")).value(0));
        QCOMPARE(differentPixels(QImage::fromData(png), session.expected({150, 150}, {350, 300})),
                 0);
    }

    void keepsTheSettingsThatItCannotReplace()
    {
        SettingsHand hand;
        QVERIFY(hand.startDesktop());
        const QString folder = hand.desktop->configFolder() + QStringLiteral("/tovek");
        const QByteArray before = "{\"saveFolderPath\":\"/tmp\",\"highlightText\":true}";
        QVERIFY(QDir().mkpath(folder));
        QFile store(folder + QStringLiteral("/defaults.json"));
        QVERIFY(store.open(QIODevice::WriteOnly) && store.write(before) == before.size());
        store.close();
        hand.path = programWithDisk(hand.desktop->home() + QStringLiteral("/tovek"), folder);
        hand.program = hand.launch();
        QVERIFY(hand.program && hand.isInFront("General"));
        const Disk disk(*hand.program, folder);
        QVERIFY(disk.fill(0));
        const QStringList names = disk.names();
        QVERIFY(names.contains(QStringLiteral("defaults.json")));

        // The switch for the highlight of text.
        const QPoint highlight = hand.corner() + QPoint(SettingsHand::switchLeft + 17, 165);
        const auto settle = [&] { return hand.eye->lookWhenStill(); };
        const QImage on = settle();
        hand.hand->click(highlight);
        QVERIFY(hand.program->waitForLine(QStringLiteral("Failed to write settings ")));
        QVERIFY(hand.program->lines().last().endsWith(QStringLiteral("No space left on device")));
        QCOMPARE(disk.read(QStringLiteral("defaults.json")), before);
        QCOMPARE(disk.names(), names);
        QVERIFY(differentPixels(on, settle()) > 0);

        QVERIFY(disk.makeRoom());
        hand.hand->click(highlight);
        const auto stored = [&] {
            return QJsonDocument::fromJson(disk.read(QStringLiteral("defaults.json"))).object();
        };
        QVERIFY(waitUntil([&] { return disk.read(QStringLiteral("defaults.json")) != before; }));
        QCOMPARE(stored().value(QStringLiteral("saveFolderPath")), QJsonValue("/tmp"));
        QCOMPARE(stored().value(QStringLiteral("highlightText")), QJsonValue(true));
        QVERIFY(hand.program->isRunning());
    }
};

QTEST_GUILESS_MAIN(TestFullDisk)
#include "tst_FullDisk.moc"
