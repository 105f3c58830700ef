// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/UpdateSignature.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

using namespace tovek;

/// The tool of whoever publishes, against what the program verifies with.
class TestSignUpdate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_folder = std::make_unique<QTemporaryDir>();
    }

    void signsWhatTheProgramAccepts()
    {
        const QString made = run({"make-key", path("key")});
        QVERIFY(made.startsWith(QStringLiteral("TOVEK_UPDATE_KEY=")));
        const QByteArray publicKey = QByteArray::fromBase64(made.mid(17).trimmed().toLatin1());
        QCOMPARE(publicKey.size(), UpdateSignature::publicKeyBytes);
        QCOMPARE(QFile::permissions(path("key"))
                     & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther),
                 QFile::Permissions());
        QFile package(path("package"));
        QVERIFY(package.open(QIODevice::ReadWrite) && package.write("the new program") == 15);
        QVERIFY(package.flush() && package.seek(0));
        const QString line = run({"sign", path("key"), "Sat, 07 Mar 2026 14:00:00 +0000", "1.2",
                                  "debian", "arm64", "2.36", path("package")});
        static const QRegularExpression form(
            QStringLiteral("^kind=\"debian\" architecture=\"arm64\" length=\"15\" "
                           "digest=\"([^\"]+)\" signature=\"([^\"]+)\"\n$"));
        const auto match = form.match(line);
        QVERIFY2(match.hasMatch(), qPrintable(line));
        const auto digest = UpdateSignature::digest(package);
        QVERIFY(digest);
        QCOMPARE(QByteArray::fromBase64(match.captured(1).toLatin1()), *digest);
        const SignedEntry entry{QStringLiteral("1.2"),
                                PackageKind::debian,
                                QStringLiteral("arm64"),
                                15,
                                *digest,
                                QStringLiteral("2.36"),
                                QDateTime(QDate(2026, 3, 7), QTime(14, 0), QTimeZone::utc())};
        const QByteArray signature = QByteArray::fromBase64(match.captured(2).toLatin1());
        QVERIFY(UpdateSignature::isValid(signature, publicKey, entry));
    }

    void replacesNoKey()
    {
        QVERIFY(!run({"make-key", path("key")}).isEmpty());
        QVERIFY(run({"make-key", path("key")}).isEmpty());
    }

    void signsNothingThatIsWrong_data()
    {
        QTest::addColumn<QStringList>("words");
        QTest::newRow("nothing") << QStringList();
        const auto row = [](const char *name, const QString &key, const QString &date,
                            const QString &version, const QString &kind, const QString &system,
                            const QString &package) {
            QTest::newRow(name) << QStringList{"sign", key,      date,   version,
                                               kind,   "x86_64", system, package};
        };
        const QString day = QStringLiteral("Sat, 07 Mar 2026 14:00:00 +0000");
        const QString file = QStringLiteral("/etc/hostname");
        row("no key", "/nowhere", day, "1.2", "debian", "any", file);
        row("an empty key", "/dev/null", day, "1.2", "debian", "any", file);
        row("no date", "/dev/null", "today", "1.2", "debian", "any", file);
        row("no version", "/dev/null", day, "soon", "debian", "any", file);
        row("no kind", "/dev/null", day, "1.2", "zip", "any", file);
        row("no system", "/dev/null", day, "1.2", "debian", "new", file);
        row("no package", "/dev/null", day, "1.2", "debian", "any", "/nowhere");
    }
    void signsNothingThatIsWrong()
    {
        QFETCH(QStringList, words);
        QCOMPARE(run(words), QString());
    }

private:
    QString path(const char *name) const { return m_folder->filePath(QLatin1String(name)); }
    /// What it prints; empty when it fails.
    static QString run(const QStringList &words)
    {
        QProcess tool;
        tool.start(QCoreApplication::applicationDirPath() + QStringLiteral("/../bin/sign_update"),
                   words);
        return tool.waitForFinished() && tool.exitCode() == 0
            ? QString::fromUtf8(tool.readAllStandardOutput())
            : QString();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(TestSignUpdate)
#include "tst_SignUpdate.moc"
