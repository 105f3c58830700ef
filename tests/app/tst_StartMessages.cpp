// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/StartMessages.h"

#include <QLoggingCategory>
#include <QProcess>
#include <QTest>

using namespace tovek;

namespace {

struct Said
{
    QtMsgType type;
    QByteArray category;
    QString text;

    bool operator==(const Said &) const = default;
};

QList<Said> said;

void listen(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    said.append({type, context.category, text});
}

} // namespace

class TestStartMessages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        said.clear();
    }

    void areSaidAsTheyWereWhenTheStartIsOver()
    {
        const QLoggingCategory category("some.plugin", QtDebugMsg);
        const QtMessageHandler before = qInstallMessageHandler(&listen);
        auto messages = std::make_unique<StartMessages>();
        qCDebug(category, "looks here: %%s");
        qCInfo(category, "looks there");
        qWarning("not there");
        qCritical("nowhere");
        const QList<Said> whileHeld = said;
        messages.reset();
        qWarning("as always");
        qInstallMessageHandler(before);
        QVERIFY(whileHeld.isEmpty());
        const QList<Said> expected{
            {QtDebugMsg, "some.plugin", QStringLiteral("looks here: %s")},
            {QtInfoMsg, "some.plugin", QStringLiteral("looks there")},
            {QtWarningMsg, "default", QStringLiteral("not there")},
            {QtCriticalMsg, "default", QStringLiteral("nowhere")},
            {QtWarningMsg, "default", QStringLiteral("as always")},
        };
        QVERIFY(said == expected);
    }

    void nameTheCauseOfAFailedStart_data()
    {
        QTest::addColumn<QString>("variable");
        QTest::addColumn<bool>("isOneLine"); // or the toolkit's own words, and its own end
        QTest::newRow("as always") << QString() << true;
        QTest::newRow("fatal warnings") << QStringLiteral("QT_FATAL_WARNINGS") << false;
    }
    void nameTheCauseOfAFailedStart()
    {
        QFETCH(QString, variable);
        QFETCH(bool, isOneLine);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("nowhere"));
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                           QStringLiteral("unix:path=/nowhere"));
        environment.remove(QStringLiteral("DISPLAY"));
        if (!variable.isEmpty())
            environment.insert(variable, QStringLiteral("1"));
        QProcess program;
        program.setProcessEnvironment(environment);
        program.start(qEnvironmentVariable("TOVEK_PROGRAM"), {});
        QVERIFY(program.waitForFinished(20000));
        const QByteArray lines = program.readAllStandardOutput();
        const QByteArray errors = program.readAllStandardError();
        QCOMPARE(program.exitStatus() == QProcess::NormalExit && program.exitCode() == 1,
                 isOneLine);
        QVERIFY2((isOneLine ? lines : errors).contains("\"nowhere\""), errors.constData());
        QCOMPARE(lines.count("Failed to start: "), isOneLine ? 1 : 0);
        QCOMPARE(errors.isEmpty(), isOneLine);
    }
};

QTEST_GUILESS_MAIN(TestStartMessages)
#include "tst_StartMessages.moc"
