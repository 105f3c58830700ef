// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The program's item in a panel that embeds windows, under a real mouse.

#include "desktop/StatusItemSession.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

using namespace std::chrono_literals;
using namespace tovek;

namespace {

constexpr auto enough = 20s; // for whatever a busy machine takes

struct TraySession : StatusItemSession
{
    using StatusItemSession::StatusItemSession;

    /// Returns when the panel takes items in.
    bool startPanel(const QString &color = QStringLiteral("0x303030"))
    {
        panel = desktop.run(QStringLiteral("trayer"),
                            {"--edge", "top", "--align", "right", "--widthtype", "request",
                             "--height", QString::number(panelHeight), "--expand", "true",
                             "--transparent", "true", "--alpha", "0", "--tint", color});
        const XConnection connection(desktop.displayName());
        const xcb_atom_t selection = connection.atom("_NET_SYSTEM_TRAY_S0");
        return panel && waitUntil([&] {
                   const XPtr<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
                       connection, xcb_get_selection_owner(connection, selection), nullptr));
                   return owner && owner->owner != XCB_NONE;
               });
    }
    bool startWithPanel(const QJsonObject &settings = {})
    {
        return prepare() && startPanel() && tovek->start(scale, settings);
    }

    /// The embedded window's place on the screen; empty while there is none.
    QRect item() const
    {
        const XConnection connection(desktop.displayName());
        return find(connection, connection.root(), 0);
    }
    QImage look() const
    {
        const QRect place = item();
        return place.isEmpty() ? QImage() : tovek->eye().look(place);
    }
    bool hasIcon() const
    {
        const QImage image = look();
        return !image.isNull() && image.width() <= 2 * panelHeight && inked(image) > 60
            && inked(image) < image.width() * image.height() * 3 / 4;
    }
    bool hasThumbnail() const
    {
        const QImage image = look();
        return image.width() > 2 * panelHeight && inked(image) > image.width() * image.height() / 2;
    }
    /// Copies a wide part of the picture, so that the item becomes its thumbnail.
    bool preview()
    {
        return copy({150, 150}, {551, 251}) && waitUntil([this] { return hasThumbnail(); });
    }

    Program *panel = nullptr;

private:
    /// Looks inside of windows, not at those that lie on the desktop itself.
    QRect find(const XConnection &connection, xcb_window_t window, int depth) const
    {
        const XPtr<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
        for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i) {
            const xcb_window_t child = xcb_query_tree_children(tree.get())[i];
            const QByteArray name = connection.property(child, XCB_ATOM_WM_CLASS);
            if (depth > 0 && name.contains("tovek"))
                return placeOf(connection, child);
            if (const QRect found = find(connection, child, depth + 1); !found.isEmpty())
                return found;
        }
        return {};
    }
    static QRect placeOf(const XConnection &connection, xcb_window_t window)
    {
        const XPtr<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
        const XPtr<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(
            connection, xcb_translate_coordinates(connection, window, connection.root(), 0, 0),
            nullptr));
        return geometry && place
            ? QRect(place->dst_x, place->dst_y, geometry->width, geometry->height)
            : QRect();
    }
};

} // namespace

class TestTray : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (const QString reason = TestDesktop::missing(); !reason.isEmpty())
            QSKIP(qPrintable(reason));
        if (QStandardPaths::findExecutable(QStringLiteral("trayer")).isEmpty())
            QSKIP("trayer is not installed");
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void startsACaptureFromItsMenu()
    {
        TraySession session;
        QVERIFY2(session.startWithPanel(), qPrintable(session.error));
        QVERIFY(waitUntil([&] { return session.hasIcon(); }, enough));
        session.before = session.tovek->eye().lookWhenStill();
        QVERIFY(session.openMenu(session.item().center()));
        const QRect menu = session.menu();
        QCOMPARE(menu.y(), session.item().y() + session.item().height() + 5);
        QVERIFY(QRect(0, 0, 1280, 800).contains(menu));
        session.tovek->hand().click(menu.topLeft() + QPoint(30, 14));
        QVERIFY(waitUntil([&] { return session.tovek->covers(session.monitors()); }));
        // Nothing of the menu is in the frozen picture.
        QVERIFY(session.menu().isEmpty());
        QCOMPARE(differentPixels(session.before, session.tovek->eye().look()), 0);
        session.select({150, 150}, {301, 277});
        QVERIFY(session.tap("Return"));
        QCOMPARE(differentPixels(QImage::fromData(session.pasted()),
                                 session.expected({150, 150}, {301, 277})),
                 0);
    }

    void obeysAShortcutWhileItsMenuIsOpen()
    {
        TraySession session;
        QVERIFY2(session.startWithPanel(), qPrintable(session.error));
        QVERIFY(waitUntil([&] { return session.hasIcon(); }, enough));
        QVERIFY(session.openMenu(session.item().center()));
        // The menu is on the screen, so it is in the picture like any other, and then it is gone.
        session.before = session.tovek->eye().lookWhenStill();
        QVERIFY(session.tovek->open(QLatin1String(RunningTovek::captureImage), session.monitors()));
        QVERIFY(waitUntil([&] { return session.menu().isEmpty(); }));
        session.select({600, 10}, {1270, 300});
        QCOMPARE(differentPixels(QImage::fromData(session.pasted()),
                                 session.expected({600, 10}, {1270, 300})),
                 0);
    }

    void tellsAWobbleFromADrag()
    {
        TraySession session;
        QVERIFY2(session.startWithPanel(), qPrintable(session.error));
        QVERIFY(waitUntil([&] { return session.hasIcon(); }, enough));
        QVERIFY(session.preview());
        Hand &hand = session.tovek->hand();
        const QPoint at = session.item().center();
        hand.move(at);
        hand.press();
        hand.move(at + QPoint(2, 0));
        hand.release();
        QVERIFY(waitUntil([&] { return !session.menu().isEmpty(); }));
        QVERIFY(session.temporaryFiles().isEmpty());
        QVERIFY(session.hasThumbnail());
        QVERIFY(session.tap("Escape"));
        QVERIFY(waitUntil([&] { return session.menu().isEmpty(); }));
        hand.move(at);
        hand.press();
        hand.move(at + QPoint(0, 4));
        QVERIFY(waitUntil([&] { return session.temporaryFiles().size() == 1; }));
        hand.release();
        QVERIFY(waitUntil([&] { return session.hasIcon(); }));
        QVERIFY(session.menu().isEmpty());
    }

    void dropsAFileIntoAFileManager()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("thunar")).isEmpty())
            QSKIP("thunar is not installed");
        TraySession session;
        QVERIFY2(session.startWithPanel(), qPrintable(session.error));
        QVERIFY(waitUntil([&] { return session.hasIcon(); }, enough));
        QVERIFY(session.startFileManager());
        QVERIFY(session.preview());
        const QPoint at = session.item().center();
        Hand &hand = session.tovek->hand();
        hand.move(at);
        hand.press();
        hand.move(at + QPoint(0, 5));
        QVERIFY(waitUntil([&] { return session.temporaryFiles().size() == 1; }));
        const QString file = session.temporaryFiles().constFirst();
        QCOMPARE(QFileInfo(QFileInfo(file).path()).permissions()
                     & (QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther),
                 QFile::Permissions());
        session.dropIntoFileManager();
        QElapsedTimer timer;
        timer.start();
        QVERIFY(waitUntil([&] { return session.hasIcon(); }));
        const QString name = QFileInfo(file).fileName();
        QVERIFY(waitUntil([&] { return session.dropped.exists(name); }, enough));
        QVERIFY(QRegularExpression(QStringLiteral("^Screenshot \\d{4}-\\d\\d-\\d\\d-\\d{6}\\.png$"))
                    .match(name)
                    .hasMatch());
        QVERIFY(waitUntil([&] { return !QFile::exists(file); }));
        QVERIFY2(timer.elapsed() >= 1900, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(differentPixels(QImage(session.dropped.filePath(name)),
                                 session.expected({150, 150}, {551, 251})),
                 0);
        QVERIFY(session.temporaryFiles().isEmpty());
    }

    void takesTheColourOfItsPanel()
    {
        TraySession session;
        QVERIFY2(session.startWithPanel(), qPrintable(session.error));
        // Several times, since the panel paints itself before or after it has taken the item in.
        for (int panel = 0; panel < 6; ++panel) {
            const bool isLight = panel % 2 == 0;
            session.panel->stop();
            QVERIFY(waitUntil([&] { return session.item().isEmpty(); }));
            QVERIFY(session.startPanel(isLight ? QStringLiteral("0xf0f0f0")
                                               : QStringLiteral("0x202020")));
            const auto suits = [&] {
                const QImage look = session.look();
                if (look.isNull() || !session.hasIcon())
                    return false;
                const int ground = qGray(look.pixel(0, 0));
                int farthest = ground;
                for (int x = 0; x < look.width(); ++x) {
                    for (int y = 0; y < look.height(); ++y) {
                        const int gray = qGray(look.pixel(x, y));
                        if (std::abs(gray - ground) > std::abs(farthest - ground))
                            farthest = gray;
                    }
                }
                return isLight ? ground > 200 && farthest < 90 : ground < 60 && farthest > 190;
            };
            QVERIFY2(waitUntil(suits, enough), isLight ? "light" : "dark");
        }
    }

    void comesBackWithItsPanel()
    {
        TraySession session;
        QVERIFY2(session.startWithPanel(), qPrintable(session.error));
        QVERIFY(waitUntil([&] { return session.hasIcon(); }, enough));
        session.panel->stop();
        QVERIFY(waitUntil([&] { return session.item().isEmpty(); }));
        QVERIFY(session.copy({150, 150}, {301, 277}));
        QVERIFY(session.startPanel());
        QVERIFY(waitUntil([&] { return !session.item().isEmpty(); }, enough));
        QVERIFY(session.tovek->program().lines().filter(QStringLiteral("status area")).isEmpty());
    }

    void comesToAPanelThatStartsLate()
    {
        TraySession session;
        QVERIFY2(session.start(), qPrintable(session.error));
        const QString missing = QStringLiteral("No status area yet");
        QVERIFY(session.tovek->program().waitForLine(missing));
        QVERIFY(session.copy({150, 150}, {301, 277}));
        QVERIFY(session.tovek->waitUntilGone());
        QVERIFY(session.startPanel());
        QVERIFY(waitUntil([&] { return !session.item().isEmpty(); }, enough));
        QCOMPARE(session.tovek->program().lines().filter(missing).size(), 1);
    }

    void showsTheIconAgainAfterTwentySeconds()
    {
        TraySession session;
        QVERIFY2(session.startWithPanel(), qPrintable(session.error));
        QVERIFY(waitUntil([&] { return session.hasIcon(); }, enough));
        QVERIFY(session.preview());
        QElapsedTimer timer;
        timer.start();
        QVERIFY(waitUntil([&] { return session.hasIcon(); }, 40s));
        QVERIFY2(timer.elapsed() > 18000, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(session.item().width() <= 2 * TraySession::panelHeight);
    }

    void staysAwayWhenHidden()
    {
        TraySession session;
        QVERIFY2(session.startWithPanel({{QStringLiteral("showInMenuBar"), false}}),
                 qPrintable(session.error));
        QVERIFY(session.copy({150, 150}, {301, 277}));
        QVERIFY(session.tovek->waitUntilGone());
        QVERIFY(session.item().isEmpty());
        QVERIFY(session.tovek->program().lines().filter(QStringLiteral("status area")).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestTray)
#include "tst_Tray.moc"
