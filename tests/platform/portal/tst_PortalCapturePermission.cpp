// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/LogCapture.h"
#include "platform/portal/PortalCapturePermission.h"
#include "platform/portal/PortalTest.h"

using namespace tovek;
using Asking = PortalCapturePermission::Asking;

class TestPortalCapturePermission : public PortalTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { needBus(); }
    void init()
    {
        begin(name);
        m_permission = std::make_unique<PortalCapturePermission>(m_portalBus, Asking::before);
    }
    void cleanup()
    {
        m_permission.reset();
        end();
    }

    void knowsTheAnswer_data()
    {
        QTest::addColumn<QString>("of");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<Asking>("asking");
        QTest::addColumn<bool>("hasAccess");
        QTest::newRow("never asked") << ""
                                     << "" << Asking::before << false;
        QTest::newRow("never asked, and asked anyway") << ""
                                                       << "" << Asking::withTheFirstPicture << true;
        QTest::newRow("yes") << name << "yes" << Asking::before << true;
        QTest::newRow("no") << name << "no" << Asking::before << false;
        QTest::newRow("no, elsewhere") << name << "no" << Asking::withTheFirstPicture << false;
        QTest::newRow("each time") << name << "ask" << Asking::before << true;
        QTest::newRow("yes to somebody else") << "org.example.Other"
                                              << "yes" << Asking::before << false;
        QTest::newRow("yes to those without a name") << ""
                                                     << "yes" << Asking::before << false;
    }
    void knowsTheAnswer()
    {
        QFETCH(QString, answer);
        QFETCH(QString, of);
        QFETCH(Asking, asking);
        if (!answer.isEmpty())
            m_portal->setPermission(of, answer);
        const PortalCapturePermission permission(m_portalBus, asking);
        QTEST(permission.hasAccess(), "hasAccess");
        QVERIFY(!m_portal->calls().contains("Screenshot"));
    }

    void asksOnceAtATime()
    {
        m_portal->set({.delay = std::chrono::milliseconds(50), .permissionAfterwards = "yes"});
        m_permission->requestAccess();
        m_permission->requestAccess();
        QVERIFY(m_permission->isAsking());
        QVERIFY(waitForAnswer());
        QVERIFY(!m_permission->isAsking());
        QVERIFY(m_permission->hasAccess());
        QCOMPARE(m_portal->calls().count("Screenshot"), 1);
    }
    void asksAgainAfterANo()
    {
        m_portal->setPermission(name, QStringLiteral("no"));
        QVERIFY(m_permission->advice()->title.contains("Refused"));
        m_portal->set({.permissionAfterwards = "yes"});
        m_permission->requestAccess();
        QVERIFY(waitForAnswer());
        const QStringList calls = m_portal->calls();
        QVERIFY(calls.indexOf("DeletePermission") < calls.indexOf("Screenshot"));
        QVERIFY(m_permission->hasAccess());
    }
    void staysWithoutAfterANo()
    {
        LogCapture log;
        m_portal->set({.code = 2, .permissionAfterwards = "no"});
        m_permission->requestAccess();
        QVERIFY(waitForAnswer());
        QVERIFY(!m_permission->hasAccess());
        QCOMPARE(m_permission->advice()->button, "Ask Me Again");
    }
    void believesADesktopThatKeepsNothing()
    {
        m_permission->requestAccess();
        QVERIFY(waitForAnswer());
        QVERIFY(m_permission->hasAccess());
    }
    void removesThePictureThatCameWithTheAnswer()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath("Screenshot.png"));
        QVERIFY(file.open(QFile::WriteOnly));
        m_portal->set({.results = {{"uri", "file://" + file.fileName()}}});
        m_permission->requestAccess();
        QVERIFY(waitForAnswer());
        QVERIFY(!file.exists());
    }
    void tellsOfTheAnswerThatAllProgramsShare()
    {
        QVERIFY(!m_permission->advice()->explanation.contains("by name"));
        m_portal->set({.takesNames = false});
        PortalBus nameless{QDBusConnection(m_session)};
        QCOMPARE(nameless.appId(), QString());
        m_portal->setPermission({}, QStringLiteral("no"));
        const PortalCapturePermission permission(
            std::shared_ptr<PortalBus>(std::shared_ptr<void>(), &nameless), Asking::before);
        QVERIFY(!permission.hasAccess());
        QVERIFY(permission.advice()->explanation.contains("by name"));
    }
    void saysWhatIsMissing()
    {
        m_portal.reset();
        QTRY_VERIFY(!m_permission->hasAccess());
        QVERIFY(m_permission->advice()->steps.first().contains("xdg-desktop-portal"));
        QVERIFY(!m_permission->advice()->hasSettings);
        m_permission->requestAccess();
        QVERIFY(!m_permission->isAsking());
    }

private:
    bool waitForAnswer()
    {
        bool isAnswered = false;
        m_permission->onAnswered = [&isAnswered] { isAnswered = true; };
        return QTest::qWaitFor([&] { return isAnswered; });
    }

    const QString name = QStringLiteral("org.tovek.Tovek");
    std::unique_ptr<PortalCapturePermission> m_permission;
};

QTEST_GUILESS_MAIN(TestPortalCapturePermission)
#include "tst_PortalCapturePermission.moc"
