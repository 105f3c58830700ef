// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/SessionTest.h"

using namespace tovek;
using namespace std::chrono_literals;
using End = ServerAnswer::End;

class TestUpdateRefusals : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void refusesFeeds_data()
    {
        QTest::addColumn<ServerAnswer>("answer");
        QTest::addColumn<Refusal>("refusal");
        QTest::newRow("an unencrypted address")
            << redirect(QUrl("http://127.0.0.1:1/feed.xml")) << Refusal::insecure;
        QTest::newRow("a local file")
            << redirect(QUrl("file:///etc/hostname")) << Refusal::unreachable;
        QTest::newRow("a circle") << redirect(m_server.feedUrl()) << Refusal::unreachable;
        QTest::newRow("not found") << ServerAnswer{"no", 404} << Refusal::badAnswer;
        QTest::newRow("server in trouble") << ServerAnswer{"no", 500} << Refusal::badAnswer;
        QTest::newRow("nothing changed") << ServerAnswer{{}, 304} << Refusal::badAnswer;
        QTest::newRow("an endless page of errors")
            << ServerAnswer{"no", 503, {}, End::endless} << Refusal::badAnswer;
        QTest::newRow("truncated")
            << ServerAnswer{feed(), 200, {}, End::cutOff, 100000} << Refusal::cutOff;
        QTest::newRow("truncated, and said to be all")
            << ServerAnswer{feed().chopped(9)} << Refusal::noFeed;
        QTest::newRow("endless") << ServerAnswer{feed(), 200, {}, End::endless} << Refusal::tooLong;
        QTest::newRow("a byte too many")
            << ServerAnswer{feed().leftJustified(int(largestFeed) + 1)} << Refusal::tooLong;
        QTest::newRow("silence") << ServerAnswer{{}, 200, {}, End::never} << Refusal::silent;
        QTest::newRow("a web page") << ServerAnswer{"<html/>"} << Refusal::noFeed;
        QTest::newRow("nothing") << ServerAnswer{} << Refusal::noFeed;
    }
    void refusesFeeds()
    {
        QFETCH(ServerAnswer, answer);
        QFETCH(Refusal, refusal);
        if (answer.end == End::never)
            m_setup.build.silence = 1s;
        begin();
        m_server.answer(QStringLiteral("/feed.xml"), answer);
        m_session->start();
        QTRY_COMPARE(m_view->shown, (QStringList{"checking", "warning"}));
        QVERIFY2(isExplained(refusal), qPrintable(m_view->message));
        QVERIFY(!m_memory->contains(QStringLiteral("newestFeed")));
        m_view->onMessageRead();
        QCOMPARE(m_ends, 1);
    }

    void acceptsTheLongestFeed()
    {
        m_server.answer(QStringLiteral("/feed.xml"), {feed().leftJustified(int(largestFeed))});
        m_session->start();
        QVERIFY(isOffered());
    }

    void refusesAnUnknownServer()
    {
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        const QSslConfiguration before = configuration;
        configuration.setCaCertificates({});
        QSslConfiguration::setDefaultConfiguration(configuration);
        begin();
        const auto requests = m_server.requests().size();
        m_session->start();
        QTRY_COMPARE(m_view->shown.last(), QStringLiteral("warning"));
        QSslConfiguration::setDefaultConfiguration(before);
        QVERIFY(isExplained(Refusal::unreachable));
        QCOMPARE(m_server.requests().size(), requests);
    }

    void refusesAnOlderFeed()
    {
        m_session->start();
        QVERIFY(isOffered());
        m_view->onAnswered(UpdateAnswer::later);
        m_server.publish(package("3.0"), UpdateServer::defaultDate().addSecs(-1));
        begin();
        m_session->start();
        QTRY_COMPARE(m_view->shown.last(), QStringLiteral("warning"));
        QVERIFY(isExplained(Refusal::oldFeed));
    }

    void doesNotLearnADateToCome()
    {
        m_server.publish(package(), QDateTime::currentDateTimeUtc().addYears(50));
        m_session->start();
        QVERIFY(isOffered());
        m_server.publish(package(), QDateTime::currentDateTimeUtc().addDays(1));
        m_view->onAnswered(UpdateAnswer::later);
        m_view->offer.reset();
        begin();
        m_session->start();
        QVERIFY(isOffered());
    }

    void refusesPackages_data()
    {
        QTest::addColumn<ServerAnswer>("answer");
        QTest::addColumn<Refusal>("refusal");
        QByteArray changed = newProgram;
        changed[changed.size() / 2] = 'X';
        QTest::newRow("an unencrypted address")
            << redirect(QUrl("http://127.0.0.1:1/package")) << Refusal::insecure;
        QTest::newRow("not found") << ServerAnswer{"no", 404} << Refusal::badAnswer;
        QTest::newRow("truncated")
            << ServerAnswer{newProgram.left(300000), 200, {}, End::cutOff, newProgram.size()}
            << Refusal::cutOff;
        QTest::newRow("a byte short, and said to be all")
            << ServerAnswer{newProgram.chopped(1)} << Refusal::wrongLength;
        QTest::newRow("a byte too many") << ServerAnswer{newProgram + 'x'} << Refusal::tooLong;
        QTest::newRow("endless") << ServerAnswer{newProgram, 200, {}, End::endless}
                                 << Refusal::tooLong;
        QTest::newRow("silence") << ServerAnswer{{}, 200, {}, End::never} << Refusal::silent;
        QTest::newRow("one byte changed") << ServerAnswer{changed} << Refusal::badSignature;
    }
    void refusesPackages()
    {
        QFETCH(ServerAnswer, answer);
        QFETCH(Refusal, refusal);
        if (answer.end == End::never)
            m_setup.build.silence = 1s;
        begin();
        m_server.answer(UpdateServer::packagePath(), answer);
        m_session->start();
        QVERIFY(isOffered());
        m_view->onAnswered(UpdateAnswer::install);
        QTRY_COMPARE(m_view->shown.last(), QStringLiteral("warning"));
        QVERIFY2(isExplained(refusal), qPrintable(m_view->message));
        QVERIFY(nothingHasChanged());
        m_view->onMessageRead();
        QCOMPARE(m_ends, 1);
    }

    void refusesWrongSignatures_data()
    {
        QTest::addColumn<QByteArray>("signature");
        const auto stranger = UpdateSignature::makeKeyPair();
        const QDateTime date = UpdateServer::defaultDate();
        QTest::newRow("another key")
            << UpdateSignature::sign(stranger.secretKey, UpdateServer::entryOf(package(), date));
        const auto row = [&](const char *name, auto change) {
            PublishedPackage other = package();
            QDateTime day = date;
            change(other, day);
            QTest::newRow(name) << m_server.signatureOf(other, day);
        };
        row("another version", [](auto &other, auto &) { other.version = "1.9"; });
        row("another kind", [](auto &other, auto &) { other.kind = "debian"; });
        row("another machine", [](auto &other, auto &) { other.architecture = "m68k"; });
        row("another file", [](auto &other, auto &) { other.bytes.back() = '!'; });
        row("another system", [](auto &other, auto &) { other.minimumSystem = "2.30"; });
        row("an older list", [](auto &, auto &day) { day = day.addDays(-30); });
        QTest::newRow("nothing but zeros") << QByteArray(64, '\0');
    }
    void refusesWrongSignatures()
    {
        QFETCH(QByteArray, signature);
        m_server.publishAs(package(), signature);
        m_session->start();
        QTRY_COMPARE(m_view->shown, (QStringList{"checking", "warning"}));
        QVERIFY(isExplained(Refusal::unsignedFeed));
        QVERIFY(nothingHasChanged());
        QVERIFY(!m_memory->contains(QStringLiteral("newestFeed")));
    }

    void refusesWhatIsNoProgramForThisMachine_data()
    {
        QTest::addColumn<QByteArray>("program");
        QByteArray other = newProgram;
        other[18] = char(other[18] ^ 1);
        QTest::newRow("for another machine") << other;
        QTest::newRow("no program at all") << QByteArray("<html>").repeated(10);
        QTest::newRow("nothing but a beginning") << newProgram.left(10);
    }
    void refusesWhatIsNoProgramForThisMachine()
    {
        QFETCH(QByteArray, program);
        PublishedPackage published = package();
        published.bytes = program;
        m_server.publish(published);
        m_session->start();
        QVERIFY(isOffered());
        m_view->onAnswered(UpdateAnswer::install);
        QTRY_COMPARE(m_view->shown.last(), QStringLiteral("warning"));
        QVERIFY(isExplained(Refusal::wrongMachine));
        QVERIFY(nothingHasChanged());
    }

    void offersNothingForAnotherMachine()
    {
        PublishedPackage other = package();
        other.architecture = QStringLiteral("m68k");
        m_server.publish(other);
        m_session->start();
        QTRY_COMPARE(m_view->shown, (QStringList{"checking", "information"}));
        QCOMPARE(m_view->message, explain(NoOffer::notForThisInstallation, {}));
    }

    void hasTheLastWordWhenItWantsNoMore_data()
    {
        QTest::addColumn<Milliseconds>("silence");
        QTest::addColumn<Milliseconds>("whole");
        QTest::newRow("for some time nothing") << Milliseconds(1000) << Milliseconds(0);
        QTest::newRow("no time left") << Milliseconds(20000) << Milliseconds(1000);
    }
    void hasTheLastWordWhenItWantsNoMore()
    {
        QFETCH(Milliseconds, silence);
        QFETCH(Milliseconds, whole);
        m_server.answer(QStringLiteral("/feed.xml"), {"no", 200, {}, End::stuck, 1000});
        Download download(*m_network, {m_server.feedUrl(), largestFeed, silence, whole});
        int calls = 0;
        bool isOver = false;
        download.onData = [&](const QByteArray &) { return ++calls == 0; };
        download.onDone = [&] { isOver = true; };
        download.onFailed = [&](Refusal, const QString &) { isOver = true; };
        QTRY_COMPARE_WITH_TIMEOUT(calls, 1, 20000);
        QVERIFY(!QTest::qWaitFor([&] { return isOver; }, 2000));
        QCOMPARE(calls, 1);
    }

    void saysWhatKeepsItFromWriting()
    {
        // Nobody can make a file there, whoever he is.
        m_setup.installation->downloads = QStringLiteral("/sys/kernel");
        begin();
        m_session->start();
        QVERIFY(isOffered());
        m_view->onAnswered(UpdateAnswer::install);
        QCOMPARE(m_view->shown.last(), QStringLiteral("warning"));
        QVERIFY2(m_view->message.contains(QStringLiteral("/sys/kernel: ")),
                 qPrintable(m_view->message));
        QVERIFY(!m_server.requests().last().contains(QStringLiteral("package")));
    }
};

QTEST_GUILESS_MAIN(TestUpdateRefusals)
#include "tst_UpdateRefusals.moc"
