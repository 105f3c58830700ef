// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeLoginItem.h"
#include "platform/linux/AutostartLoginItem.h"
#include "support/FullDisk.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;

class TestAutostartLoginItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_dir = std::make_unique<QTemporaryDir>();
    }

    // The contract of every login item

    void turnsOnAndOff_data() { addImplementations(); }
    void turnsOnAndOff()
    {
        const auto item = make();
        QVERIFY(!item->isEnabled());
        QVERIFY(!item->setEnabled(true));
        QVERIFY(item->isEnabled());
        QVERIFY(!item->setEnabled(true));
        QVERIFY(item->isEnabled());
        QVERIFY(!item->setEnabled(false));
        QVERIFY(!item->isEnabled());
        QVERIFY(!item->setEnabled(false));
    }

    // The autostart entry

    void writesAnEntryThatStartsWithoutTheWindow()
    {
        AutostartLoginItem item(folder(), QStringLiteral("/opt/tovek"));
        QVERIFY(!item.setEnabled(true));
        const QString entry = read(path());
        QVERIFY(
            entry.startsWith(QStringLiteral("[Desktop Entry]\nType=Application\nName=Tovek\n")));
        QVERIFY(entry.contains(QStringLiteral("\nExec=\"/opt/tovek\" --background\n")));
        QVERIFY(!item.setEnabled(false));
        QVERIFY(!QFile::exists(path()));
    }

    void isOnOnlyForThisProgram_data()
    {
        QTest::addColumn<QString>("exec");
        QTest::addColumn<bool>("isOn");
        const QString own = QStringLiteral("\"%1/my \\\\$1 tovek\" --background");
        QTest::newRow("this one") << own << true;
        QTest::newRow("by another way") << QStringLiteral("%1/./link") << true;
        QTest::newRow("another one") << QStringLiteral("/bin/true --background") << false;
        QTest::newRow("one in the path") << QStringLiteral("true") << false;
        QTest::newRow("one that is gone") << QStringLiteral("/gone/tovek") << false;
    }
    void isOnOnlyForThisProgram()
    {
        QFETCH(QString, exec);
        QFETCH(bool, isOn);
        const QString program = m_dir->filePath(QStringLiteral("my $1 tovek"));
        QVERIFY(QFile::copy(QStringLiteral("/bin/true"), program));
        QVERIFY(QFile::link(program, m_dir->filePath(QStringLiteral("link"))));
        AutostartLoginItem item(folder(), program);
        QVERIFY(QDir().mkpath(folder()));
        exec.replace(QStringLiteral("%1"), m_dir->path());
        const QByteArray entry = "[Desktop Entry]\nType=Application\nExec=" + exec.toUtf8() + '\n';
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(entry) == entry.size());
        file.close();
        QCOMPARE(item.isEnabled(), isOn);
        QVERIFY(!item.mend());
        const bool isGone = exec.startsWith(QStringLiteral("/gone"));
        QCOMPARE(item.isEnabled(), isOn || isGone);
        QCOMPARE(read(path()) == QString::fromUtf8(entry), !isGone);
    }

    void mendsOnlyWhatIsOn()
    {
        AutostartLoginItem item(folder(), QStringLiteral("/bin/true"));
        QVERIFY(!item.mend());
        QVERIFY(!QFile::exists(path()));
        QVERIFY(!AutostartLoginItem(folder(), QStringLiteral("/gone/tovek")).setEnabled(true));
        QFile file(path());
        QVERIFY(file.open(QIODevice::Append) && file.write("Hidden=true\n") > 0);
        file.close();
        QVERIFY(!item.mend());
        QVERIFY(!item.isEnabled());
    }

    void startsTheAppImageOnlyOfThisProgram_data()
    {
        QTest::addColumn<QString>("mounted");
        QTest::addColumn<bool>("isOurs");
        const QString own = QCoreApplication::applicationDirPath();
        QTest::newRow("no AppImage") << QString() << false;
        QTest::newRow("its own") << own << true;
        QTest::newRow("its terminal's") << QStringLiteral("/somewhere/else") << false;
        QTest::newRow("one mounted beside it") << own.chopped(1) << false;
    }
    void startsTheAppImageOnlyOfThisProgram()
    {
        QFETCH(QString, mounted);
        QFETCH(bool, isOurs);
        const QString image = m_dir->filePath(QStringLiteral("Some.AppImage"));
        QFile file(image);
        QVERIFY(file.open(QIODevice::WriteOnly));
        if (!mounted.isEmpty()) {
            qputenv("APPIMAGE", image.toUtf8());
            qputenv("APPDIR", mounted.toUtf8());
        }
        const QString program = AutostartLoginItem::standardProgram();
        qunsetenv("APPIMAGE");
        qunsetenv("APPDIR");
        QCOMPARE(program, isOurs ? image : QCoreApplication::applicationFilePath());
    }

    void escapesTheProgram_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("exec");
        QTest::newRow("blank") << QStringLiteral("/my apps/tovek")
                               << QStringLiteral("\"/my apps/tovek\"");
        QTest::newRow("dollar") << QStringLiteral("/$a/tovek")
                                << QStringLiteral("\"/\\\\$a/tovek\"");
        QTest::newRow("quote") << QStringLiteral("/\"/tovek")
                               << QStringLiteral("\"/\\\\\"/tovek\"");
        QTest::newRow("backslash")
            << QStringLiteral("/\\/tovek") << QStringLiteral("\"/\\\\\\\\/tovek\"");
        QTest::newRow("percent") << QStringLiteral("/%f/tovek") << QStringLiteral("\"/%%f/tovek\"");
    }
    void escapesTheProgram()
    {
        QFETCH(QString, program);
        QFETCH(QString, exec);
        AutostartLoginItem item(folder(), program);
        QVERIFY(!item.setEnabled(true));
        QVERIFY2(read(path()).contains(QStringLiteral("\nExec=%1 --background\n").arg(exec)),
                 qPrintable(read(path())));
        const QString validator =
            QStandardPaths::findExecutable(QStringLiteral("desktop-file-validate"));
        if (validator.isEmpty())
            QSKIP("desktop-file-validate is not installed");
        QCOMPARE(QProcess::execute(validator, {path()}), 0);
    }

    void readsWhatTheDesktopMadeOfTheEntry_data()
    {
        QTest::addColumn<QByteArray>("entry");
        QTest::addColumn<bool>("isEnabled");
        const QByteArray head = "[Desktop Entry]\nExec=tovek\n";
        QTest::newRow("plain") << head << true;
        QTest::newRow("empty") << QByteArray() << false;
        QTest::newRow("hidden") << head + "Hidden=true\n" << false;
        QTest::newRow("not hidden") << head + "Hidden=false\n" << true;
        QTest::newRow("switched off") << head + "X-GNOME-Autostart-enabled=false\n" << false;
        QTest::newRow("switched on") << head + "X-GNOME-Autostart-enabled = true\n" << true;
        QTest::newRow("of another group") << head + "[Other]\nHidden=true\n" << true;
        QTest::newRow("no program") << QByteArray("[Desktop Entry]\nName=Tovek\n") << false;
    }
    void readsWhatTheDesktopMadeOfTheEntry()
    {
        QFETCH(QByteArray, entry);
        QFETCH(bool, isEnabled);
        write(entry);
        QCOMPARE(AutostartLoginItem(folder(), QStringLiteral("tovek")).isEnabled(), isEnabled);
    }

    void turnsAHiddenEntryOnAgain()
    {
        write("[Desktop Entry]\nExec=tovek\nHidden=true\n");
        AutostartLoginItem item(folder(), QStringLiteral("/t"));
        QVERIFY(!item.setEnabled(true));
        QVERIFY(item.isEnabled());
    }

    void tellsWhyItFailed()
    {
        QFile inTheWay(folder());
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        AutostartLoginItem item(folder(), QStringLiteral("/t"));
        const auto failure = item.setEnabled(true);
        QVERIFY(failure && !failure->isEmpty());
        QVERIFY(!item.isEnabled());
    }

    void leavesTheEntryAloneWhenTheDiskIsFull()
    {
        const QByteArray hidden = "[Desktop Entry]\nExec=tovek\nHidden=true\n";
        write(hidden);
        AutostartLoginItem item(folder(), QStringLiteral("/t"));
        const auto failure = [&] {
            const FullDisk full;
            return item.setEnabled(true);
        }();
        QVERIFY(failure && !failure->isEmpty());
        QVERIFY(!item.isEnabled());
        QCOMPARE(read(path()), QString::fromUtf8(hidden));
        QCOMPARE(QDir(folder()).entryList(QDir::Files | QDir::Hidden).size(), 1);
    }

    void noticesWhatOthersDo()
    {
        AutostartLoginItem item(folder(), QStringLiteral("tovek"));
        int changes = 0;
        item.onChanged = [&] { ++changes; };
        item.setWatching(true);
        write("[Desktop Entry]\nExec=tovek\n");
        QTRY_VERIFY(changes > 0);
        QVERIFY(item.isEnabled());
        // Lets what is still under way arrive.
        QTest::qWait(50);
        changes = 0;
        QVERIFY(QFile::remove(path()));
        QTRY_VERIFY(changes > 0);
        item.setWatching(false);
        changes = 0;
        write("[Desktop Entry]\nExec=tovek\n");
        QTest::qWait(50);
        QCOMPARE(changes, 0);
    }

private:
    static void addImplementations()
    {
        QTest::addColumn<bool>("isFake");
        QTest::newRow("fake") << true;
        QTest::newRow("autostart") << false;
    }
    std::unique_ptr<LoginItem> make() const
    {
        QFETCH(bool, isFake);
        if (isFake)
            return std::make_unique<FakeLoginItem>();
        return std::make_unique<AutostartLoginItem>(folder(), QStringLiteral("/opt/tovek"));
    }
    QString folder() const { return m_dir->filePath(QStringLiteral("autostart")); }
    QString path() const { return folder() + QStringLiteral("/org.tovek.Tovek.desktop"); }
    static QString read(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    void write(const QByteArray &entry) const
    {
        QDir().mkpath(folder());
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(entry);
    }

    std::unique_ptr<QTemporaryDir> m_dir;
};

QTEST_GUILESS_MAIN(TestAutostartLoginItem)
#include "tst_AutostartLoginItem.moc"
