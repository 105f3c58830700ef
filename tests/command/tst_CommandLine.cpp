// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "command/CommandLine.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

Command parse(const char *line)
{
    const QString text = QString::fromUtf8(line);
    return parseCommandLine(text.split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

ActionCommand action(const char *name, int delay = 0)
{
    return {QString::fromLatin1(name), delay};
}

ShotCommand shot(ShotArea area, const char *output = "")
{
    ShotCommand command;
    command.area = area;
    command.output = QString::fromLatin1(output);
    return command;
}

} // namespace

class TestCommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void understands_data()
    {
        QTest::addColumn<Command>("expected");
        const auto row = [](const char *line, const Command &expected) {
            QTest::newRow(line) << expected;
        };
        row("", StartCommand{});
        row("--background", StartCommand{true});
        row("--capture", action("start-capture"));
        row("--capture-image", action("capture-image"));
        row("--capture-text", action("capture-text"));
        row("--background --capture-text", action("capture-text"));
        row("--preferences", action("preferences"));
        row("--about", action("about"));
        row("--check-for-updates", action("check-for-updates"));
        row("--quit", action("quit"));
        row("--quit --quit", action("quit"));
        row("--capture --delay 1", action("start-capture", 1));
        row("--delay=3600 --capture-image", action("capture-image", 3600));
        row("--capture --delay 0", action("start-capture"));
        row("--version", VersionCommand{});
        row("--remove-shortcuts", RemoveShortcutsCommand{});
        row("--capture --help", HelpCommand{});
        row("-h", HelpCommand{});
        row("-platform offscreen -reverse --background", StartCommand{true});
        row("words -h", HelpCommand{QStringLiteral("words")});
        row("shot --help", HelpCommand{QStringLiteral("shot")});
        addPictures();
    }
    void understands()
    {
        QFETCH(Command, expected);
        QVERIFY(parse(QTest::currentDataTag()) == expected);
    }

    void refuses_data()
    {
        QTest::addColumn<QString>("reason");
        const auto row = [](const char *line, const char *reason) {
            QTest::newRow(line) << QString::fromLatin1(reason);
        };
        row("--nonsense", "unknown option --nonsense");
        row("--nonsense=3", "unknown option --nonsense");
        row("-x", "unknown option -x");
        row("--tsv", "unknown option --tsv");
        row("shot --capture", "unknown option --capture");
        row("shot -platform", "unknown option -platform");
        row("shoot", "unknown command shoot");
        row("--capture shot", "unexpected argument shot");
        row("shot a.png", "unexpected argument a.png");
        row("words a.png b.png", "unexpected argument b.png");
        row("words", "words needs a picture: FILE or - for standard input");
        row("--capture=now", "--capture takes no value");
        row("--capture --quit", "--capture and --quit exclude each other");
        row("shot --all --region 0,0,1,1", "--all and --region exclude each other");
        row("words - --tsv --json", "--tsv and --json exclude each other");
        row("--capture --delay", "--delay needs a value: SECONDS");
        row("--delay 3", "--delay goes with a capture");
        row("--quit --delay 3", "--delay goes with a capture");
        for (const char *line : {"--capture --delay -1", "--capture --delay 3601",
                                 "--capture --delay x", "--capture --delay="})
            row(line, "--delay needs a whole number of seconds up to 3600");
        for (const char *line :
             {"shot --region 0,0,0,1", "shot --region 1,2,3", "shot --region 1,2,3,4,5",
              "shot --region a,b,c,d", "shot --region 0,0,46341,1", "shot --region 0,0,-5,5"})
            row(line, "--region needs four numbers of pixels: X,Y,W,H");
        row("shot --window 5", "--window knows only: active");
        row("shot --output=", "--output needs a value: FILE");
    }
    void refuses()
    {
        QFETCH(QString, reason);
        const Command command = parse(QTest::currentDataTag());
        const auto *wrong = std::get_if<WrongCommand>(&command);
        QVERIFY(wrong);
        QCOMPARE(wrong->reason, reason);
    }

private:
    static void addPictures()
    {
        const auto row = [](const char *line, const Command &expected) {
            QTest::newRow(line) << expected;
        };
        row("shot", shot(ShotArea::allScreens));
        row("shot --all -o -", shot(ShotArea::allScreens, "-"));
        row("shot -o a.png", shot(ShotArea::allScreens, "a.png"));
        row("shot --output=a=b.png", shot(ShotArea::allScreens, "a=b.png"));
        row("shot --window active", shot(ShotArea::activeWindow));
        ShotCommand command = shot(ShotArea::screen);
        command.screen = QStringLiteral("DP-1");
        row("shot --screen DP-1", command);
        command = shot(ShotArea::region, "a.png");
        command.region = {-10, 20, 300, 1};
        command.mayReplace = true;
        row("shot --region -10,20,300,1 --force -o a.png", command);
        command.region = {0, 0, 46340, 46340};
        row("shot --region=0,0,46340,46340 --force -o a.png", command);
        row("words -", WordsCommand{QStringLiteral("-"), WordsFormat::text});
        row("words a.png --tsv", WordsCommand{QStringLiteral("a.png"), WordsFormat::tabs});
        row("words --json -- --a", WordsCommand{QStringLiteral("--a"), WordsFormat::json});
    }
};

QTEST_APPLESS_MAIN(TestCommandLine)
#include "tst_CommandLine.moc"
