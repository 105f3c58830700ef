// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The program's item in a panel that draws items itself and tells them nothing of the pointer.

#include "desktop/StatusItemSession.h"
#include "support/Skip.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

using namespace std::chrono_literals;
using namespace tovek;

namespace {

constexpr auto enough = 20s; // for whatever a busy machine takes
constexpr QPoint inPreviewRow(60, 40); // of the menu, when its first row is the thumbnail
constexpr QPoint inFirstItem(30, 14);

struct NotifierSession : StatusItemSession
{
    using StatusItemSession::StatusItemSession;

    bool startPanel()
    {
        panel = desktop.run(QStringLiteral(TOVEK_STATUS_HOST),
                            {QString::number(panelHeight), QStringLiteral("#303030")});
        return panel && panel->waitForLine(QStringLiteral("ready"));
    }
    bool startWithPanel()
    {
        return prepare() && startPanel() && tovek->start()
            && waitUntil([this] { return hasIcon(); });
    }

    /// The only item is in the corner.
    QRect item() const { return {plan.size.width() - panelHeight, 0, panelHeight, panelHeight}; }
    QImage look() const { return tovek->eye().look(item()); }
    /// The symbol has its room; a thumbnail leaves bands above and below.
    bool hasIcon() const { return inked(look()) > 60 && inked(look().copy(0, 0, 24, 2)) > 0; }
    bool hasThumbnail() const { return inked(look()) > 60 && inked(look().copy(0, 0, 24, 2)) == 0; }
    bool preview()
    {
        return copy({150, 150}, {551, 450}) && waitUntil([this] { return hasThumbnail(); });
    }

    Program *panel = nullptr;
};

} // namespace

class TestStatusNotifier : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void startsACaptureFromItsMenu()
    {
        NotifierSession session;
        QVERIFY2(session.startWithPanel(), qPrintable(session.error));
        session.before = session.tovek->eye().lookWhenStill();
        QVERIFY(session.openMenu(session.item().center()));
        QVERIFY(QRect(QPoint(), session.plan.size).contains(session.menu()));
        // Menus of newer toolkits take no click of a pointer that has hardly moved.
        for (int step = 8; step >= 0; --step)
            session.tovek->hand().move(session.menu().topLeft() + inFirstItem
                                       + QPoint(2 * step, 0));
        session.tovek->hand().click(session.menu().topLeft() + inFirstItem);
        QVERIFY(waitUntil([&] { return session.tovek->covers(session.monitors()); }));
        QVERIFY(session.menu().isEmpty());
        // The panel repaints itself as it pleases; most of the menu was below it.
        const QRect belowPanel(0, session.roomAbove, 1280, 800 - session.roomAbove);
        QCOMPARE(
            differentPixels(session.before.copy(belowPanel), session.tovek->eye().look(belowPanel)),
            0);
        QVERIFY(session.tap("Escape"));
        QVERIFY(session.isClosed());
    }

    void offersItsThumbnailInTheMenu()
    {
        NotifierSession session;
        QVERIFY2(session.startWithPanel(), qPrintable(session.error));
        QVERIFY(session.openMenu(session.item().center()));
        const int height = session.menu().height();
        QVERIFY(session.tap("Escape"));
        QVERIFY(waitUntil([&] { return session.menu().isEmpty(); }));
        QVERIFY(session.preview());
        QVERIFY(session.openMenu(session.item().center()));
        QVERIFY(session.menu().height() > height + 40);
        // A wobble is no drag.
        Hand &hand = session.tovek->hand();
        const QPoint at = session.menu().topLeft() + inPreviewRow;
        hand.move(at);
        hand.press();
        hand.move(at + QPoint(2, 0));
        hand.release();
        QVERIFY(!session.tovek->eye().lookWhenStill().isNull());
        QVERIFY(!session.menu().isEmpty());
        QVERIFY(session.temporaryFiles().isEmpty());
        QVERIFY(session.tap("Escape"));
        QVERIFY(waitUntil([&] { return session.menu().isEmpty(); }));
        QVERIFY(session.hasThumbnail());
    }

    void keepsItsIconWhereAThumbnailWouldBeTiny()
    {
        NotifierSession session;
        QVERIFY2(session.startWithPanel(), qPrintable(session.error));
        QVERIFY(session.openMenu(session.item().center()));
        const int height = session.menu().height();
        QVERIFY(session.tap("Escape"));
        QVERIFY(waitUntil([&] { return session.menu().isEmpty(); }));
        session.tovek->hand().move({20, 700});
        const QImage icon = session.tovek->eye().lookWhenStill(session.item());
        QVERIFY(session.copy({150, 150}, {551, 201}));
        QVERIFY(session.openMenu(session.item().center()));
        QVERIFY(session.menu().height() > height + 20);
        QVERIFY(session.tap("Escape"));
        QVERIFY(waitUntil([&] { return session.menu().isEmpty(); }));
        session.tovek->hand().move({20, 700});
        const QImage now = session.tovek->eye().lookWhenStill(session.item());
        QCOMPARE(differentPixels(now, icon), 0);
    }

    void dropsAFileIntoAFileManager()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("thunar")).isEmpty())
            QSKIP("thunar is not installed");
        NotifierSession session;
        QVERIFY2(session.startWithPanel(), qPrintable(session.error));
        QVERIFY(session.startFileManager());
        QVERIFY(session.preview());
        QVERIFY(session.openMenu(session.item().center()));
        Hand &hand = session.tovek->hand();
        const QRect menu = session.menu();
        const QPoint at = menu.topLeft() + inPreviewRow;
        hand.move(at);
        hand.press();
        hand.move(at + QPoint(0, 5));
        QVERIFY(waitUntil([&] { return session.temporaryFiles().size() == 1; }));
        // The menu goes as the file comes; soon the picture under the pointer looks like one.
        QVERIFY(waitUntil([&] { return session.menu() != menu; }));
        const QString file = session.temporaryFiles().constFirst();
        const qint64 size = QFileInfo(file).size();
        session.dropIntoFileManager();
        const QString copy = session.dropped.filePath(QFileInfo(file).fileName());
        // The file manager writes it bit by bit.
        QVERIFY(waitUntil([&] { return QFileInfo(copy).size() == size; }, enough));
        QCOMPARE(differentPixels(QImage(copy), session.expected({150, 150}, {551, 450})), 0);
        QVERIFY(waitUntil([&] { return session.hasIcon(); }));
        QVERIFY(waitUntil([&] { return session.temporaryFiles().isEmpty(); }));
    }

    void comesBackWithItsPanel()
    {
        NotifierSession session;
        QVERIFY2(session.startWithPanel(), qPrintable(session.error));
        session.panel->stop();
        QVERIFY(waitUntil([&] { return !session.hasIcon(); }));
        QVERIFY(session.startPanel());
        QVERIFY(waitUntil([&] { return session.hasIcon(); }, enough));
        QVERIFY(session.openMenu(session.item().center()));
    }

    void comesToAPanelThatStartsLate()
    {
        NotifierSession session;
        QVERIFY2(session.prepare() && session.tovek->start(), qPrintable(session.error));
        QVERIFY(session.tovek->program().waitForLine(QStringLiteral("No status area yet")));
        QVERIFY(session.startPanel());
        QVERIFY(waitUntil([&] { return session.hasIcon(); }, enough));
    }

    void showsTheIconAgainAfterTwentySeconds()
    {
        NotifierSession session;
        QVERIFY2(session.startWithPanel(), qPrintable(session.error));
        QVERIFY(session.preview());
        QElapsedTimer timer;
        timer.start();
        QVERIFY(waitUntil([&] { return session.hasIcon(); }, 40s));
        QVERIFY2(timer.elapsed() > 18000, qPrintable(QString::number(timer.elapsed())));
    }

    void movesToATrayThatTakesWindowsAndBack()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("trayer")).isEmpty())
            QSKIP("trayer is not installed");
        NotifierSession session;
        QVERIFY2(session.startWithPanel(), qPrintable(session.error));
        // Several times, since a tray may die at any moment of the move.
        for (int move = 0; move < 8; ++move) {
            const qsizetype lines = session.panel->lines().size();
            Program *tray = session.desktop.run(
                QStringLiteral("trayer"), {"--edge", "top", "--align", "left", "--height", "24"});
            QVERIFY(tray);
            QVERIFY(session.panel->waitForLine(QStringLiteral("gone"), enough, lines));
            tray->stop();
            QVERIFY(session.panel->waitForLine(QStringLiteral("item"), enough, lines));
        }
        QVERIFY(waitUntil([&] { return session.hasIcon(); }));
    }
};

QTEST_GUILESS_MAIN(TestStatusNotifier)
#include "tst_StatusNotifier.moc"
