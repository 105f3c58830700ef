// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/AppImage.h"
#include "update/SessionTest.h"

#include <QTimer>

using namespace tovek;
using namespace std::chrono_literals;
using End = ServerAnswer::End;

class TestUpdateSession : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void offersANewVersion()
    {
        m_session->start();
        QVERIFY(isOffered());
        QCOMPARE(m_view->shown, (QStringList{"checking", "offer 2.0"}));
        QVERIFY(m_view->offer->item.notes.contains(QStringLiteral("It is faster")));
        m_view->onAnswered(UpdateAnswer::later);
        QCOMPARE(m_ends, 1);
        QCOMPARE(m_log->lines(), QStringList());
        QCOMPARE(content(appImage()), oldProgram);
    }

    void remindsLater()
    {
        m_setup.isRequested = false;
        for (int day = 0; day < 2; ++day) {
            begin();
            m_session->start();
            QVERIFY(isOffered());
            QCOMPARE(m_view->shown, QStringList{"offer 2.0"});
            m_view->onAnswered(UpdateAnswer::later);
            m_view->offer.reset();
            m_view->shown.clear();
        }
        QCOMPARE(m_ends, 2);
    }

    void skipsAVersion()
    {
        m_session->start();
        QVERIFY(isOffered());
        m_view->onAnswered(UpdateAnswer::skip);
        QCOMPARE(m_ends, 1);
        m_view->shown.clear();
        m_setup.isRequested = false;
        begin();
        m_session->start();
        QTRY_COMPARE(m_ends, 2);
        QCOMPARE(m_view->shown, QStringList());
        m_server.publish(package("2.1"));
        begin();
        m_session->start();
        QTRY_COMPARE(m_view->shown, QStringList{"offer 2.1"});
    }

    void putsTheNewProgramInPlace()
    {
        QStringList installed;
        m_session->onInstalled = [&](const QString &program) {
            installed.append(program);
            QCOMPARE(m_ends, 0);
        };
        m_session->start();
        QVERIFY(isOffered());
        const QFile::Permissions before = QFile::permissions(appImage());
        // Whoever holds the old file keeps all of it.
        QFile held(appImage());
        QVERIFY(held.open(QIODevice::ReadOnly));
        m_view->onAnswered(UpdateAnswer::install);
        QTRY_COMPARE(m_ends, 1);
        QCOMPARE(installed, QStringList{appImage()});
        QCOMPARE(m_view->shown, (QStringList{"checking", "offer 2.0", "download", "installing"}));
        QCOMPARE(m_view->downloaded, newProgram.size());
        QCOMPARE(m_view->whole, newProgram.size());
        QCOMPARE(content(appImage()), newProgram);
        QCOMPARE(QFile::permissions(appImage()), before);
        QCOMPARE(held.readAll(), oldProgram);
        // The one before stays until this one has started once.
        QCOMPARE(files(programs()), (QStringList{".Tovek.AppImage.previous", "Tovek.AppImage"}));
        QVERIFY(restoreAppImage(appImage()));
        QCOMPARE(content(appImage()), oldProgram);
        QVERIFY(!restoreAppImage(appImage()));
        keepAppImage(appImage());
        forgetKeptAppImage(appImage());
        QCOMPARE(files(programs()), QStringList{"Tovek.AppImage"});
    }

    void tellsOfItsProgress()
    {
        QStringList told;
        m_session->onChecked = [&] { told << "checked"; };
        m_session->onOffered = [&] { told << "offered"; };
        m_session->start();
        QVERIFY(isOffered());
        QCOMPARE(told, (QStringList{"checked", "offered"}));
        m_view->onAnswered(UpdateAnswer::later);
        m_server.answer(QStringLiteral("/feed.xml"), {"no list"});
        begin();
        m_session->onChecked = [&] { told << "checked"; };
        m_session->start();
        QTRY_COMPARE(m_view->shown.last(), QStringLiteral("warning"));
        QCOMPARE(told.size(), 2);
    }

    void followsARedirectThatStaysEncrypted()
    {
        m_server.answer(QStringLiteral("/moved.xml"), {feed()});
        m_server.answer(QStringLiteral("/feed.xml"),
                        redirect(m_server.url(QStringLiteral("/moved.xml"))));
        m_session->start();
        QVERIFY(isOffered());
    }

    void handsADebianPackageOver_data()
    {
        QTest::addColumn<bool>("isTaken");
        QTest::addColumn<QString>("shown");
        QTest::newRow("taken") << true << QStringLiteral("information");
        QTest::newRow("nobody takes it") << false << QStringLiteral("warning");
    }
    void handsADebianPackageOver()
    {
        QFETCH(bool, isTaken);
        QFETCH(QString, shown);
        PublishedPackage debian = package();
        debian.kind = "debian";
        m_server.publish(debian);
        const QString folder = m_home->filePath(QStringLiteral("cache/tovek/updates"));
        m_setup.installation = {PackageKind::debian, {}, folder};
        QStringList opened;
        m_setup.openPackage = [&](const QString &file, const std::function<void(bool)> &done) {
            opened.append(file);
            QCOMPARE(content(file), newProgram);
            done(isTaken);
        };
        // Of the last time.
        QVERIFY(QDir().mkpath(folder));
        write(folder + QStringLiteral("/tovek_1.0.deb"), oldProgram);
        begin();
        m_session->start();
        QVERIFY(isOffered());
        m_view->onAnswered(UpdateAnswer::install);
        QTRY_COMPARE(m_view->shown.last(), shown);
        QCOMPARE(opened, QStringList{folder + QStringLiteral("/tovek_2.0.deb")});
        QCOMPARE(files(folder), QStringList{"tovek_2.0.deb"});
        QCOMPARE(m_view->message.contains(folder), !isTaken);
        QCOMPARE(m_ends, 0);
        m_view->onMessageRead();
        QCOMPARE(m_ends, 1);
        QCOMPARE(content(appImage()), oldProgram);
    }

    void saysThatThereIsNothingNewer_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QByteArray>("system");
        QTest::addColumn<NoOffer>("reason");
        QTest::newRow("a lower version")
            << QStringLiteral("0.9") << QByteArray() << NoOffer::upToDate;
        QTest::newRow("the same") << QStringLiteral("1.0") << QByteArray() << NoOffer::upToDate;
        QTest::newRow("a newer system")
            << QStringLiteral("2.0") << QByteArray("2.37") << NoOffer::needsNewerSystem;
    }
    void saysThatThereIsNothingNewer()
    {
        QFETCH(QString, version);
        QFETCH(QByteArray, system);
        QFETCH(NoOffer, reason);
        m_server.publish({version, newProgram, "appimage", system});
        m_session->start();
        QTRY_COMPARE(m_view->shown, (QStringList{"checking", "information"}));
        QCOMPARE(m_view->message, explain(reason, QStringLiteral("1.0")));
        m_view->onMessageRead();
        QCOMPARE(m_ends, 1);
    }

    void leavesNothingBehindWhenItIsCanceled()
    {
        m_server.answer(UpdateServer::packagePath(),
                        {newProgram.left(300000), 200, {}, End::endless});
        m_session->start();
        QVERIFY(isOffered());
        m_view->onShownDownload = [this] {
            if (m_view->downloaded == 0)
                return;
            m_view->onShownDownload = nullptr;
            QTimer::singleShot(0, m_session.get(), [this] { m_view->onCanceled(); });
        };
        m_view->onAnswered(UpdateAnswer::install);
        QTRY_VERIFY(m_ends >= 1);
        QCOMPARE(m_ends, 1);
        QVERIFY(nothingHasChanged());
        QCOMPARE(m_view->shown.last(), QStringLiteral("download"));
        QCOMPARE(m_log->lines(), QStringList());
    }

    void canBeCanceledWhileItChecks()
    {
        m_server.answer(QStringLiteral("/feed.xml"), {{}, 200, {}, End::never});
        m_session->start();
        QCOMPARE(m_view->shown, QStringList{"checking"});
        m_view->onCanceled();
        QCOMPARE(m_ends, 1);
    }

    void tellsWhoNeitherHasAnAppImageNorAPackage()
    {
        m_setup.installation.reset();
        begin();
        const int connections = m_server.connections();
        m_session->start();
        QVERIFY(isExplained(Refusal::notInstalled));
        QCOMPARE(m_server.connections(), connections);
    }

    void keepsQuietUnlessItIsAsked()
    {
        m_setup.isRequested = false;
        begin();
        m_server.answer(QStringLiteral("/feed.xml"), {"no", 404});
        m_session->start();
        QTRY_COMPARE(m_ends, 1);
        QCOMPARE(m_view->shown, QStringList());
        QCOMPARE(m_log->lines(),
                 QStringList{QStringLiteral("Update: ")
                             + explain(Refusal::badAnswer, QStringLiteral("404"))});
    }

    void tellsTheServerNothingOfTheMachine()
    {
        m_session->start();
        QVERIFY(isOffered());
        QStringList names;
        for (const QByteArray &line : m_server.lastHead().split('\n').mid(1)) {
            if (line.contains(':'))
                names.append(QString::fromLatin1(line.left(line.indexOf(':'))).toLower());
        }
        names.sort();
        QCOMPARE(names,
                 (QStringList{"accept-encoding", "accept-language", "cache-control", "connection",
                              "host", "pragma", "user-agent"}));
        QVERIFY(m_server.lastHead().toLower().contains("user-agent: tovek\r\n"));
    }
};

QTEST_GUILESS_MAIN(TestUpdateSession)
#include "tst_UpdateSession.moc"
