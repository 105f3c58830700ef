// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "command/CommandHelp.h"
#include "command/CommandTable.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;

namespace {

/// Everything that looks like a long option.
QStringList longOptionsIn(const QString &text)
{
    static const QRegularExpression option(QStringLiteral("(?<![\\w-])--[a-z][a-z-]*"));
    QStringList found;
    for (auto matches = option.globalMatch(text); matches.hasNext();)
        found += matches.next().captured();
    found.removeAll(QStringLiteral("--listactivemonitors")); // asked by the scripts themselves
    found.removeDuplicates();
    found.sort();
    return found;
}

QStringList longOptionsOfTheTable(const QString &command)
{
    QStringList names;
    for (const OptionInfo &option : allOptions()) {
        if (command == QLatin1String(option.command))
            names += QString::fromLatin1(option.name);
    }
    names.sort();
    return names;
}

} // namespace

class TestCommandHelp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_folder.isValid()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void isAsItWas_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("help.txt") << QString();
        QTest::newRow("shot-help.txt") << QStringLiteral("shot");
        QTest::newRow("words-help.txt") << QStringLiteral("words");
    }
    void isAsItWas()
    {
        QFETCH(QString, command);
        QFile golden(qEnvironmentVariable("TOVEK_SOURCE_DIR")
                     + QStringLiteral("/tests/command/golden/")
                     + QString::fromLatin1(QTest::currentDataTag()));
        QVERIFY(golden.open(QIODevice::ReadOnly));
        QCOMPARE(helpText(command), QString::fromUtf8(golden.readAll()));
    }

    void namesEveryOption()
    {
        for (const char *name : {"", "shot", "words"}) {
            const auto command = QString::fromLatin1(name);
            QCOMPARE(longOptionsIn(helpText(command)), longOptionsOfTheTable(command));
        }
    }

    void fitsATerminal()
    {
        for (const char *name : {"", "shot", "words"}) {
            for (const QString &line : helpText(QString::fromLatin1(name)).split(QLatin1Char('\n')))
                QVERIFY2(line.size() <= 120, qPrintable(line));
        }
    }

    void agreesWithTheManual()
    {
        for (const char *name : {"", "shot", "words"}) {
            const auto command = QString::fromLatin1(name);
            QString manual = manualOptions(command);
            manual.replace(QLatin1String("Fl -"), QLatin1String("--"));
            QCOMPARE(longOptionsIn(manual), longOptionsOfTheTable(command));
        }
    }

    void completesInBash_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QStringList>("expected");
        addCompletions();
    }
    void completesInBash()
    {
        QFETCH(QString, line);
        const QString bash = shell("bash");
        const QString script = written("tovek.bash", bashCompletion());
        const QString run = QStringLiteral("source %1; compopt() { :; }; COMP_WORDS=(%2); "
                                           "COMP_CWORD=%3; _tovek; printf '%s\\n' "
                                           "\"${COMPREPLY[@]}\"")
                                .arg(script, quoted(line))
                                .arg(line.count(QLatin1Char(' ')));
        compare(output(bash, {QStringLiteral("--norc"), QStringLiteral("-c"), run}));
    }

    void completesInFish_data() { completesInBash_data(); }
    void completesInFish()
    {
        QFETCH(QString, line);
        if (shell("fish").isEmpty())
            QSKIP("fish is not installed");
        const QString script = written("tovek.fish", fishCompletion());
        QStringList lines =
            output(shell("fish"),
                   {QStringLiteral("--no-config"), QStringLiteral("-c"),
                    QStringLiteral("source %1; complete -C '%2'").arg(script, line)});
        for (QString &found : lines)
            found = found.section(QLatin1Char('\t'), 0, 0);
        // From version 4 on, what has the letters anywhere comes after what begins with them.
        const QString begun = line.section(QLatin1Char(' '), -1);
        erase_if(lines, [&](const QString &found) { return !found.startsWith(begun); });
        compare(lines);
    }

    void isUnderstoodByZsh()
    {
        if (shell("zsh").isEmpty())
            QSKIP("zsh is not installed");
        const QString script = written("_tovek", zshCompletion());
        QCOMPARE(output(shell("zsh"), {QStringLiteral("-n"), script}), QStringList());
        // Called with a completion system that prints what it is given.
        const QString run =
            QStringLiteral("_arguments() { print -l -- \"$@\"; }; _describe() { :; };"
                           "words=(tovek %1); CURRENT=3; source %2");
        for (const char *name : {"", "shot", "words"}) {
            const auto command = QString::fromLatin1(name);
            const QString given =
                output(shell("zsh"),
                       {QStringLiteral("-f"), QStringLiteral("-c"), run.arg(command, script)})
                    .join(QLatin1Char('\n'));
            QCOMPARE(longOptionsIn(given), longOptionsOfTheTable(command));
        }
    }

    void quotesAnyHelp_data()
    {
        QTest::addColumn<QString>("shellName");
        QTest::addColumn<bool>("isFish");
        QTest::newRow("bash") << QStringLiteral("bash") << false;
        QTest::newRow("zsh") << QStringLiteral("zsh") << false;
        QTest::newRow("fish") << QStringLiteral("fish") << true;
    }
    void quotesAnyHelp()
    {
        QFETCH(QString, shellName);
        QFETCH(bool, isFish);
        const QString program = QStandardPaths::findExecutable(shellName);
        if (program.isEmpty())
            QSKIP(qPrintable(shellName + QStringLiteral(" is not installed")));
        for (const char *text : {"The screen's name", "'", "''", "a \\ in it", "ends with \\",
                                 "\\'", "$HOME (or *) \"x\""}) {
            const QString given = QString::fromLatin1(text);
            const QString word = isFish ? fishWord(given) : shellWord(given);
            QCOMPARE(output(program, {QStringLiteral("-c"), QStringLiteral("printf %s ") + word}),
                     QStringList(given));
        }
    }

private:
    static void addCompletions()
    {
        const auto row = [](const char *line, const QStringList &expected) {
            QTest::newRow(line) << QString::fromLatin1(line) << expected;
        };
        row("tovek --cap", {"--capture", "--capture-image", "--capture-text"});
        row("tovek sh", {"shot"});
        row("tovek --capture --d", {"--delay"});
        row("tovek shot --f", {"--force"});
        row("tovek shot --window a", {"active"});
        row("tovek words --", {"--help", "--json", "--tsv"});
    }
    void compare(QStringList found)
    {
        QFETCH(QStringList, expected);
        found.sort();
        QCOMPARE(found, expected);
    }
    static QString shell(const char *name)
    {
        return QStandardPaths::findExecutable(QString::fromLatin1(name));
    }
    static QString quoted(const QString &line)
    {
        QStringList words = line.split(QLatin1Char(' '));
        for (QString &word : words)
            word = '\'' + word + '\'';
        return words.join(QLatin1Char(' '));
    }
    QString written(const char *name, const QString &text) const
    {
        QFile file(m_folder.filePath(QString::fromLatin1(name)));
        if (file.open(QIODevice::WriteOnly))
            file.write(text.toUtf8());
        return file.fileName();
    }
    /// Both outputs, so that a complaint is seen as well.
    static QStringList output(const QString &program, const QStringList &arguments)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(program, arguments);
        process.waitForFinished();
        return QString::fromUtf8(process.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(TestCommandHelp)
#include "tst_CommandHelp.moc"
