// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/FileWriter.h"
#include "support/FullDisk.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tovek;

class TestFileWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".*"));
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
    }

    void writesANewFile()
    {
        QVERIFY(!writeFile(path(), "bytes"));
        QCOMPARE(read(path()), QByteArray("bytes"));
        const mode_t mask = umask(022);
        umask(mask);
        QCOMPARE(QFile::permissions(path()).testFlag(QFile::ReadOther), !(mask & 04));
        QCOMPARE(entries(), QStringList("a picture.png"));
    }

    void replacesAnExistingFile()
    {
        QVERIFY(!writeFile(path(), "a longer first one"));
        QVERIFY(!writeFile(path(), "second"));
        QCOMPARE(read(path()), QByteArray("second"));
        QCOMPARE(entries(), QStringList("a picture.png"));
    }

    void writesThroughALink()
    {
        const QString target = m_folder->filePath(QStringLiteral("target"));
        QVERIFY(!writeFile(target, "old"));
        QVERIFY(QFile::link(target, path()));
        QVERIFY(!writeFile(path(), "new"));
        QCOMPARE(read(target), QByteArray("new"));
        QVERIFY(QFileInfo(path()).isSymLink());
    }

    void namesTheReason_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("error");
        QTest::newRow("no folder") << "missing/x.png" << ENOENT;
        QTest::newRow("folder is a file") << "file/x.png" << ENOTDIR;
        QTest::newRow("is a folder") << "folder" << EISDIR;
        QTest::newRow("full disk") << "full" << ENOSPC;
    }
    void namesTheReason()
    {
        QFETCH(QString, file);
        QFETCH(int, error);
        QVERIFY(!writeFile(m_folder->filePath(QStringLiteral("file")), "x"));
        QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("folder")));
        QVERIFY(
            QFile::link(QStringLiteral("/dev/full"), m_folder->filePath(QStringLiteral("full"))));
        const QStringList before = entries();
        QCOMPARE(writeFile(m_folder->filePath(file), "bytes"),
                 std::optional(qt_error_string(error)));
        QCOMPARE(entries(), before);
    }

    void namesAReadOnlyFolder()
    {
        if (geteuid() == 0)
            QSKIP("The superuser may write everywhere");
        QFile::setPermissions(m_folder->path(), QFile::ReadOwner | QFile::ExeOwner);
        const auto reason = writeFile(path(), "x");
        QFile::setPermissions(m_folder->path(),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QCOMPARE(reason, std::optional(qt_error_string(EACCES)));
    }

    void leavesNothingHalfDoneWhenItsProcessIsKilled()
    {
        const int unnamed = open(QFile::encodeName(m_folder->path()).constData(),
                                 O_WRONLY | O_TMPFILE | O_CLOEXEC, 0600);
        if (unnamed < 0)
            QSKIP("The file system has no files without a name");
        close(unnamed);
        const QByteArray bytes(40'000'000, 'x');
        int killed = 0;
        for (int delayMs = 1; delayMs < 20; delayMs += 2) {
            QFile::remove(path());
            const pid_t writer = fork();
            if (writer == 0)
                _exit(writeFile(path(), bytes) ? 1 : 0);
            QTest::qSleep(delayMs);
            kill(writer, SIGKILL);
            int status = 0;
            QCOMPARE(waitpid(writer, &status, 0), writer);
            killed += WIFSIGNALED(status);
            const QStringList left = entries();
            QVERIFY2(left.isEmpty() || left == QStringList("a picture.png"),
                     qPrintable(left.join(QLatin1Char(' '))));
            QVERIFY(left.isEmpty() || QFileInfo(path()).size() == bytes.size());
        }
        QVERIFY(killed > 0);
    }

    void keepsTheOlderFileWhenTheDiskFillsUp()
    {
        QVERIFY(!writeFile(path(), "older"));
        const auto reason = [this] {
            const FullDisk full(100000);
            return writeFile(path(), QByteArray(1000000, 'x'));
        }();
        QCOMPARE(reason, std::optional(qt_error_string(EFBIG)));
        QCOMPARE(read(path()), QByteArray("older"));
        QCOMPARE(entries(), QStringList("a picture.png"));
    }

private:
    QString path() const { return m_folder->filePath(QStringLiteral("a picture.png")); }
    QStringList entries() const
    {
        return QDir(m_folder->path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
    static QByteArray read(const QString &name)
    {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_APPLESS_MAIN(TestFileWriter)
#include "tst_FileWriter.moc"
