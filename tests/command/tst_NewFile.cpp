// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "command/NewFile.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace tovek;

class TestNewFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_folder = std::make_unique<QTemporaryDir>();
    }

    void writesForTheOwnerAlone()
    {
        const mode_t before = umask(0);
        const auto error = writeNewFile(path("new"), "picture");
        umask(before);
        QCOMPARE(error, std::optional<QString>());
        QCOMPARE(content("new"), QByteArray("picture"));
        struct stat status
        {
        };
        QCOMPARE(stat(QFile::encodeName(path("new")).constData(), &status), 0);
        QCOMPARE(status.st_mode & 07777, mode_t(0600));
    }

    void leavesWhatIsThereAlone_data()
    {
        QTest::addColumn<bool>("isLink");
        QTest::newRow("a file") << false;
        QTest::newRow("a link that leads nowhere") << true;
    }
    void leavesWhatIsThereAlone()
    {
        QFETCH(bool, isLink);
        if (isLink) {
            QVERIFY(QFile::link(path("target"), path("there")));
        } else {
            QFile there(path("there"));
            QVERIFY(there.open(QIODevice::WriteOnly));
            there.write("before");
        }
        QVERIFY(writeNewFile(path("there"), "picture"));
        QVERIFY(!QFileInfo::exists(path("target")));
        QCOMPARE(content("there"), isLink ? QByteArray() : QByteArray("before"));
    }

    void writesToADevice()
    {
        QCOMPARE(writeNewFile(QStringLiteral("/dev/null"), "picture"), std::optional<QString>());
        QVERIFY(QFileInfo::exists(QStringLiteral("/dev/null")));
    }

    void tellsOfAFullDisk()
    {
        if (!QFileInfo::exists(QStringLiteral("/dev/full")))
            QSKIP("there is no /dev/full");
        QCOMPARE(writeNewFile(QStringLiteral("/dev/full"), "picture"),
                 std::optional(QStringLiteral("No space left on device")));
        QVERIFY(QFileInfo::exists(QStringLiteral("/dev/full")));
    }

    void needsItsFolder()
    {
        QCOMPARE(writeNewFile(path("no/folder"), "picture"),
                 std::optional(QStringLiteral("No such file or directory")));
    }

private:
    QString path(const char *name) const { return m_folder->filePath(QString::fromLatin1(name)); }
    QByteArray content(const char *name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_APPLESS_MAIN(TestNewFile)
#include "tst_NewFile.moc"
