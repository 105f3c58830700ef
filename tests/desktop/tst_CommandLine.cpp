// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "desktop/Launched.h"
#include "support/DesktopServices.h"
#include "support/Skip.h"

#include <QDir>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QPainter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace std::chrono_literals;
using namespace tovek;

namespace {

constexpr std::chrono::seconds patience(60);

/// A desktop with a picture on it, and the program as a shell runs it.
struct Shell : Launched
{
    bool open(const DesktopPlan &plan = {})
    {
        return startDesktop(plan)
            && desktop->showPicture(QRect(QPoint(0, 0), plan.size)) != nullptr;
    }
    /// The status; -1 when it did not end.
    int run(const QStringList &arguments)
    {
        last = launch(arguments);
        return last ? last->waitForExit(patience).value_or(-1) : -1;
    }
    /// An overlay covers the screen; a toast is smaller.
    bool isCapturing() const
    {
        const QList<SeenWindow> overlays = eye->overlays(QStringLiteral("tovek"));
        return std::any_of(overlays.begin(), overlays.end(), [](const SeenWindow &window) {
            return window.native == QRect(QPoint(0, 0), DesktopPlan().size);
        });
    }
    bool comesToCapture() const
    {
        return waitUntil([&] { return isCapturing(); }, patience);
    }

    Program *last = nullptr;
};

} // namespace

/// The program's options as a person types them.
class TestCommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void tellsWhatCannotBeDone()
    {
        Shell shell;
        QVERIFY(shell.startDesktop());
        QCOMPARE(shell.run({"--nonsense"}), 2);
        QCOMPARE(shell.last->errorLines(),
                 QStringList{"tovek: unknown option --nonsense; see tovek --help"});
        QCOMPARE(shell.last->lines(), QStringList());
        QCOMPARE(shell.run({"--quit"}), 1);
        QCOMPARE(shell.last->errorLines(), QStringList{"tovek: Tovek is not running"});
    }

    void tellsTheDesktopWhatNobodyWouldRead()
    {
        Shell shell;
        QVERIFY(shell.startDesktop());
        const QProcessEnvironment environment = shell.desktop->environment();
        QDBusConnection bus = QDBusConnection::connectToBus(
            environment.value(QStringLiteral("DBUS_SESSION_BUS_ADDRESS")),
            QStringLiteral("server"));
        NotificationServer server;
        QVERIFY(server.start(bus));
        // A shell's reader sees the line.
        QCOMPARE(shell.run({"--nonsense"}), 2);
        QVERIFY(server.shown.empty());
        // A key of the desktop has none.
        Program unread;
        QVERIFY(unread.start(qEnvironmentVariable("TOVEK_PROGRAM"), {"--quit"}, environment));
        QVERIFY(waitUntil([&] { return !server.shown.empty(); }));
        QCOMPARE(server.shown.front().body, QStringLiteral("Tovek is not running"));
        QCOMPARE(unread.waitForExit(), std::optional(1));
        server.stop(bus);
        QDBusConnection::disconnectFromBus(QStringLiteral("server"));
    }

    void needsADisplayToStart_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("a capture") << QStringList{"--capture"};
        QTest::newRow("a picture") << QStringList{"shot", "-o", "-"};
    }
    void needsADisplayToStart()
    {
        QFETCH(QStringList, arguments);
        QProcess tovek;
        QProcessEnvironment bare;
        bare.insert("HOME", QDir::tempPath());
        tovek.setProcessEnvironment(bare);
        tovek.start(qEnvironmentVariable("TOVEK_PROGRAM"), arguments);
        QVERIFY(tovek.waitForFinished());
        QCOMPARE(tovek.exitCode(), 1);
        QCOMPARE(tovek.readAllStandardError(),
                 "tovek: No display: neither DISPLAY nor WAYLAND_DISPLAY is set\n");
    }

    void saysWhatItIs()
    {
        Shell shell;
        QVERIFY(shell.startDesktop());
        QCOMPARE(shell.run({"--version"}), 0);
        QCOMPARE(shell.last->lines().size(), 1);
        static const QRegularExpression version("^Tovek \\d+\\.\\d+\\.\\d+$");
        QVERIFY(version.match(shell.last->lines().first()).hasMatch());
        QCOMPARE(shell.run({"--help"}), 0);
        QVERIFY(shell.last->lines().size() > 10);
    }

    void startsTheProgramForACapture()
    {
        Shell shell;
        QVERIFY(shell.open());
        shell.program = shell.launch({"--capture-image"});
        QVERIFY(shell.comesToCapture());
        QVERIFY(windowsTitled(*shell.eye, "General").isEmpty());
        QVERIFY(shell.hand->tap("Escape"));
        QVERIFY(waitUntil([&] { return !shell.isCapturing(); }));
        QCOMPARE(shell.run({"--quit"}), 0);
        QCOMPARE(shell.program->waitForExit(patience), std::optional(0));
    }

    void commandsTheRunningProgram()
    {
        Shell shell;
        QVERIFY(shell.open());
        shell.program = shell.launch();
        QVERIFY(shell.isOpen("General"));
        QCOMPARE(shell.run({"--about"}), 0);
        QVERIFY(shell.isOpen("About"));
        QCOMPARE(shell.run({"--preferences"}), 0);
        QVERIFY(shell.isOpen("General"));
        QCOMPARE(shell.run({"--capture"}), 0);
        QVERIFY(shell.comesToCapture());
        QVERIFY(shell.hand->tap("Escape"));
        QCOMPARE(shell.run({"--quit"}), 0);
        QCOMPARE(shell.program->waitForExit(patience), std::optional(0));
    }

    void quitsInTheMiddleOfACapture()
    {
        Shell shell;
        QVERIFY(shell.open());
        shell.program = shell.launch({"--background"});
        QVERIFY(shell.answers());
        QCOMPARE(shell.run({"--capture"}), 0);
        QVERIFY(shell.comesToCapture());
        QCOMPARE(shell.run({"--quit"}), 0);
        QCOMPARE(shell.program->waitForExit(std::chrono::seconds(10)), std::optional(0));
    }

    void countsDownBeforeACapture()
    {
        Shell shell;
        QVERIFY(shell.start());
        QVERIFY(shell.isInFront("General"));
        const QImage before = shell.eye->lookWhenStill();
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(shell.run({"--capture", "--delay", "3"}), 0);
        QVERIFY(waitUntil([&] { return differentPixels(shell.eye->look(), before) > 0; }));
        QVERIFY(!shell.isCapturing());
        QVERIFY(shell.comesToCapture());
        QVERIFY2(timer.elapsed() >= 2900, qPrintable(QString::number(timer.elapsed())));
        // The toast is gone, from the frozen picture and from the screen.
        QVERIFY(shell.hand->tap("Escape"));
        QVERIFY(waitUntil([&] { return differentPixels(shell.eye->look(), before) == 0; }));
    }

    void takesThePixelsThemselves_data()
    {
        QTest::addColumn<QStringList>("area");
        QTest::addColumn<QRect>("expected");
        QTest::newRow("all") << QStringList() << QRect(0, 0, 1280, 800);
        QTest::newRow("a screen") << QStringList{"--screen", "monitor1"} << QRect(640, 0, 640, 800);
        QTest::newRow("a region across both")
            << QStringList{"--region", "600,100,81,33"} << QRect(600, 100, 81, 33);
        QTest::newRow("a region beyond the edge")
            << QStringList{"--region", "1270,790,100,100"} << QRect(1270, 790, 10, 10);
    }
    void takesThePixelsThemselves()
    {
        QFETCH(QStringList, area);
        QFETCH(QRect, expected);
        DesktopPlan plan;
        plan.monitors = {{0, 0, 640, 800}, {640, 0, 640, 800}};
        Shell shell;
        QVERIFY(shell.open(plan));
        const QString file = QDir(shell.desktop->home()).filePath("shot.png");
        QCOMPARE(shell.run(QStringList{"shot"} + area + QStringList{"-o", file}), 0);
        QCOMPARE(differentPixels(QImage(file), shell.eye->look().copy(expected)), 0);
        // Not over it, unless it is told to.
        QCOMPARE(shell.run({"shot", "--region", "0,0,1,1", "-o", file}), 1);
        QCOMPARE(
            shell.last->errorLines(),
            QStringList{QStringLiteral("tovek: %1 exists already; --force replaces it").arg(file)});
        QCOMPARE(QImage(file).size(), expected.size());
        QCOMPARE(shell.run({"shot", "--region", "0,0,1,1", "-o", file, "--force"}), 0);
        QCOMPARE(QImage(file).size(), QSize(1, 1));
    }

    void takesTheActiveWindowWithItsFrame()
    {
        Shell shell;
        QVERIFY(shell.start());
        const SeenWindow window = shell.window("General");
        const QString file = QDir(shell.desktop->home()).filePath("window.png");
        QVERIFY(shell.isInFront("General"));
        const QImage screen = shell.eye->lookWhenStill();
        QCOMPARE(shell.run({"shot", "--window", "active", "-o", file}), 0);
        // The eye sees what lies on the root window: the frame of the window manager.
        QCOMPARE(differentPixels(QImage(file), screen.copy(window.native)), 0);
    }

    void savesWhereTheSettingsSay()
    {
        Shell shell;
        QVERIFY(shell.open());
        QCOMPARE(shell.run({"shot"}), 0);
        const QStringList names =
            QDir(shell.desktop->downloads()).entryList({"Tovek *.png"}, QDir::Files);
        QCOMPARE(names.size(), 1);
        QCOMPARE(shell.last->lines(),
                 QStringList{QDir(shell.desktop->downloads()).filePath(names.first())});
    }

    void knowsNoOtherScreen()
    {
        Shell shell;
        QVERIFY(shell.open());
        QCOMPARE(shell.run({"shot", "--screen", "nowhere", "-o", "/dev/null"}), 1);
        QVERIFY(shell.last->errorLines().value(0).startsWith(
            "tovek: there is no screen nowhere; there are: "));
        QCOMPARE(shell.run({"shot", "--region", "5000,5000,10,10", "-o", "/dev/null"}), 1);
        QCOMPARE(shell.last->errorLines(),
                 QStringList{"tovek: the region lies outside the desktop of 1280x800 pixels"});
    }

    void printsTheWordsOfAPicture()
    {
        if (!QFile::exists("/usr/share/tesseract-ocr/5/tessdata/eng.traineddata"))
            QSKIP("no English recognition model is installed");
        QTemporaryDir folder;
        const QString file = folder.filePath("words.png");
        paintWords().save(file);
        QCOMPARE(words({file}), QByteArray("plain words here\nsecond line\n"));
        const QList<QByteArray> table = words({file, "--tsv"}).trimmed().split('\n');
        QCOMPARE(table.size(), 5);
        const QList<QByteArray> first = table[0].split('\t');
        QCOMPARE(first.size(), 6);
        QVERIFY(QRect(15, 15, 90, 40)
                    .contains(QRect(first[0].toInt(), first[1].toInt(), first[2].toInt(),
                                    first[3].toInt())));
        QCOMPARE(first[4], QByteArray("1"));
        QCOMPARE(first[5], QByteArray("plain"));
        QCOMPARE(QJsonDocument::fromJson(words({file, "--json"})).array().size(), 5);
        QFile bytes(file);
        QVERIFY(bytes.open(QIODevice::ReadOnly));
        QCOMPARE(words({"-"}, bytes.readAll()), QByteArray("plain words here\nsecond line\n"));
    }

    void readsPicturesOnly()
    {
        QTemporaryDir folder;
        const QString file = folder.filePath("none.png");
        QFile text(file);
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write("no picture");
        text.close();
        QCOMPARE(words({file}), QByteArray("1"));
        QCOMPARE(words({folder.filePath("missing.png")}), QByteArray("1"));
    }

private:
    static QImage paintWords()
    {
        QImage image(400, 120, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        QFont font("DejaVu Sans");
        font.setPixelSize(22);
        painter.setFont(font);
        painter.drawText(20, 40, "plain words here");
        painter.drawText(20, 90, "second line");
        return image;
    }
    /// What it prints; its status where it fails.
    static QByteArray words(const QStringList &arguments, const QByteArray &input = {})
    {
        QProcess tovek;
        tovek.start(qEnvironmentVariable("TOVEK_PROGRAM"), QStringList{"words"} + arguments);
        tovek.write(input);
        tovek.closeWriteChannel();
        if (!tovek.waitForFinished(60000))
            return "it did not end";
        return tovek.exitCode() ? QByteArray::number(tovek.exitCode())
                                : tovek.readAllStandardOutput();
    }
};

QTEST_MAIN(TestCommandLine)
#include "tst_CommandLine.moc"
