// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeClock.h"
#include "fakes/LogCapture.h"
#include "foundation/UserDefaults.h"
#include "update/UpdaterManager.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;
using namespace std::chrono_literals;

class TestUpdaterManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_dir = std::make_unique<QTemporaryDir>();
        m_clock = std::make_unique<FakeClock>();
        // Tells its arguments, and checks until it is told to end.
        writeProgram("#!/bin/sh\necho \"$@\" >> \"$0.runs\"\n"
                     "while [ ! -e \"$0.end\" ]; do sleep 0.01; done\necho checked\n"
                     "cat \"$0.says\" 2>&-\n");
        restart();
    }
    void cleanup() { m_manager.reset(); }

    void startsASecondLater()
    {
        QVERIFY(!m_manager->canCheckForUpdates());
        m_clock->advance(999ms);
        QVERIFY(!m_manager->canCheckForUpdates());
        m_clock->advance(1ms);
        QVERIFY(m_manager->canCheckForUpdates());
        QCOMPARE(runs(), QStringList());
    }

    void keepsAnEarlyRequest()
    {
        m_manager->checkForUpdates();
        m_manager->checkForUpdates();
        m_clock->advance(999ms);
        QCOMPARE(runs(), QStringList());
        m_clock->advance(1ms);
        QTRY_COMPARE(runs(), QStringList{QStringLiteral("--installed-version 1.0")});
        end();
        QTRY_VERIFY(m_manager->canCheckForUpdates());
        QCOMPARE(runs().size(), 1);
    }

    void cannotCheckWhileItChecks()
    {
        m_clock->advance(1s);
        QList<bool> before;
        QList<bool> after;
        connect(m_manager.get(), &UpdaterManager::willChange, this,
                [&] { before.append(m_manager->canCheckForUpdates()); });
        connect(m_manager.get(), &UpdaterManager::changed, this,
                [&] { after.append(m_manager->canCheckForUpdates()); });
        m_manager->checkForUpdates();
        QVERIFY(!m_manager->canCheckForUpdates());
        m_manager->checkForUpdates();
        end();
        QTRY_VERIFY(m_manager->canCheckForUpdates());
        QCOMPARE(runs(), QStringList{QStringLiteral("--installed-version 1.0")});
        QCOMPARE(before, (QList<bool>{true, false}));
        QCOMPARE(after, (QList<bool>{false, true}));
    }

    void checksByItselfOnlyWhenTurnedOn()
    {
        QVERIFY(!m_manager->automaticallyChecksForUpdates());
        m_clock->advance(1s);
        m_clock->advance(72h);
        QCOMPARE(runs(), QStringList());
        QCOMPARE(m_clock->pendingCalls(), size_t(0));
    }

    void checksOnceADay()
    {
        m_manager->setAutomaticallyChecksForUpdates(true);
        m_clock->advance(1s);
        m_clock->advance(0ms);
        QTRY_COMPARE(runs().size(), 1);
        QCOMPARE(runs().first(), QStringLiteral("--installed-version 1.0 --quiet"));
        end();
        QTRY_VERIFY(m_manager->canCheckForUpdates());
        m_clock->setNow(m_clock->now().addSecs(3600));
        restart();
        m_clock->advance(1s);
        m_clock->advance(23h - 1s - 1ms);
        QCOMPARE(runs().size(), 1);
        m_clock->advance(1ms);
        QTRY_COMPARE(runs().size(), 2);
    }

    void countsADayByTheClockOnTheWall()
    {
        m_manager->setAutomaticallyChecksForUpdates(true);
        m_clock->advance(1s);
        m_clock->advance(0ms);
        QTRY_COMPARE(runs().size(), 1);
        end();
        QTRY_VERIFY(m_manager->canCheckForUpdates());
        // The machine sleeps: the day goes by, the timers stand still.
        m_clock->setNow(m_clock->now().addSecs(30 * 3600));
        m_clock->advance(1h);
        m_clock->advance(0ms);
        QTRY_COMPARE(runs().size(), 2);
    }

    void checksAgainSoonWhenItCouldNot()
    {
        writeProgram("#!/bin/sh\necho \"$@\" >> \"$0.runs\"\necho Update: no server\n");
        m_manager->setAutomaticallyChecksForUpdates(true);
        LogCapture log;
        m_clock->advance(1s);
        m_clock->advance(0ms);
        QTRY_COMPARE(runs().size(), 1);
        QTRY_VERIFY(m_manager->canCheckForUpdates());
        m_clock->advance(1h - 1ms);
        QCOMPARE(runs().size(), 1);
        m_clock->advance(1ms);
        QTRY_COMPARE(runs().size(), 2);
        QTRY_VERIFY(m_manager->canCheckForUpdates());
        restart(); // a new start, as at the next login, has not tried yet
        m_clock->advance(1s);
        m_clock->advance(0ms);
        QTRY_COMPARE(runs().size(), 3);
        QTRY_VERIFY(m_manager->canCheckForUpdates());
    }

    void bringsAnOfferThatWaitsToTheFront()
    {
        writeProgram("#!/bin/sh\necho started >> \"$0.runs\"\necho checked\necho offered\n"
                     "while read -r line; do echo \"$line\" >> \"$0.runs\"; done\n");
        m_manager->setAutomaticallyChecksForUpdates(true);
        m_clock->advance(1s);
        m_clock->advance(0ms);
        QTRY_COMPARE(runs(), QStringList{QStringLiteral("started")});
        QTRY_VERIFY(m_manager->canCheckForUpdates());
        QCOMPARE(m_manager->checkObstacle(), QString());
        m_manager->checkForUpdates();
        QTRY_COMPARE(runs(), (QStringList{QStringLiteral("started"), QStringLiteral("show")}));
    }

    void keepsTheSetting()
    {
        m_manager->setAutomaticallyChecksForUpdates(true);
        restart();
        QVERIFY(m_manager->automaticallyChecksForUpdates());
        m_manager->setAutomaticallyChecksForUpdates(false);
        restart();
        QVERIFY(!m_manager->automaticallyChecksForUpdates());
        m_clock->advance(1s);
        QCOMPARE(m_clock->pendingCalls(), size_t(0));
    }

    void passesOnWhatTheCheckSays()
    {
        QFile says(program() + QStringLiteral(".says"));
        QVERIFY(says.open(QIODevice::WriteOnly));
        says.write("Update: the answer is too long\nrelaunch /opt/new one\n");
        says.close();
        QString relaunched;
        m_manager->updaterController().updater().onRelaunch = [&](const QString &path) {
            relaunched = path;
        };
        m_clock->advance(1s);
        LogCapture log;
        m_manager->checkForUpdates();
        end();
        QTRY_VERIFY(m_manager->canCheckForUpdates());
        QCOMPARE(log.lines(), QStringList{QStringLiteral("Update: the answer is too long")});
        QCOMPARE(relaunched, QStringLiteral("/opt/new one"));
    }

    void saysWhyItCannotCheck()
    {
        QCOMPARE(m_manager->checkObstacle(), QString());
        m_clock->advance(1s);
        QCOMPARE(m_manager->checkObstacle(), QString());
        m_manager->checkForUpdates();
        QVERIFY(!m_manager->checkObstacle().isEmpty());
        end();
        QTRY_COMPARE(m_manager->checkObstacle(), QString());
        restart({});
        QCOMPARE(m_manager->checkObstacle(), m_manager->unavailableReason());
    }

    void endsTheCheckByClosingItsInput()
    {
        writeProgram("#!/bin/sh\necho ready > \"$0.runs\"\ncat\necho over > \"$0.over\"\n");
        m_clock->advance(1s);
        m_manager->checkForUpdates();
        QTRY_COMPARE(runs(), QStringList{QStringLiteral("ready")});
        m_manager.reset();
        QVERIFY(QFile::exists(program() + QStringLiteral(".over")));
    }

    void takesTheIntervalOfItsBuild()
    {
        restart({program(), QStringLiteral("1.0"), 2h});
        m_manager->setAutomaticallyChecksForUpdates(true);
        m_clock->advance(1s);
        m_clock->advance(0ms);
        QTRY_COMPARE(runs().size(), 1);
        end();
        QTRY_VERIFY(m_manager->canCheckForUpdates());
        m_clock->advance(2h - 1ms);
        QCOMPARE(runs().size(), 1);
        m_clock->advance(1ms);
        QTRY_COMPARE(runs().size(), 2);
    }

    void saysThatACheckFailed_data()
    {
        QTest::addColumn<QByteArray>("check"); // empty: there is none
        QTest::addColumn<bool>("isRequested");
        QTest::addColumn<bool>("isLogged");
        QTest::newRow("not there") << QByteArray() << true << true;
        QTest::newRow("not there, by itself") << QByteArray() << false << true;
        QTest::newRow("crashed") << QByteArray("kill -9 $$") << true << true;
        QTest::newRow("crashed, by itself") << QByteArray("kill -9 $$") << false << true;
        QTest::newRow("in trouble") << QByteArray("exit 1") << true << true;
        QTest::newRow("in trouble, by itself") << QByteArray("exit 1") << false << true;
        QTest::newRow("as it should") << QByteArray("exit 0") << true << false;
    }
    void saysThatACheckFailed()
    {
        QFETCH(QByteArray, check);
        QFETCH(bool, isRequested);
        QFETCH(bool, isLogged);
        if (check.isEmpty())
            QVERIFY(QFile::remove(program()));
        else
            writeProgram("#!/bin/sh\n" + check + '\n');
        QStringList told;
        m_manager->updaterController().updater().onFailed = [&](const QString &text) {
            told.append(text);
        };
        LogCapture log;
        m_manager->setAutomaticallyChecksForUpdates(!isRequested);
        m_clock->advance(1s);
        if (isRequested)
            m_manager->checkForUpdates();
        else
            m_clock->advance(0ms);
        QTRY_VERIFY(m_manager->canCheckForUpdates());
        QCOMPARE(log.lines().size(), isLogged ? 1 : 0);
        QCOMPARE(told, isRequested ? log.lines() : QStringList());
        for (const QString &line : told)
            QVERIFY(line.startsWith(QStringLiteral("Failed to check for updates: ")));
    }

    void doesNothingInABuildWithoutUpdates()
    {
        restart({});
        QVERIFY(!m_manager->unavailableReason().isEmpty());
        m_manager->setAutomaticallyChecksForUpdates(true);
        QVERIFY(!m_manager->automaticallyChecksForUpdates());
        m_clock->advance(1s);
        QVERIFY(!m_manager->canCheckForUpdates());
        m_manager->checkForUpdates();
        m_clock->advance(48h);
        QVERIFY(!m_manager->canCheckForUpdates());
    }

private:
    QString program() const { return m_dir->filePath(QStringLiteral("check")); }
    void writeProgram(const QByteArray &text) const
    {
        QFile file(program());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
        QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    void end() const
    {
        QFile file(program() + QStringLiteral(".end"));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    void restart() { restart({program(), QStringLiteral("1.0")}); }
    void restart(const UpdateConfiguration &configuration)
    {
        m_manager.reset();
        m_defaults = std::make_unique<UserDefaults>(m_dir->filePath(QStringLiteral("u.json")));
        m_manager = std::make_unique<UpdaterManager>(configuration, *m_defaults, *m_clock);
    }
    QStringList runs() const
    {
        QFile file(program() + QStringLiteral(".runs"));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<FakeClock> m_clock;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<UpdaterManager> m_manager;
};

QTEST_GUILESS_MAIN(TestUpdaterManager)
#include "tst_UpdaterManager.moc"
