// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/CarbonKeyboardShortcuts.h"
#include "fakes/FakeHotKeys.h"
#include "support/StdoutCapture.h"

#include <QTest>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace KeyboardShortcuts;
using tovek::FakeHotKeys;
using tovek::KeyCombo;

namespace {

constexpr Shortcut copy{8, 0x1100};
constexpr Shortcut paste{9, 0x1100};
constexpr KeyCombo copyKeys{8, 0x1100};
constexpr KeyCombo pasteKeys{9, 0x1100};

} // namespace

class TestCarbonKeyboardShortcuts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_log.clear();
        m_carbon.reset();
        m_hotKeys = std::make_unique<FakeHotKeys>();
        m_carbon = std::make_unique<CarbonKeyboardShortcuts>(*m_hotKeys, [](const Shortcut &s) {
            return QStringLiteral("key%1").arg(s.carbonKeyCode);
        });
    }

    void numbersHotKeysFromOne()
    {
        add(copy);
        add(paste);
        QCOMPARE(ids(), QList<quint32>({1, 2}));
        m_carbon->unregisterShortcut(copy);
        add(copy);
        QCOMPARE(ids(), QList<quint32>({2, 3}));
    }

    void spendsTheIdOfARefusedShortcut()
    {
        m_hotKeys->foreign = {copyKeys};
        tovek::StdoutCapture output;
        add(copy);
        QCOMPARE(output.take(), QByteArray("Error registering hotkey key8: 10\n"));
        add(paste);
        QCOMPARE(ids(), QList<quint32>{2});
        QVERIFY(!m_hotKeys->tap(copyKeys));
        m_hotKeys->tap(pasteKeys);
        QCOMPARE(m_log, QStringList({"down 9", "up 9"}));
    }

    void tellsOfPressAndRelease()
    {
        add(copy);
        m_hotKeys->press(copyKeys);
        QCOMPARE(m_log, QStringList{"down 8"});
        m_hotKeys->releaseKey();
        QCOMPARE(m_log, QStringList({"down 8", "up 8"}));
    }

    void givesUnregisteredKeysBack()
    {
        add(copy);
        m_carbon->unregisterShortcut(paste);
        QVERIFY(m_hotKeys->tap(copyKeys));
        m_carbon->unregisterShortcut(copy);
        QVERIFY(!m_hotKeys->tap(copyKeys));
        QCOMPARE(m_log.size(), 2);
    }

    void watchesRawKeysWhileAMenuIsOpen()
    {
        add(copy);
        add(paste);
        QVERIFY(!m_hotKeys->watchesRawKeys);
        m_carbon->setMenuOpen(true);
        QVERIFY(m_hotKeys->watchesRawKeys);
        QVERIFY(m_hotKeys->grabbed.empty());
        QVERIFY(m_hotKeys->press(copyKeys));
        m_hotKeys->releaseKey();
        QCOMPARE(m_log, QStringList({"down 8", "up 8"}));
        QVERIFY(!m_hotKeys->press({8, 0x1000})); // reaches the menu
        m_carbon->setMenuOpen(false);
        QVERIFY(!m_hotKeys->watchesRawKeys);
        QCOMPARE(ids(), QList<quint32>({1, 2}));
    }

    void dropsWhatItCannotTakeBackAfterAMenu()
    {
        add(copy);
        add(paste);
        m_carbon->setMenuOpen(true);
        m_hotKeys->foreign = {copyKeys};
        tovek::StdoutCapture output;
        m_carbon->setMenuOpen(false);
        QCOMPARE(output.take(), QByteArray("Error registering hotkey key8: 10\n"));
        QCOMPARE(ids(), QList<quint32>{2});
        m_hotKeys->foreign.clear();
        m_carbon->setMenuOpen(true);
        m_carbon->setMenuOpen(false);
        QCOMPARE(ids(), QList<quint32>{2});
    }

    void dropsWhatIsRefusedLater()
    {
        add(copy);
        add(paste);
        bool isTold = false;
        m_carbon->onDropped = [&] { isTold = true; };
        tovek::StdoutCapture output;
        m_hotKeys->onRefused(1);
        QCOMPARE(output.take(), QByteArray("Error registering hotkey key8: 10\n"));
        QVERIFY(isTold);
        QVERIFY(!m_carbon->isRegistered(copy));
        QVERIFY(m_carbon->isRegistered(paste));
        m_hotKeys->onRefused(77); // of one that is not ours any more
    }

    void takesNothingWhileItIsNotEnabled()
    {
        add(copy);
        m_carbon->setEnabled(false);
        QVERIFY(!m_carbon->isEnabled());
        QVERIFY(m_hotKeys->grabbed.empty());
        QVERIFY(!m_hotKeys->tap(copyKeys));
        m_carbon->setMenuOpen(true);
        QVERIFY(!m_hotKeys->watchesRawKeys);
        m_carbon->setEnabled(true);
        QVERIFY(m_hotKeys->watchesRawKeys);
        m_carbon->setMenuOpen(false);
        QCOMPARE(ids(), QList<quint32>{1});
    }

    void doesNothingBeforeItsFirstHotKey()
    {
        m_carbon->setMenuOpen(true);
        QVERIFY(!m_hotKeys->watchesRawKeys);
        add(copy); // the handler comes into being while a menu is open
        QVERIFY(m_hotKeys->watchesRawKeys);
        QVERIFY(m_hotKeys->grabbed.empty());
    }

    void unregistersWhileAMenuIsOpen()
    {
        add(copy);
        m_carbon->setMenuOpen(true);
        m_carbon->unregisterShortcut(copy);
        QVERIFY(!m_hotKeys->press(copyKeys));
        m_carbon->setMenuOpen(false);
        QVERIFY(m_hotKeys->grabbed.empty());
    }

    void answersWithAStatus_data()
    {
        QTest::addColumn<std::optional<KeyboardEvent>>("event");
        QTest::addColumn<int>("status");
        QTest::addColumn<QStringList>("log");
        using Event = std::optional<KeyboardEvent>;
        constexpr quint32 ours = CarbonKeyboardShortcuts::signature;
        const auto row = [](const char *name, Event event, int status, const char *log = nullptr) {
            QTest::newRow(name) << event << status
                                << (log ? QStringList{QString::fromLatin1(log)} : QStringList());
        };
        row("no event", std::nullopt, -9874);
        row("pressed", KeyboardEvent{5, HotKeyId{ours, 1}, {}, {}}, 0, "down 8");
        row("released", KeyboardEvent{6, HotKeyId{ours, 1}, {}, {}}, 0, "up 8");
        row("other id", KeyboardEvent{5, HotKeyId{ours, 2}, {}, {}}, -9874);
        row("other signature", KeyboardEvent{5, HotKeyId{0x53534B54, 1}, {}, {}}, -9874);
        row("no id", KeyboardEvent{5, {}, 8, 0x1100}, -9870);
        row("raw down", KeyboardEvent{1, {}, 8, 0x1100}, 0, "down 8");
        row("raw up", KeyboardEvent{3, {}, 8, 0x1100}, 0, "up 8");
        row("raw with caps lock", KeyboardEvent{1, {}, 8, 0x1500}, 0, "down 8");
        row("raw with other modifiers", KeyboardEvent{1, {}, 8, 0x100}, -9874);
        row("raw with another key", KeyboardEvent{1, {}, 9, 0x1100}, -9874);
        row("raw without a key code", KeyboardEvent{1, {}, {}, 0x1100}, -9870);
        row("raw without modifiers", KeyboardEvent{1, {}, 8, {}}, -9870);
        row("raw repeat", KeyboardEvent{2, {}, 8, 0x1100}, -9874);
        row("modifiers changed", KeyboardEvent{4, {}, 8, 0x1100}, -9874);
    }
    void answersWithAStatus()
    {
        QFETCH(std::optional<KeyboardEvent>, event);
        QFETCH(int, status);
        QFETCH(QStringList, log);
        add(copy);
        QCOMPARE(m_carbon->handle(event), status);
        QCOMPARE(m_log, log);
    }

    void survivesAnActionThatUnregisters()
    {
        m_carbon->registerShortcut(
            copy, [this](const Shortcut &s) { m_carbon->unregisterShortcut(s); },
            [this](const Shortcut &) { m_log << "up"; });
        m_hotKeys->tap(copyKeys);
        QVERIFY(m_log.isEmpty());
        QVERIFY(m_hotKeys->grabbed.empty());
    }

    void givesEverythingBackAtItsEnd()
    {
        add(copy);
        m_carbon.reset();
        QVERIFY(m_hotKeys->grabbed.empty());
        QVERIFY(!m_hotKeys->tap(copyKeys));
    }

    void endsTheProgramForValuesBeyond32Bits_data()
    {
        QTest::addColumn<Shortcut>("shortcut");
        QTest::addColumn<bool>("isFatal");
        QTest::newRow("largest key code") << Shortcut{0xFFFFFFFF, 0} << false;
        QTest::newRow("larger key code") << Shortcut{0x100000000, 0} << true;
        QTest::newRow("negative key code") << Shortcut{-1, 0} << true;
        QTest::newRow("largest modifiers") << Shortcut{0, 0xFFFFFFFF} << false;
        QTest::newRow("larger modifiers") << Shortcut{0, 0x100000000} << true;
    }
    void endsTheProgramForValuesBeyond32Bits()
    {
        QFETCH(Shortcut, shortcut);
        QFETCH(bool, isFatal);
        const pid_t child = fork();
        if (child == 0) {
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
            std::signal(SIGABRT, SIG_DFL);
            add(shortcut);
            _exit(0);
        }
        int status = 0;
        QCOMPARE(waitpid(child, &status, 0), child);
        QCOMPARE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT, isFatal);
    }

private:
    void add(const Shortcut &shortcut)
    {
        m_carbon->registerShortcut(
            shortcut,
            [this](const Shortcut &s) { m_log << QStringLiteral("down %1").arg(s.carbonKeyCode); },
            [this](const Shortcut &s) { m_log << QStringLiteral("up %1").arg(s.carbonKeyCode); });
    }
    QList<quint32> ids() const
    {
        QList<quint32> ids;
        for (const auto &[id, combo] : m_hotKeys->grabbed)
            ids << id;
        return ids;
    }

    std::unique_ptr<FakeHotKeys> m_hotKeys;
    std::unique_ptr<CarbonKeyboardShortcuts> m_carbon;
    QStringList m_log;
};

QTEST_APPLESS_MAIN(TestCarbonKeyboardShortcuts)
#include "tst_CarbonKeyboardShortcuts.moc"
