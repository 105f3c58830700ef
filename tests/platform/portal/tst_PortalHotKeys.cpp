// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeKeyboardLayout.h"
#include "fakes/LogCapture.h"
#include "platform/portal/PortalHotKeys.h"
#include "platform/portal/PortalTest.h"
#include "support/Wait.h"

#include <QElapsedTimer>

using namespace tovek;

namespace {

constexpr KeyCombo controlShift3{20, ComboModifier::control | ComboModifier::shift};
constexpr KeyCombo print{105, 0};
const auto imageName = QStringLiteral("capture-image:CTRL+SHIFT+3");

} // namespace

class TestPortalHotKeys : public PortalTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { needBus(); }
    void init()
    {
        m_layout.characters = {{20, QStringLiteral("3")}};
        begin();
        m_keys = PortalHotKeys::create(m_portalBus, m_layout);
        QVERIFY(m_keys);
        m_keys->purposeOf = [](KeyCombo combo) -> std::optional<HotKeyPurpose> {
            if (combo == controlShift3)
                return HotKeyPurpose{"capture-image", "Capture Image", "tovek --capture-image"};
            return HotKeyPurpose{"start-capture", "Start Capture", "tovek --capture"};
        };
        m_told.clear();
        m_keys->onPressed = [this](quint32 id) { m_told << QStringLiteral("down %1").arg(id); };
        m_keys->onReleased = [this](quint32 id) { m_told << QStringLiteral("up %1").arg(id); };
        m_keys->onRefused = [this](quint32 id) { m_told << QStringLiteral("no %1").arg(id); };
    }
    void cleanup()
    {
        m_keys.reset();
        end();
    }

    void tellsPressAndRelease()
    {
        QVERIFY(m_keys->reportsRelease());
        QCOMPARE(m_keys->grab(7, controlShift3), 0);
        QVERIFY(isBound({imageName + " (Capture Image) on CTRL+SHIFT+3"}));
        m_portal->press(imageName);
        m_portal->letGo(imageName);
        QVERIFY(waitUntil([this] { return m_told.size() == 2; }));
        QCOMPARE(m_told, (QStringList{"down 7", "up 7"}));
    }
    void tellsAReleaseThatGnomeKeepsToItself()
    {
        bindOnGnome();
        m_portal->press(imageName);
        QVERIFY(waitUntil([this] { return m_told == QStringList{"down 7", "up 7"}; }));
        // That it is held is told from half a second on, and its end if it goes before the others.
        for (int count = 0; count < 5; ++count) {
            m_portal->press(imageName);
            QTest::qWait(50);
        }
        m_portal->letGo(imageName);
        QTest::qWait(400);
        QCOMPARE(m_told.size(), 2);
        m_portal->press(imageName);
        QVERIFY(waitUntil([this] { return m_told.size() == 4; }));
    }
    void tellsAKeyThatGnomeRepeatsOnce()
    {
        bindOnGnome();
        const auto pressesFor400Ms = [this] {
            qint64 longestPause = 0;
            for (QElapsedTimer all, pause; !all.isValid() || all.elapsed() < 400;) {
                if (!all.isValid())
                    all.start();
                m_portal->press(imageName);
                pause.start();
                QTest::qWait(20);
                longestPause = std::max(longestPause, pause.elapsed());
            }
            return longestPause;
        };
        // A machine that stops for longer lets the key go.
        while (pressesFor400Ms() > 150) {
            QTest::qWait(1500);
            m_told.clear();
        }
        QCOMPARE(m_told, QStringList{"down 7"});
        m_portal->letGo(imageName);
        QVERIFY(waitUntil([this] { return m_told.size() == 2; }));
        QTest::qWait(400);
        QCOMPARE(m_told, (QStringList{"down 7", "up 7"}));
    }
    void writesSignsAsTheDesktopKnowsThem()
    {
        m_layout.shifted = {{20, QStringLiteral("#")}};
        m_keys = PortalHotKeys::create(m_portalBus, m_layout, PortalHotKeys::Desktop::kde);
        QCOMPARE(m_keys->grab(1, controlShift3), 0);
        QCOMPARE(m_keys->grab(2, print), 0);
        QVERIFY(isBound({"shortcut:CTRL+numbersign (Capture) on CTRL+numbersign",
                         "shortcut:Print (Capture) on Print"}));
    }
    void asksForAllAtOnce()
    {
        QCOMPARE(m_keys->grab(1, controlShift3), 0);
        QCOMPARE(m_keys->grab(2, print), 0);
        QVERIFY(isBound({imageName + " (Capture Image) on CTRL+SHIFT+3",
                         "start-capture:Print (Start Capture) on Print"}));
        QCOMPARE(m_portal->calls().count("BindShortcuts"), 1);
    }
    void asksAgainWithALongerList()
    {
        QCOMPARE(m_keys->grab(1, controlShift3), 0);
        QVERIFY(isBound({imageName + " (Capture Image) on CTRL+SHIFT+3"}));
        QCOMPARE(m_keys->grab(2, print), 0);
        QVERIFY(waitUntil([this] { return m_portal->shortcuts().size() == 2; }));
        QCOMPARE(m_portal->calls().count("Close"), 1);
        m_portal->press(imageName);
        QVERIFY(waitUntil([this] { return m_told == QStringList{"down 1"}; }));
    }
    void asksNothingForAMenu()
    {
        QCOMPARE(m_keys->grab(1, controlShift3), 0);
        QVERIFY(isBound({imageName + " (Capture Image) on CTRL+SHIFT+3"}));
        m_keys->release(1);
        m_portal->press(imageName); // the menu has the keys now
        QCOMPARE(m_keys->grab(2, controlShift3), 0);
        QTest::qWait(50);
        m_told.clear();
        m_portal->press(imageName);
        QVERIFY(waitUntil([this] { return m_told == QStringList{"down 2"}; }));
        QCOMPARE(m_portal->calls().count("BindShortcuts"), 1);
    }
    void givesBackWhatIsClearedForGood()
    {
        QCOMPARE(m_keys->grab(1, controlShift3), 0);
        QVERIFY(isBound({imageName + " (Capture Image) on CTRL+SHIFT+3"}));
        m_keys->release(1);
        QVERIFY(waitUntil([this] { return m_portal->shortcuts().isEmpty(); }));
    }
    void judgesByTheListAndNotByTheCode()
    {
        m_portal->set({.code = 2, .refusedShortcuts = {"Print"}});
        QCOMPARE(m_keys->grab(1, controlShift3), 0);
        QCOMPARE(m_keys->grab(2, print), 0);
        LogCapture log;
        QVERIFY(waitUntil([this] { return m_told == QStringList{"no 2"}; }));
        m_portal->press(imageName);
        QVERIFY(waitUntil([this] { return m_told.contains("down 1"); }));
        QVERIFY(!m_told.contains("no 1"));
    }
    void refusesAllWhenThePortalDoes()
    {
        LogCapture log;
        m_portal->set({.offersShortcuts = false});
        QCOMPARE(m_keys->grab(1, controlShift3), 0);
        QVERIFY(waitUntil([this] { return m_told == QStringList{"no 1"}; }));
    }
    void refusesAKeyWithoutAName() { QCOMPARE(m_keys->grab(1, {200, 0}), 1); }
    void takesThemAgainFromANewPortal()
    {
        QCOMPARE(m_keys->grab(1, controlShift3), 0);
        QVERIFY(isBound({imageName + " (Capture Image) on CTRL+SHIFT+3"}));
        m_portal->restart();
        QVERIFY(waitUntil([this] { return m_portal->calls().count("BindShortcuts") == 2; }));
        QVERIFY(isBound({imageName + " (Capture Image) on CTRL+SHIFT+3"}));
        m_portal->press(imageName);
        QVERIFY(waitUntil([this] { return m_told == QStringList{"down 1"}; }));
    }
    void isNotMadeWithoutThem()
    {
        m_portal->set({.offersShortcuts = false});
        QVERIFY(!PortalHotKeys::create(m_portalBus, m_layout));
    }

private:
    void bindOnGnome()
    {
        auto keys = PortalHotKeys::create(m_portalBus, m_layout, PortalHotKeys::Desktop::gnome);
        keys->purposeOf = m_keys->purposeOf;
        keys->onPressed = m_keys->onPressed;
        keys->onReleased = m_keys->onReleased;
        m_keys = std::move(keys);
        QCOMPARE(m_keys->grab(7, controlShift3), 0);
        QVERIFY(isBound({imageName + " (Capture Image) on CTRL+SHIFT+3"}));
    }
    bool isBound(const QStringList &shortcuts)
    {
        const bool isSo = waitUntil([&] { return m_portal->shortcuts() == shortcuts; });
        // The answer has to arrive as well.
        QTest::qWait(30);
        return isSo;
    }

    FakeKeyboardLayout m_layout;
    std::unique_ptr<PortalHotKeys> m_keys;
    QStringList m_told;
};

QTEST_GUILESS_MAIN(TestPortalHotKeys)
#include "tst_PortalHotKeys.moc"
