// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/UpdateSignature.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
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

    void signsTheFeedOfARelease()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("dpkg-deb")).isEmpty())
            QSKIP("dpkg-deb is not installed");
        const QString made = run({"make-key", path("key")});
        const QByteArray publicKey = QByteArray::fromBase64(made.mid(17).trimmed().toLatin1());
        QVERIFY2(makePackage(path("tovek_0.2.0_all.deb")), "no package to offer");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("SOURCE_DATE_EPOCH"), QStringLiteral("1772892000"));
        QProcess script;
        script.setProcessEnvironment(environment);
        script.start(
            qEnvironmentVariable("TOVEK_SOURCE_DIR") + QStringLiteral("/scripts/feed-entry"),
            {tool(), path("key"), QStringLiteral("https://example.org/of/0.2.0/"), m_folder->path(),
             QStringLiteral("0.2.0"), QStringLiteral("tovek_0.2.0_all.deb")});
        QVERIFY(script.waitForFinished());
        QVERIFY2(script.exitCode() == 0, script.readAllStandardError().constData());
        const auto feed = readFeed(script.readAllStandardOutput());
        QVERIFY(std::holds_alternative<UpdateFeed>(feed));
        const UpdateFeed accepted =
            UpdateSignature::signedPart(std::get<UpdateFeed>(feed), publicKey);
        QCOMPARE(accepted.date, QDateTime(QDate(2026, 3, 7), QTime(14, 0), QTimeZone::utc()));
        QCOMPARE(accepted.items.size(), 1);
        const UpdateItem &item = accepted.items.first();
        QCOMPARE(item.versionText, QStringLiteral("0.2.0"));
        QCOMPARE(item.minimumSystemText, QStringLiteral("2.34"));
        QVERIFY2(item.notes.contains(QStringLiteral("freezes every screen")),
                 qPrintable(item.notes));
        QCOMPARE(item.packages.size(), 1);
        QCOMPARE(item.packages.first().url,
                 QUrl(QStringLiteral("https://example.org/of/0.2.0/tovek_0.2.0_all.deb")));
        const auto other = UpdateSignature::makeKeyPair();
        QVERIFY(UpdateSignature::signedPart(std::get<UpdateFeed>(feed), other.publicKey)
                    .items.isEmpty());
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
    static QString tool()
    {
        return QCoreApplication::applicationDirPath() + QStringLiteral("/../bin/sign_update");
    }
    /// What it prints; empty when it fails.
    static QString run(const QStringList &words)
    {
        QProcess process;
        process.start(tool(), words);
        return process.waitForFinished() && process.exitCode() == 0
            ? QString::fromUtf8(process.readAllStandardOutput())
            : QString();
    }
    /// A package that has nothing in it but what it needs.
    bool makePackage(const QString &file) const
    {
        const QString folder = path("package-of-nothing");
        QFile control(folder + QStringLiteral("/DEBIAN/control"));
        if (!QDir().mkpath(folder + QStringLiteral("/DEBIAN"))
            || !control.open(QIODevice::WriteOnly))
            return false;
        control.write("Package: tovek\nVersion: 0.2.0\nArchitecture: all\n"
                      "Depends: libc6 (>= 2.34), libqt6core6\n"
                      "Maintainer: Nobody <nobody@example.org>\nDescription: nothing\n");
        control.close();
        return QProcess::execute(QStringLiteral("dpkg-deb"),
                                 {QStringLiteral("--build"), QStringLiteral("-Znone"),
                                  QStringLiteral("--root-owner-group"), folder, file})
            == 0;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(TestSignUpdate)
#include "tst_SignUpdate.moc"
