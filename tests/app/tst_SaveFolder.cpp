// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/SaveFolder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

using namespace tovek;

class TestSaveFolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void abbreviatesWhatIsAtHome_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("home");
        QTest::addColumn<QString>("shown");
        const QString home = QStringLiteral("/home/me");
        QTest::newRow("home") << home << home << QStringLiteral("~");
        QTest::newRow("in it") << QStringLiteral("/home/me/a b") << home << QStringLiteral("~/a b");
        QTest::newRow("deep") << QStringLiteral("/home/me/a/b/") << home << QStringLiteral("~/a/b");
        QTest::newRow("a neighbour")
            << QStringLiteral("/home/meg/a") << home << QStringLiteral("/home/meg/a");
        QTest::newRow("elsewhere") << QStringLiteral("/srv") << home << QStringLiteral("/srv");
        QTest::newRow("home with a slash")
            << QStringLiteral("/home/me/a") << QStringLiteral("/home/me/") << QStringLiteral("~/a");
        QTest::newRow("no home") << QStringLiteral("/a") << QString() << QStringLiteral("/a");
        QTest::newRow("home is the root")
            << QStringLiteral("/a") << QStringLiteral("/") << QStringLiteral("/a");
    }
    void abbreviatesWhatIsAtHome()
    {
        QFETCH(QString, path);
        QFETCH(QString, home);
        QTEST(abbreviatedPath(path, home), "shown");
    }

    void knowsWhatCanBeWrittenTo()
    {
        QTemporaryDir dir;
        QVERIFY(folderState(dir.path()) == FolderState::usable);
        QVERIFY(folderState(dir.filePath(QStringLiteral("none"))) == FolderState::missing);
        QVERIFY(folderState(QString()) == FolderState::missing);
        QFile file(dir.filePath(QStringLiteral("file")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(folderState(file.fileName()) == FolderState::notAFolder);
        // The kernel's own files cannot be written by anybody.
        QVERIFY(folderState(QStringLiteral("/proc/self")) == FolderState::notWritable
                || geteuid() == 0);
    }

    void tellsOnlyWhatIsWrong()
    {
        QVERIFY(noteOn(FolderState::usable).isEmpty());
        for (const auto state :
             {FolderState::missing, FolderState::notAFolder, FolderState::notWritable})
            QVERIFY(!noteOn(state).isEmpty());
    }
};

QTEST_APPLESS_MAIN(TestSaveFolder)
#include "tst_SaveFolder.moc"
