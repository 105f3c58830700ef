// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/program/PackageOpener.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;

class TestPackageOpener : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_path = qgetenv("PATH"); }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_folder = std::make_unique<QTemporaryDir>();
        m_answers.clear();
        qputenv("PATH", m_folder->path().toUtf8());
    }
    void cleanup() { qputenv("PATH", m_path); }

    void tellsWhetherThePackageWasTaken_data()
    {
        QTest::addColumn<QByteArray>("opener"); // empty: there is none
        QTest::addColumn<bool>("isTaken");
        QTest::newRow("taken") << QByteArray("exit 0") << true;
        QTest::newRow("refused") << QByteArray("exit 3") << false;
        QTest::newRow("killed") << QByteArray("kill -9 $$") << false;
        QTest::newRow("no such program") << QByteArray() << false;
        QTest::newRow("given another file") << QByteArray("test \"$1\" = other") << false;
        QTest::newRow("given the file") << QByteArray("test \"$1\" = /a/b.deb") << true;
    }
    void tellsWhetherThePackageWasTaken()
    {
        QFETCH(QByteArray, opener);
        QFETCH(bool, isTaken);
        if (!opener.isEmpty())
            install(opener);
        PackageOpener packages;
        packages.open(QStringLiteral("/a/b.deb"), [this](bool is) { m_answers << is; });
        QTRY_COMPARE_WITH_TIMEOUT(m_answers, QList<bool>{isTaken}, 20000);
    }

    void leavesTheInstallerRunningAtItsEnd()
    {
        // It goes on when somebody listens, and says so.
        const QByteArray fifo = m_folder->filePath(QStringLiteral("fifo")).toUtf8();
        qputenv("PATH", m_folder->path().toUtf8() + ":" + m_path);
        QCOMPARE(QProcess::execute(QStringLiteral("mkfifo"),
                                   {QString::fromUtf8(fifo), QString::fromUtf8(fifo + ".end")}),
                 0);
        install("echo started > $1; echo installed > $1.end");
        auto packages = std::make_unique<PackageOpener>();
        packages->open(QString::fromUtf8(fifo), [this](bool is) { m_answers << is; });
        QCOMPARE(lineFrom(fifo), QByteArray("started\n"));
        packages.reset();
        QCOMPARE(m_answers, QList<bool>());
        QCOMPARE(lineFrom(fifo + ".end"), QByteArray("installed\n"));
    }

private:
    void install(const QByteArray &script) const
    {
        QFile file(m_folder->filePath(QStringLiteral("xdg-open")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + script + '\n');
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    static QByteArray lineFrom(const QByteArray &fifo)
    {
        QProcess reader;
        reader.start(QStringLiteral("cat"), {QString::fromUtf8(fifo)});
        return reader.waitForFinished(20000) ? reader.readAllStandardOutput() : QByteArray();
    }

    QByteArray m_path;
    std::unique_ptr<QTemporaryDir> m_folder;
    QList<bool> m_answers;
};

QTEST_GUILESS_MAIN(TestPackageOpener)
#include "tst_PackageOpener.moc"
