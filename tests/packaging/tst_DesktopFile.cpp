// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "command/CommandLine.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

using namespace tovek;

class TestDesktopFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void isValid()
    {
        const QString validator =
            QStandardPaths::findExecutable(QStringLiteral("desktop-file-validate"));
        if (validator.isEmpty())
            QSKIP("desktop-file-validate is not installed");
        QProcess process;
        process.start(validator, {path()});
        QVERIFY(process.waitForFinished());
        const QByteArray output = process.readAllStandardOutput() + process.readAllStandardError();
        QVERIFY2(output.isEmpty(), output.constData());
        QCOMPARE(process.exitCode(), 0);
    }

    void offersEveryActionWithAName()
    {
        QFile file(path());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        const QStringList actions{
            QStringLiteral("start-capture"), QStringLiteral("capture-image"),
            QStringLiteral("capture-text"),  QStringLiteral("preferences"),
            QStringLiteral("about"),         QStringLiteral("check-for-updates"),
            QStringLiteral("quit"),
        };
        QVERIFY(
            text.contains(QStringLiteral("\nActions=%1;\n").arg(actions.join(QLatin1Char(';')))));
        for (const QString &action : actions) {
            const QRegularExpression section(
                QStringLiteral("\n\\[Desktop Action %1\\]\nName=[^\n]+\nExec=tovek ([^\n]+)\n")
                    .arg(action));
            const QRegularExpressionMatch match = section.match(text);
            QVERIFY2(match.hasMatch(), qPrintable(action));
            // A desktop that does not ask over the bus starts this.
            const Command command = parseCommandLine({match.captured(1)});
            const auto *asked = std::get_if<ActionCommand>(&command);
            QVERIFY2(asked && asked->action == action, qPrintable(action));
        }
    }

private:
    static QString path()
    {
        return qEnvironmentVariable("TOVEK_SOURCE_DIR")
            + QStringLiteral("/packaging/org.tovek.Tovek.desktop");
    }
};

QTEST_GUILESS_MAIN(TestDesktopFile)
#include "tst_DesktopFile.moc"
