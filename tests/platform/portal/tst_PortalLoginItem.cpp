// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/LogCapture.h"
#include "platform/portal/PortalLoginItem.h"
#include "platform/portal/PortalTest.h"
#include "support/Wait.h"

#include <QTemporaryDir>

using namespace tovek;

class TestPortalLoginItem : public PortalTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { needBus(); }
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        begin();
        m_item = std::make_unique<PortalLoginItem>(m_portalBus, note());
        m_changes = 0;
        m_item->onChanged = [this] { ++m_changes; };
        m_item->setWatching(true);
    }
    void cleanup()
    {
        m_item.reset();
        end();
    }

    void asksThePortal()
    {
        grant(true);
        QVERIFY(!m_item->isEnabled());
        QVERIFY(!m_item->setEnabled(true));
        QVERIFY(waitUntil([this] { return m_portal->calls().contains("RequestBackground"); }));
        const QVariantMap asked = m_portal->lastOptions();
        QCOMPARE(asked.value("autostart"), QVariant(true));
        QCOMPARE(asked.value("commandline").toStringList(), (QStringList{"tovek", "--background"}));
        QTest::qWait(100);
        QVERIFY(m_item->isEnabled());
        // In the next process, too.
        QVERIFY(PortalLoginItem(m_portalBus, note()).isEnabled());
        grant(false);
        QVERIFY(!m_item->setEnabled(false));
        QTest::qWait(100);
        QVERIFY(!m_item->isEnabled());
        QCOMPARE(m_changes, 0);
    }

    void isOffAgainWhenTheDesktopRefuses_data()
    {
        QTest::addColumn<PortalScript>("script");
        PortalScript cancelled;
        cancelled.code = 1;
        QTest::newRow("the user said no") << cancelled;
        PortalScript without;
        without.results = {{QStringLiteral("background"), true},
                           {QStringLiteral("autostart"), false}};
        QTest::newRow("in the background only") << without;
        PortalScript none;
        none.offersScreenshots = false; // nor anything else of this kind
        QTest::newRow("a portal that cannot") << none;
    }
    void isOffAgainWhenTheDesktopRefuses()
    {
        QFETCH(PortalScript, script);
        LogCapture output;
        m_portal->set(script);
        QVERIFY(!m_item->setEnabled(true));
        QVERIFY(waitUntil([this] { return m_changes == 1; }));
        QVERIFY(!m_item->isEnabled());
        QCOMPARE(int(output.lines().size()), 1);
    }

    void failsWithoutAPortal()
    {
        m_portal.reset();
        QVERIFY(waitUntil([this] { return !m_portalBus->isOffered(); }));
        QVERIFY(m_item->setEnabled(true));
        QVERIFY(!m_item->isEnabled());
    }

private:
    QString note() const { return m_folder->filePath(QStringLiteral("config/note")); }
    void grant(bool autostart)
    {
        PortalScript script;
        script.results = {{QStringLiteral("autostart"), autostart}};
        m_portal->set(script);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PortalLoginItem> m_item;
    int m_changes = 0;
};

QTEST_GUILESS_MAIN(TestPortalLoginItem)
#include "tst_PortalLoginItem.moc"
