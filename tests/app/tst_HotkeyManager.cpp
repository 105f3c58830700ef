// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/ShortcutService.h"
#include "app/AppShortcuts.h"
#include "app/HotkeyManager.h"
#include "app/ShortcutObserver.h"
#include "fakes/FakeHotKeys.h"
#include "fakes/FakeKeyboardLayout.h"
#include "foundation/UserDefaults.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;
using KeyboardShortcuts::Shortcut;
using KeyboardShortcuts::ShortcutService;

class TestHotkeyManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        ShortcutService::setShared(nullptr);
        m_dir = std::make_unique<QTemporaryDir>();
        m_defaults =
            std::make_unique<UserDefaults>(m_dir->filePath(QStringLiteral("defaults.json")));
        m_hotKeys = std::make_unique<FakeHotKeys>();
        ShortcutService::setShared(
            std::make_unique<ShortcutService>(*m_defaults, *m_hotKeys, m_layout));
        m_service = &ShortcutService::shared();
        m_started.clear();
        m_manager.onCapture = [this](CaptureMode mode) { m_started << mode; };
        m_manager.onPrepare = {};
        m_manager.registerShortcuts();
    }
    void cleanup() { ShortcutService::setShared(nullptr); }

    void namesThreeShortcutsWithoutDefaults()
    {
        const auto &all = AppShortcuts::bindings();
        QCOMPARE(all[0].name.key(), QStringLiteral("KeyboardShortcuts_captureScreenshot"));
        QCOMPARE(all[1].name.key(), QStringLiteral("KeyboardShortcuts_captureImage"));
        QCOMPARE(all[2].name.key(), QStringLiteral("KeyboardShortcuts_captureText"));
        for (const AppShortcuts::Binding &binding : all)
            QVERIFY(!binding.name.defaultShortcut);
    }

    void holdsNoKeyInAFreshInstallation()
    {
        QVERIFY(m_hotKeys->grabbed.empty());
        QVERIFY(!QFile::exists(m_defaults->path()));
    }

    void tellsWhatAKeyIsFor()
    {
        int argumentCount = 1;
        char *arguments[] = {const_cast<char *>("tovek"), nullptr};
        const QCoreApplication application(argumentCount, arguments);
        QVERIFY(!HotkeyManager::purposeOf({101, 0x1000}));
        m_service->setShortcut(AppShortcuts::captureText(), Shortcut{101, 0x1000});
        const auto purpose = HotkeyManager::purposeOf({101, 0x1000});
        QVERIFY(purpose);
        QCOMPARE(purpose->id, QStringLiteral("capture-text"));
        QCOMPARE(purpose->title, QStringLiteral("Capture Text"));
        QCOMPARE(purpose->command,
                 QCoreApplication::applicationFilePath() + QStringLiteral(" --capture-text"));
        QVERIFY(!HotkeyManager::purposeOf({101, 0}));
    }

    void startsTheCaptureOfTheName_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<CaptureMode>("mode");
        QTest::newRow("captureScreenshot") << 0 << CaptureMode::normal;
        QTest::newRow("captureImage") << 1 << CaptureMode::copyImage;
        QTest::newRow("captureText") << 2 << CaptureMode::copyText;
    }
    void startsTheCaptureOfTheName()
    {
        QFETCH(int, index);
        QFETCH(CaptureMode, mode);
        m_service->setShortcut(AppShortcuts::bindings()[size_t(index)].name, Shortcut{8, 0x1200});
        m_hotKeys->press({8, 0x1200});
        QVERIFY(m_started.isEmpty()); // only when the key comes up
        m_hotKeys->releaseKey();
        QCOMPARE(m_started, QList<CaptureMode>{mode});
    }

    void preparesWhenTheKeyGoesDown()
    {
        int prepared = 0;
        m_manager.onPrepare = [&] { ++prepared; };
        m_service->setShortcut(AppShortcuts::captureText(), Shortcut{8, 0x1200});
        m_hotKeys->press({9, 0x1200});
        QCOMPARE(prepared, 0);
        m_hotKeys->press({8, 0x1200});
        QCOMPARE(prepared, 1);
        QVERIFY(m_started.isEmpty());
    }

    void stopsWithTheShortcut()
    {
        m_service->setShortcut(AppShortcuts::captureImage(), Shortcut{8, 0x1200});
        m_service->setShortcut(AppShortcuts::captureImage(), std::nullopt);
        QVERIFY(!m_hotKeys->tap({8, 0x1200}));
        QVERIFY(m_started.isEmpty());
    }

    void refreshesWhatShowsAShortcut()
    {
        ShortcutObserver observer(m_service->notifications());
        QList<qint64> before;
        QObject::connect(&observer, &ShortcutObserver::willChange, &observer,
                         [&] { before << observer.refreshTrigger(); });
        QSignalSpy changes(&observer, &ShortcutObserver::changed);
        m_service->setShortcut({QStringLiteral("strange"), {}}, Shortcut{8, 0x1200});
        QCOMPARE(changes.size(), 0);
        for (const AppShortcuts::Binding &binding : AppShortcuts::bindings())
            m_service->setShortcut(binding.name, Shortcut{9, 0x1200});
        QCOMPARE(changes.size(), 3);
        QCOMPARE(before, QList<qint64>({0, 1, 2}));
        m_layout.change({});
        QCOMPARE(observer.refreshTrigger(), qint64(4));
    }

    void endsItsObservation()
    {
        auto observer = std::make_unique<ShortcutObserver>(m_service->notifications());
        observer.reset();
        m_service->setShortcut(AppShortcuts::captureText(), Shortcut{8, 0x1200});
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<FakeHotKeys> m_hotKeys;
    FakeKeyboardLayout m_layout;
    ShortcutService *m_service = nullptr;
    HotkeyManager m_manager;
    QList<CaptureMode> m_started;
};

QTEST_APPLESS_MAIN(TestHotkeyManager)
#include "tst_HotkeyManager.moc"
