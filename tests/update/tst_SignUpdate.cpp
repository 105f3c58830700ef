// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/UpdateSignature.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

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
        const QString line = run({"sign", path("key"), "1.2", path("package")});
        static const QRegularExpression form(
            QStringLiteral("^length=\"15\" signature=\"([^\"]+)\"\n$"));
        const auto match = form.match(line);
        QVERIFY2(match.hasMatch(), qPrintable(line));
        const QByteArray signature = QByteArray::fromBase64(match.captured(1).toLatin1());
        const auto digest = UpdateSignature::digest(package);
        QVERIFY(digest);
        QVERIFY(UpdateSignature::isValid(signature, publicKey, QStringLiteral("1.2"), 15, *digest));
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
        QTest::newRow("no key") << QStringList{"sign", "/nowhere", "1.2", "/etc/hostname"};
        QTest::newRow("an empty key") << QStringList{"sign", "/dev/null", "1.2", "/etc/hostname"};
        QTest::newRow("no version") << QStringList{"sign", "/dev/null", "soon", "/etc/hostname"};
        QTest::newRow("no package") << QStringList{"sign", "/dev/null", "1.2", "/nowhere"};
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
