// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/AlertSheet.h"
#include "app/GeneralTabView.h"
#include "app/SaveFolder.h"
#include "app/SwitchControl.h"
#include "capture/ImageOutput.h"
#include "capture/SaveLocation.h"
#include "fakes/FakeClipboard.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeLoginItem.h"
#include "fakes/LogCapture.h"
#include "foundation/UserDefaults.h"
#include "update/UpdaterManager.h"

#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using namespace tovek;

class TestGeneralTabView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not)")));
        m_dir = std::make_unique<QTemporaryDir>();
        qputenv("HOME", m_dir->path().toUtf8());
        QVERIFY(QDir().mkpath(m_dir->filePath(QStringLiteral("Downloads"))));
        m_defaults = std::make_unique<UserDefaults>(m_dir->filePath(QStringLiteral("d.json")));
        m_updates = std::make_unique<UserDefaults>(m_dir->filePath(QStringLiteral("u.json")));
        m_loginItem = std::make_unique<FakeLoginItem>();
        m_visibility.clear();
        make();
    }
    void cleanup()
    {
        m_view.reset();
        m_manager.reset();
    }

    void startsWithTheDefaults()
    {
        QCOMPARE(labels(),
                 (QStringList{QStringLiteral("Launch at login"),
                              QStringLiteral("Show Tovek in menu bar"),
                              QStringLiteral("Highlight detected text"),
                              QStringLiteral("Check for updates automatically")}));
        QVERIFY(!control("Launch at login")->isChecked());
        QVERIFY(control("Show Tovek in menu bar")->isChecked());
        QVERIFY(control("Highlight detected text")->isChecked());
        QVERIFY(!control("Check for updates automatically")->isChecked());
        QCOMPARE(chooseButton()->accessibleName(), QStringLiteral("Screenshot save location"));
        QVERIFY(chooseButton()->accessibleDescription().startsWith(QStringLiteral("~/Downloads")));
    }

    void launchesAtLogin()
    {
        control("Launch at login")->click();
        QVERIFY(m_loginItem->isOn);
        control("Launch at login")->click();
        QVERIFY(!m_loginItem->isOn);
    }

    void tellsWhyLoginCannotBeChanged()
    {
        m_loginItem->failure = QStringLiteral("disk full");
        LogCapture log;
        control("Launch at login")->click();
        QVERIFY(!control("Launch at login")->isChecked());
        const QWidget *row = control("Launch at login")->parentWidget();
        QCOMPARE(row->toolTip(), QStringLiteral("disk full"));
        QVERIFY(isShown("Could not be turned on"));
        QVERIFY(control("Launch at login")->accessibleDescription().contains("disk full"));
        m_loginItem->change(true);
        control("Launch at login")->click();
        QVERIFY(control("Launch at login")->isChecked());
        QCOMPARE(log.lines(),
                 (QStringList{QStringLiteral("Failed to enable launch at login: disk full"),
                              QStringLiteral("Failed to disable launch at login: disk full")}));
    }

    void showsWhatOthersDoToTheLoginItem()
    {
        m_loginItem->change(true);
        QVERIFY(control("Launch at login")->isChecked());
        m_view->hide();
        QVERIFY(!m_loginItem->watches);
        m_loginItem->change(false);
        m_view->show();
        QVERIFY(!control("Launch at login")->isChecked());
        QVERIFY(m_loginItem->isOn == false);
    }

    void hidesTheStatusItemAndSaysSo()
    {
        control("Show Tovek in menu bar")->click();
        QCOMPARE(m_visibility, QList<bool>{false});
        QCOMPARE(m_defaults->boolean(QStringLiteral("showInMenuBar")), std::optional(false));
        auto *alert = m_view->findChild<KeyboardShortcuts::AlertSheet *>();
        QVERIFY(alert);
        QCOMPARE(alert->accessibleName(), QStringLiteral("Tovek Is Now Hidden"));
        QCOMPARE(alert->windowTitle(), alert->accessibleName());
        QCOMPARE(alert->accessibleDescription(),
                 QStringLiteral("To open preference window in the future, click Tovek's icon in "
                                "your Launchpad when Tovek is running."));
        QCOMPARE(alert->buttons().size(), 1);
        QCOMPARE(alert->buttons().first()->text(), QStringLiteral("OK"));
        alert->buttons().first()->click();
        QTRY_VERIFY(!m_view->findChild<KeyboardShortcuts::AlertSheet *>());
        control("Show Tovek in menu bar")->click();
        QCOMPARE(m_visibility, (QList<bool>{false, true}));
        QVERIFY(!m_view->findChild<KeyboardShortcuts::AlertSheet *>());
    }

    void highlightsText()
    {
        control("Highlight detected text")->click();
        QCOMPARE(m_defaults->boolean(QStringLiteral("highlightText")), std::optional(false));
        make();
        QVERIFY(!control("Highlight detected text")->isChecked());
    }

    void choosesAFolder()
    {
        const QString chosen = m_dir->filePath(QStringLiteral("chosen"));
        QVERIFY(QDir().mkpath(chosen));
        answerWith(QStringLiteral("printf %s '%1'").arg(chosen));
        chooseButton()->click();
        QTRY_COMPARE(m_defaults->string(QStringLiteral("saveFolderPath")), std::optional(chosen));
        QVERIFY(chooseButton()->accessibleDescription().startsWith(QStringLiteral("~/chosen")));
    }

    void keepsTheFolderWhenTheChooserIsLeft()
    {
        answerWith(QStringLiteral("printf %s /elsewhere; touch left; exit 1"));
        chooseButton()->click();
        QTRY_VERIFY(QFile::exists(m_dir->filePath(QStringLiteral("left"))));
        QTest::qWait(100);
        QVERIFY(!m_defaults->contains(QStringLiteral("saveFolderPath")));
    }

    void givesUpAChooserThatHangs()
    {
        answerWith(QStringLiteral("echo $$ >pid; exec sleep 1000"));
        chooseButton()->click();
        const auto hung = [this] {
            QFile file(m_dir->filePath(QStringLiteral("pid")));
            return file.open(QIODevice::ReadOnly) ? file.readAll().toInt() : 0;
        };
        QTRY_VERIFY(hung() > 0);
        const QString chosen = m_dir->filePath(QStringLiteral("chosen"));
        answerWith(QStringLiteral("printf %s '%1'").arg(chosen));
        chooseButton()->click();
        QTRY_COMPARE(m_defaults->string(QStringLiteral("saveFolderPath")), std::optional(chosen));
        QTRY_COMPARE(kill(hung(), 0), -1);
    }

    void closesAChooserThatGivesNoSign()
    {
        answerWith(QStringLiteral("printf '\\0'; exec sleep 1000"));
        LogCapture log;
        chooseButton()->click();
        QTRY_VERIFY(shows(QStringLiteral("A folder did not answer")));
        // Also when the window is looked at again.
        m_view->hide();
        m_view->show();
        QVERIFY(shows(QStringLiteral("A folder did not answer")));
        QCOMPARE(timesIn(log, "Closed the folder chooser: a folder does not answer"), 1);
    }

    void saysWhenThereIsNoChooser()
    {
        LogCapture log;
        chooseButton()->click();
        QTRY_VERIFY(shows(QStringLiteral("The chooser cannot be opened")));
        QCOMPARE(timesIn(log, "Failed to open the folder chooser: "), 1);
    }

    void marksAFolderThatIsMissing()
    {
        const QString folder = m_dir->filePath(QStringLiteral("chosen"));
        m_defaults->setString(QStringLiteral("saveFolderPath"), folder);
        m_view->hide();
        m_view->show();
        QVERIFY(shows(QStringLiteral("This folder does not exist")));
        QVERIFY(chooseButton()->accessibleDescription().contains(
            QStringLiteral("This folder does not exist")));
        QVERIFY(QDir().mkpath(folder));
        m_view->hide();
        m_view->show();
        QVERIFY(!shows(QStringLiteral("This folder does not exist")));
    }

    void namesTheFolderThatIsUsed_data()
    {
        QTest::addColumn<std::optional<QString>>("stored");
        QTest::addColumn<bool>("hasDownloads");
        const QString chosen = QStringLiteral("/usr");
        QTest::newRow("none stored") << std::optional<QString>() << true;
        QTest::newRow("none stored, no Downloads") << std::optional<QString>() << false;
        QTest::newRow("an empty one stored") << std::optional(QString()) << true;
        QTest::newRow("an empty one stored, no Downloads") << std::optional(QString()) << false;
        QTest::newRow("stored") << std::optional(chosen) << true;
        QTest::newRow("stored, no Downloads") << std::optional(chosen) << false;
    }
    void namesTheFolderThatIsUsed()
    {
        QFETCH(std::optional<QString>, stored);
        QFETCH(bool, hasDownloads);
        if (stored)
            m_defaults->setString(QStringLiteral("saveFolderPath"), *stored);
        if (!hasDownloads)
            QVERIFY(QDir(m_dir->path()).rmdir(QStringLiteral("Downloads")));
        make();
        FakeClipboard clipboard;
        ImageOutput output(clipboard, *m_defaults, m_clock, {});
        const QString used = QFileInfo(fileAt(output.saveLocation())).path();
        QCOMPARE(chooseButton()->accessibleDescription().section(QStringLiteral(". "), 0, 0),
                 abbreviatedPath(used, m_dir->path()));
        QVERIFY(!shows(QStringLiteral("This folder does not exist")));
        answerWith(QStringLiteral("printf %s \"$*\" >asked"));
        chooseButton()->click();
        const QString accent = m_view->palette().color(QPalette::Highlight).name();
        QTRY_COMPARE(asked(), QStringLiteral("--start %1 --accent %2").arg(used, accent));
    }

    void turnsAutomaticChecksOn()
    {
        control("Check for updates automatically")->click();
        QVERIFY(m_manager->automaticallyChecksForUpdates());
        make();
        QVERIFY(control("Check for updates automatically")->isChecked());
    }

    void offersNoUpdatesWhereThereAreNone()
    {
        make({});
        auto *toggle = control("Check for updates automatically");
        QVERIFY(!toggle->isEnabled());
        QVERIFY(!toggle->isChecked());
        QCOMPARE(toggle->parentWidget()->toolTip(), m_manager->unavailableReason());
        QVERIFY(!m_manager->unavailableReason().isEmpty());
    }

    void isReachedByTheKeyboardFromTopToBottom()
    {
        QStringList order;
        control("Launch at login")->setFocus();
        for (int step = 0; step < 5; ++step) {
            order.append(m_view->focusWidget()->accessibleName());
            QTest::keyClick(m_view->focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(order,
                 (QStringList{QStringLiteral("Launch at login"),
                              QStringLiteral("Show Tovek in menu bar"),
                              QStringLiteral("Highlight detected text"),
                              QStringLiteral("Screenshot save location"),
                              QStringLiteral("Check for updates automatically")}));
    }

private:
    void make(const UpdateConfiguration &configuration = {QStringLiteral("/bin/false"),
                                                          QStringLiteral("1.0")})
    {
        m_view.reset();
        m_manager = std::make_unique<UpdaterManager>(configuration, *m_updates, m_clock);
        m_view = std::make_unique<GeneralTabView>(GeneralTabView::Services{
            *m_defaults, *m_loginItem, *m_manager,
            [this](bool isVisible) { m_visibility.append(isVisible); }, nullptr, dialog()});
        m_view->show();
        m_view->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
    }
    SwitchControl *control(const char *name) const
    {
        for (auto *candidate : m_view->findChildren<SwitchControl *>()) {
            if (candidate->accessibleName() == QLatin1String(name))
                return candidate;
        }
        return nullptr;
    }
    QStringList labels() const
    {
        QStringList names;
        for (const auto *candidate : m_view->findChildren<SwitchControl *>())
            names.append(candidate->accessibleName());
        return names;
    }
    bool isShown(const char *text) const
    {
        const auto labels = m_view->findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(), [text](const QLabel *label) {
            return label->isVisible() && label->text() == QLatin1String(text);
        });
    }
    QPushButton *chooseButton() const { return m_view->findChild<QPushButton *>(); }
    /// The toolkit's own lines may stand in between.
    static qsizetype timesIn(LogCapture &log, const char *line)
    {
        return log.lines().join(QLatin1Char('\n')).count(QLatin1String(line));
    }
    QString dialog() const { return m_dir->filePath(QStringLiteral("dialog")); }
    /// What stands in for the dialog, in the folder of the test.
    void answerWith(const QString &commands)
    {
        QFile file(dialog());
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(
            QStringLiteral("#!/bin/sh\ncd '%1'\n%2\n").arg(m_dir->path(), commands).toUtf8());
        QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    QString asked() const
    {
        QFile file(m_dir->filePath(QStringLiteral("asked")));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    bool shows(const QString &text) const
    {
        for (const auto *label : m_view->findChildren<QLabel *>()) {
            if (label->isVisible() && label->text() == text)
                return true;
        }
        return false;
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<UserDefaults> m_updates;
    std::unique_ptr<FakeLoginItem> m_loginItem;
    FakeClock m_clock;
    std::unique_ptr<UpdaterManager> m_manager;
    std::unique_ptr<GeneralTabView> m_view;
    QList<bool> m_visibility;
};

QTEST_MAIN(TestGeneralTabView)
#include "tst_GeneralTabView.moc"
