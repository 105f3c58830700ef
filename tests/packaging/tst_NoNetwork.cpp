// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

/// The resident program holds no code that could send anything: only the one that checks for
/// updates does.
class TestNoNetwork : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("ldd")).isEmpty())
            QSKIP("ldd is not installed");
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void isOnlyInWhatChecksForUpdates_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<bool>("hasNetwork");
        const QString folder = QCoreApplication::applicationDirPath();
        QTest::newRow("tovek") << qEnvironmentVariable("TOVEK_PROGRAM") << false;
        QTest::newRow("tovek of a build with updates")
            << folder + QStringLiteral("/tovek_with_updates") << false;
        // If this row fails, the others prove nothing.
        QTest::newRow("what checks for updates")
            << folder + QStringLiteral("/update_under_test") << true;
    }
    void isOnlyInWhatChecksForUpdates()
    {
        QFETCH(QString, program);
        QFETCH(bool, hasNetwork);
        const QStringList libraries = librariesOf(program);
        QVERIFY(!libraries.isEmpty());
        static const QRegularExpression network(
            QStringLiteral("Network|libssl|libcurl|libsodium|gnutls|libsoup"));
        QCOMPARE(!libraries.filter(network).isEmpty(), hasNetwork);
    }

private:
    /// All that are loaded when it starts, those of libraries included.
    static QStringList librariesOf(const QString &program)
    {
        QProcess ldd;
        ldd.start(QStringLiteral("ldd"), {program});
        if (!ldd.waitForFinished() || ldd.exitCode() != 0)
            return {};
        return QString::fromUtf8(ldd.readAllStandardOutput())
            .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
};

QTEST_GUILESS_MAIN(TestNoNetwork)
#include "tst_NoNetwork.moc"
