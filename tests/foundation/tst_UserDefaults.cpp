// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/UserDefaults.h"
#include "support/FullDisk.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace tovek;

class TestUserDefaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_dir = std::make_unique<QTemporaryDir>();
        m_path = m_dir->filePath(QStringLiteral("tovek/defaults.json"));
    }

    void startsEmptyWithoutAFile()
    {
        const UserDefaults defaults(m_path);
        QVERIFY(!defaults.contains(QStringLiteral("highlightText")));
        QVERIFY(!defaults.string(QStringLiteral("saveFolderPath")));
        QVERIFY(!QFile::exists(m_path));
    }

    void refusesWhatIsNoOrdinaryFile_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("a pipe that nobody writes to") << QStringLiteral("pipe");
        QTest::newRow("a device without an end") << QStringLiteral("device");
        QTest::newRow("a folder") << QStringLiteral("folder");
        QTest::newRow("more than a megabyte") << QStringLiteral("large");
    }
    void refusesWhatIsNoOrdinaryFile()
    {
        QFETCH(QString, kind);
        QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
        if (kind == QLatin1String("pipe"))
            QCOMPARE(mkfifo(qPrintable(m_path), 0600), 0);
        else if (kind == QLatin1String("device"))
            QVERIFY(QFile::link(QStringLiteral("/dev/zero"), m_path));
        else if (kind == QLatin1String("folder"))
            QVERIFY(QDir().mkpath(m_path));
        else
            put("{\"key\": \"" + QByteArray((1 << 20) + 1, 'x') + "\"}");
        const QFileInfo before(m_path);
        UserDefaults defaults(m_path);
        QVERIFY(!defaults.string(QStringLiteral("key")));
        defaults.setBoolean(QStringLiteral("other"), true);
        QCOMPARE(defaults.boolean(QStringLiteral("other")), std::optional(true));
        const QFileInfo after(m_path);
        QCOMPARE(after.isSymLink(), before.isSymLink());
        QCOMPARE(after.isDir(), before.isDir());
        QCOMPARE(after.isFile(), before.isFile());
        QCOMPARE(after.size(), before.size());
    }

    void writesWhatALinkLeadsTo_data()
    {
        QTest::addColumn<bool>("exists");
        QTest::newRow("there") << true;
        QTest::newRow("not there yet") << false;
    }
    void writesWhatALinkLeadsTo()
    {
        QFETCH(bool, exists);
        const QString target = m_dir->filePath(QStringLiteral("elsewhere/settings.json"));
        QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
        QVERIFY(QFile::link(target, m_path));
        if (exists)
            UserDefaults(target).setBoolean(QStringLiteral("old"), true);
        UserDefaults(m_path).setBoolean(QStringLiteral("key"), true);
        QVERIFY(QFileInfo(m_path).isSymLink());
        const UserDefaults written(target);
        QCOMPARE(written.boolean(QStringLiteral("key")), std::optional(true));
        QCOMPARE(written.contains(QStringLiteral("old")), exists);
    }

    void keepsValuesForTheNextProcess()
    {
        UserDefaults(m_path).setBoolean(QStringLiteral("showInMenuBar"), false);
        UserDefaults(m_path).setString(QStringLiteral("saveFolderPath"), QStringLiteral("/a b"));
        const UserDefaults defaults(m_path);
        QCOMPARE(defaults.boolean(QStringLiteral("showInMenuBar")), std::optional(false));
        QCOMPARE(defaults.string(QStringLiteral("saveFolderPath")),
                 std::optional(QStringLiteral("/a b")));
    }

    void readsAWrongTypeAsAbsent_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("number") << QByteArray("{\"key\": 3}");
        QTest::newRow("null") << QByteArray("{\"key\": null}");
        QTest::newRow("array") << QByteArray("{\"key\": [\"x\"]}");
        QTest::newRow("object") << QByteArray("{\"key\": {}}");
    }
    void readsAWrongTypeAsAbsent()
    {
        QFETCH(QByteArray, json);
        put(json);
        const UserDefaults defaults(m_path);
        QVERIFY(!defaults.string(QStringLiteral("key")));
        QVERIFY(!defaults.boolean(QStringLiteral("key")));
        QVERIFY(defaults.contains(QStringLiteral("key")));
    }

    void keepsStrangersWhenItWrites()
    {
        put("{\"theirs\": [1, 2], \"ours\": 7}");
        UserDefaults(m_path).setString(QStringLiteral("ours"), QStringLiteral("x"));
        QVERIFY(content().contains("theirs"));
    }

    void setsABrokenFileAside_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("not json") << QByteArray("{\"a\": ");
        QTest::newRow("no object") << QByteArray("[1]");
        QTest::newRow("empty") << QByteArray("");
    }
    void setsABrokenFileAside()
    {
        QFETCH(QByteArray, json);
        put(json);
        UserDefaults defaults(m_path);
        QVERIFY(!defaults.contains(QStringLiteral("a")));
        defaults.setString(QStringLiteral("a"), QStringLiteral("new"));
        QFile aside(m_path + QStringLiteral(".broken"));
        QVERIFY(aside.open(QIODevice::ReadOnly));
        QCOMPARE(aside.readAll(), json);
        QCOMPARE(UserDefaults(m_path).string(QStringLiteral("a")),
                 std::optional(QStringLiteral("new")));
    }

    void neverReplacesAnEarlierBrokenFile()
    {
        put("first");
        QVERIFY(!UserDefaults(m_path).contains(QStringLiteral("a")));
        put("second");
        QVERIFY(!UserDefaults(m_path).contains(QStringLiteral("a")));
        QVERIFY(QFile::exists(m_path + QStringLiteral(".broken")));
        QVERIFY(QFile::exists(m_path + QStringLiteral(".broken-2")));
    }

    void keepsTheOlderStoreWhenTheDiskIsFull()
    {
        put("{\"ours\": \"older\"}");
        UserDefaults defaults(m_path);
        {
            const FullDisk full;
            defaults.setString(QStringLiteral("ours"), QStringLiteral("newer"));
        }
        QCOMPARE(defaults.string(QStringLiteral("ours")), std::optional(QStringLiteral("newer")));
        QCOMPARE(content(), QByteArray("{\"ours\": \"older\"}"));
        QCOMPARE(QDir(QFileInfo(m_path).path()).entryList(QDir::Files | QDir::Hidden),
                 QStringList("defaults.json"));
        defaults.setBoolean(QStringLiteral("on"), true);
        QCOMPARE(UserDefaults(m_path).string(QStringLiteral("ours")),
                 std::optional(QStringLiteral("newer")));
    }

    void livesWithoutADiskToWriteTo()
    {
        QVERIFY(QDir().mkpath(m_dir->filePath(QStringLiteral("tovek"))));
        QVERIFY(QDir().mkpath(m_path)); // a folder where the file should be
        UserDefaults defaults(m_path);
        defaults.setBoolean(QStringLiteral("on"), true);
        QCOMPARE(defaults.boolean(QStringLiteral("on")), std::optional(true));
    }

private:
    void put(const QByteArray &bytes)
    {
        QDir().mkpath(m_dir->filePath(QStringLiteral("tovek")));
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray content() const
    {
        QFile file(m_path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_path;
};

QTEST_APPLESS_MAIN(TestUserDefaults)
#include "tst_UserDefaults.moc"
