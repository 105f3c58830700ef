// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/UpdateFeed.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace tovek;

/// What the fuzzer starts from; its finds go there, too, named after what they are.
class TestFeedCorpus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void isReadAsItsNameSays_data()
    {
        QTest::addColumn<QString>("path");
        const QDir folder(qEnvironmentVariable("TOVEK_SOURCE_DIR")
                          + QStringLiteral("/tests/fuzz/feeds"));
        const QFileInfoList files = folder.entryInfoList(QDir::Files);
        QVERIFY(files.size() > 10);
        for (const QFileInfo &file : files)
            QTest::newRow(qPrintable(file.fileName())) << file.filePath();
    }
    void isReadAsItsNameSays()
    {
        QFETCH(QString, path);
        const QString name = QFileInfo(path).fileName();
        const bool isGood = name.startsWith(QStringLiteral("good-"));
        QVERIFY(isGood || name.startsWith(QStringLiteral("bad-")));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(std::holds_alternative<UpdateFeed>(readFeed(file.readAll())), isGood);
    }
};

QTEST_APPLESS_MAIN(TestFeedCorpus)
#include "tst_FeedCorpus.moc"
