// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "desktop/SettingsHand.h"
#include "support/ClipboardReader.h"
#include "support/Skip.h"

#include <QDir>
#include <QStandardPaths>
#include <QTest>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

enum Row { launchAtLogin, showInMenuBar, highlightText, saveLocation, automaticUpdates };

} // namespace

/// The settings that are not shortcuts, turned with the real mouse; their effects seen from
/// outside.
class TestGeneralTab : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_hand = std::make_unique<SettingsHand>();
        QVERIFY(m_hand->start());
        QVERIFY(m_hand->openTab("preferences", "General"));
    }
    void cleanup() { m_hand.reset(); }

    void launchesAtLogin()
    {
        const QString entry =
            m_hand->desktop->configFolder() + QStringLiteral("/autostart/org.tovek.Tovek.desktop");
        QVERIFY(!QFile::exists(entry));
        QVERIFY(!isOn(launchAtLogin));
        click(launchAtLogin);
        QVERIFY(waitUntil([&] { return QFile::exists(entry); }));
        QVERIFY(waitUntil([&] { return isOn(launchAtLogin); }));
        click(launchAtLogin);
        QVERIFY(waitUntil([&] { return !QFile::exists(entry) || hides(entry); }));
        QVERIFY(waitUntil([&] { return !isOn(launchAtLogin); }));
    }

    void followsWhatOthersDoToTheLoginItem()
    {
        const QString entry =
            m_hand->desktop->configFolder() + QStringLiteral("/autostart/org.tovek.Tovek.desktop");
        click(launchAtLogin);
        QVERIFY(waitUntil([&] { return isOn(launchAtLogin); }));
        QVERIFY(QFile::remove(entry));
        QVERIFY(waitUntil([&] { return !isOn(launchAtLogin); }));
    }

    void hidesFromThePanelAndComesBack()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("trayer")).isEmpty())
            QSKIP("trayer is not installed");
        QVERIFY(startPanel());
        QVERIFY(waitUntil([&] { return hasIcon(); }));
        click(showInMenuBar);
        QVERIFY(m_hand->isAlertOpen());
        QVERIFY(waitUntil([&] { return !hasIcon(); }));
        QCOMPARE(m_hand->stored().value("showInMenuBar"), QJsonValue(false));
        QVERIFY(hand().tap("Return"));
        QVERIFY(m_hand->isBack());
        click(showInMenuBar);
        QVERIFY(waitUntil([&] { return hasIcon(); }));
        QCOMPARE(m_hand->stored().value("showInMenuBar"), QJsonValue(true));
        QCOMPARE(m_hand->eye->activeWindow(), m_hand->settings);
    }

    void storesTheHighlightOfText()
    {
        QVERIFY(isOn(highlightText));
        QVERIFY(!m_hand->stored().contains("highlightText"));
        click(highlightText);
        QVERIFY(waitUntil(
            [&] { return m_hand->stored().value("highlightText") == QJsonValue(false); }));
        QVERIFY(waitUntil([&] { return !isOn(highlightText); }));
        click(highlightText);
        QVERIFY(
            waitUntil([&] { return m_hand->stored().value("highlightText") == QJsonValue(true); }));
    }

    void savesToTheChosenFolder()
    {
        const QString folder = m_hand->desktop->home() + QStringLiteral("/pictures");
        QVERIFY(QDir().mkpath(folder));
        hand().click(m_hand->corner() + QPoint(382, 203));
        QVERIFY(m_hand->isInFront("Select the folder where screenshots will be saved"));
        // The name is typed in full; the field has the keyboard.
        QVERIFY(hand().typePath(folder));
        QVERIFY(hand().tap("Return"));
        QVERIFY(waitUntil(
            [&] { return m_hand->stored().value("saveFolderPath").toString() == folder; }));
        QVERIFY(m_hand->isBack());

        QVERIFY(m_hand->activateAction("start-capture"));
        QVERIFY(waitUntil([&] { return m_hand->eye->overlays("tovek").size() == 1; }));
        hand().drag({100, 100}, {300, 250});
        QVERIFY(hand().tap("Control_L+s"));
        QVERIFY(waitUntil(
            [&] { return QDir(folder).entryList({QStringLiteral("Tovek *.png")}).size() == 1; }));
        QVERIFY(QDir(m_hand->desktop->downloads()).entryList(QDir::Files).isEmpty());
    }

    void changesNothingWhenTheChoiceIsCanceled()
    {
        hand().click(m_hand->corner() + QPoint(382, 203));
        QVERIFY(m_hand->isInFront("Select the folder where screenshots will be saved"));
        QVERIFY(hand().tap("Escape"));
        QVERIFY(m_hand->isBack());
        QVERIFY(!m_hand->stored().contains("saveFolderPath"));
    }

    void cannotLookForUpdatesInABuildWithoutThem()
    {
        const QPoint middle = place(automaticUpdates);
        QVERIFY(!isOn(automaticUpdates));
        click(automaticUpdates);
        // A tooltip says why.
        const auto tooltip = [&] {
            for (const SeenWindow &window : m_hand->eye->windows()) {
                if (window.isUnmanaged
                    && QRect(middle - QPoint(200, 60), QSize(400, 120)).intersects(window.native))
                    return true;
            }
            return false;
        };
        QVERIFY(!tooltip());
        const auto isToldAfterAMove = [&] {
            hand().move(middle - QPoint(60, 0));
            hand().move(middle - QPoint(58, 0));
            return waitUntil(tooltip, 2s);
        };
        QVERIFY(waitUntil(isToldAfterAMove, 20s));
        QVERIFY(!isOn(automaticUpdates));
        QCOMPARE(m_hand->stored(QStringLiteral("updates.json")), QJsonObject());
    }

    void saysInTheMenuWhyItCannotCheckForUpdates()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("trayer")).isEmpty())
            QSKIP("trayer is not installed");
        QVERIFY(startPanel());
        QVERIFY(waitUntil([&] { return hasIcon(); }));
        hand().click(panel().center());
        QVERIFY(waitUntil([&] { return popups().size() == 1; }));
        const QRect menu = popups().first().native;
        // Below the middle; the pointer rests on each row for longer than a tooltip needs.
        const auto isToldAt = [&](int y) {
            hand().move({menu.center().x(), y});
            hand().move({menu.center().x() + 1, y});
            return waitUntil([&] { return popups().size() == 2; }, 2s);
        };
        bool isTold = false;
        for (int part = 45; !isTold && part < 70; part += 5)
            isTold = isToldAt(menu.top() + menu.height() * part / 100);
        QVERIFY(isTold);
        hand().click(m_hand->eye->pointer());
        QVERIFY(hand().tap("Escape"));
        QVERIFY(waitUntil([&] { return popups().isEmpty(); }));
        // Nothing was asked for.
        QCOMPARE(m_hand->program->lines().filter("update address"), QStringList());
    }

private:
    Hand &hand() const { return *m_hand->hand; }
    /// The switch of a row, on the screen.
    QPoint place(Row row) const
    {
        return m_hand->corner() + QPoint(SettingsHand::switchLeft + 17, 89 + 38 * row);
    }
    void click(Row row) const { hand().click(place(row)); }
    bool isOn(Row row) const
    {
        const QColor left = m_hand->eye->pixel(place(row) - QPoint(11, 0));
        return left.hsvSaturation() > 100;
    }
    bool startPanel() const
    {
        return m_hand->desktop->run(
            QStringLiteral("trayer"),
            {"--edge", "top", "--align", "right", "--widthtype", "request", "--height", "24"});
    }
    QRect panel() const
    {
        for (const SeenWindow &window : m_hand->eye->windows()) {
            if (window.windowClass.compare("trayer", Qt::CaseInsensitive) == 0)
                return window.native;
        }
        return {};
    }
    /// The panel is as wide as the icons in it.
    bool hasIcon() const { return panel().width() >= 16; }
    QList<SeenWindow> popups() const { return m_hand->eye->overlays("tovek"); }
    static bool hides(const QString &entry)
    {
        QFile file(entry);
        return file.open(QIODevice::ReadOnly) && file.readAll().contains("Hidden=true");
    }

    std::unique_ptr<SettingsHand> m_hand;
};

QTEST_GUILESS_MAIN(TestGeneralTab)
#include "tst_GeneralTab.moc"
