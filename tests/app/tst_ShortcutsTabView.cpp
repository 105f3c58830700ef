// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/AlertSheet.h"
#include "KeyboardShortcuts/ShortcutService.h"
#include "app/AppShortcuts.h"
#include "app/ShortcutsTabView.h"
#include "fakes/FakeHotKeys.h"
#include "fakes/FakeKeyboardLayout.h"
#include "fakes/FakeSystemShortcuts.h"
#include "fakes/LogCapture.h"
#include "foundation/UserDefaults.h"

#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;
using namespace KeyboardShortcuts;

class TestShortcutsTabView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not)")));
        m_dir = std::make_unique<QTemporaryDir>();
        m_defaults = std::make_unique<UserDefaults>(m_dir->filePath(QStringLiteral("d.json")));
        // The names are the process's own, so the service must be, too.
        ShortcutService::setShared(
            std::make_unique<ShortcutService>(*m_defaults, m_hotKeys, m_layout));
        m_hotKeys.foreign.clear();
        m_system = {};
        RecorderSetup setup;
        setup.systemShortcuts = &m_system;
        m_view = std::make_unique<ShortcutsTabView>(service(), setup);
        m_view->show();
    }
    void cleanup()
    {
        m_view.reset();
        ShortcutService::setShared(nullptr);
    }

    void hasARecorderForEachShortcut()
    {
        const auto recorders = m_view->findChildren<RecorderCocoa *>();
        QCOMPARE(recorders.size(), 3);
        const char *const names[] = {"Start Capture", "Capture Image", "Capture Text"};
        const char *const values[] = {"captureScreenshot", "captureImage", "captureText"};
        for (int row = 0; row < 3; ++row) {
            QCOMPARE(recorders[row]->accessibleName(), QLatin1String(names[row]));
            QCOMPARE(recorders[row]->shortcutName().rawValue, QLatin1String(values[row]));
        }
        bool hasHint = false;
        for (const auto *label : m_view->findChildren<QLabel *>())
            hasHint = hasHint
                || label->text()
                    == QStringLiteral("Click to record a shortcut, then press your desired key "
                                      "combination");
        QVERIFY(hasHint);
    }

    void saysWhereACaptureStartsAtThePress()
    {
        m_hotKeys.canReportRelease = false;
        ShortcutsTabView view(service(), {});
        m_hotKeys.canReportRelease = true;
        const auto labels = view.findChildren<QLabel *>();
        QVERIFY(std::any_of(labels.begin(), labels.end(), [](const QLabel *label) {
            return label->text().endsWith(
                QStringLiteral("when the keys go down, not when they come up."));
        }));
    }

    void recordsPrintScreenWithOneClick()
    {
        auto *usePrint = m_view->findChild<QPushButton *>();
        QCOMPARE(usePrint->text(), QStringLiteral("Use Print"));
        QVERIFY(usePrint->isVisible());
        usePrint->click();
        QCOMPARE(service().shortcut(AppShortcuts::captureScreenshot()),
                 std::optional(Shortcut{105, 0}));
        QVERIFY(!usePrint->isVisible());
        QCOMPARE(m_view->findChild<RecorderCocoa *>()->text(), QStringLiteral("F13"));
    }

    void tellsWhoHoldsPrintAndWhatToDo_data()
    {
        QTest::addColumn<bool>("isListed");
        QTest::addColumn<QString>("holder");
        QTest::addColumn<QStringList>("words");
        QTest::newRow("the desktop's settings know")
            << true << QString() << QStringList{"Print (F13)", "shooter", "Settings → Keyboard"};
        QTest::newRow("a window manager") << false << QStringLiteral("Openbox")
                                          << QStringList{"Print (F13)", "Openbox", "settings"};
        QTest::newRow("nobody knows")
            << false << QString() << QStringList{"Print (F13)", "another program"};
    }
    void tellsWhoHoldsPrintAndWhatToDo()
    {
        QFETCH(bool, isListed);
        QFETCH(QString, holder);
        QFETCH(QStringList, words);
        m_hotKeys.foreign = {KeyCombo{105, 0}};
        m_hotKeys.holder = holder;
        m_system.entry = {QStringLiteral("shooter"), QStringLiteral("Settings → Keyboard")};
        if (isListed)
            m_system.listed = {KeyCombo{105, 0}};
        m_view->findChild<QPushButton *>()->click();
        auto *alert = m_view->findChild<AlertSheet *>();
        QVERIFY(alert);
        for (const QString &word : words) {
            QVERIFY2(alert->accessibleDescription().contains(word), qPrintable(word));
            QVERIFY2(hint().contains(word), qPrintable(hint()));
        }
        LogCapture ignored; // the refusal is reported
        alert->buttons().last()->click();
        QVERIFY(service().isRefused({105, 0}));
        for (const QString &word : words)
            QVERIFY2(hint().contains(word), qPrintable(hint()));
        QVERIFY(hasLabel(QStringLiteral("Held by another program")));
        m_hotKeys.freeAll();
        QVERIFY(hint().startsWith(QStringLiteral("Click to record")));
        QVERIFY(!hasLabel(QStringLiteral("Held by another program")));
    }

    void takesPrintFromTheDesktopUntilItIsCleared()
    {
        QString stored;
        m_view->setTakenKeys(
            {[&] { return stored; }, [&](const QString &taken) { stored = taken; }});
        m_system.givesUp = true;
        m_system.listed = {{105, 0}};
        m_system.entry.user = QStringLiteral("the desktop");
        m_view->hide();
        m_view->show();
        QTRY_VERIFY(hint().contains(QStringLiteral("takes the key from the desktop")));
        auto *usePrint = m_view->findChild<QPushButton *>();
        QVERIFY(usePrint->toolTip().contains(QStringLiteral("back when the shortcut is cleared")));
        usePrint->click();
        QCOMPARE(service().shortcut(AppShortcuts::captureScreenshot()),
                 std::optional(Shortcut{105, 0}));
        QVERIFY(m_system.listed.isEmpty());
        QCOMPARE(stored, QStringLiteral("key 105"));
        service().setShortcut(AppShortcuts::captureText(), Shortcut{96, 0});
        QCOMPARE(stored, QStringLiteral("key 105"));
        service().setShortcut(AppShortcuts::captureScreenshot(), std::nullopt);
        QTRY_COMPARE_WITH_TIMEOUT(stored, QString(), 10000);
        QCOMPARE(m_system.listed, (QList<KeyCombo>{{105, 0}}));
    }

    void offersPrintOnlyWhileThereIsNoShortcutAtAll()
    {
        auto *usePrint = m_view->findChild<QPushButton *>();
        service().setShortcut(AppShortcuts::captureText(), Shortcut{96, 0});
        QVERIFY(!usePrint->isVisible());
        service().setShortcut(AppShortcuts::captureText(), std::nullopt);
        QVERIFY(usePrint->isVisible());
    }

private:
    QString hint() const
    {
        const auto labels = m_view->findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly);
        return labels.isEmpty() ? QString() : labels.last()->text();
    }
    bool hasLabel(const QString &text) const
    {
        const auto labels = m_view->findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(),
                           [&](const QLabel *label) { return label->text() == text; });
    }
    static ShortcutService &service() { return ShortcutService::shared(); }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<UserDefaults> m_defaults;
    FakeHotKeys m_hotKeys;
    FakeKeyboardLayout m_layout;
    FakeSystemShortcuts m_system;
    std::unique_ptr<ShortcutsTabView> m_view;
};

QTEST_MAIN(TestShortcutsTabView)
#include "tst_ShortcutsTabView.moc"
