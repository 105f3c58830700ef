// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The last capture in the corner of a Wayland screen: dragged into another program, clicked, and
// never in anybody's way.

#include "desktop/wayland/WaylandSession.h"
#include "support/Skip.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>

using namespace tovek;

namespace {

constexpr QRgb orange = 0xffc06020;
constexpr QRgb green = 0xff206020;

QString focusedTitle(const QJsonObject &node)
{
    if (node.value(QLatin1String("focused")).toBool())
        return node.value(QLatin1String("name")).toString();
    for (const char *children : {"nodes", "floating_nodes"}) {
        for (const QJsonValue &child : node.value(QLatin1String(children)).toArray()) {
            const QString title = focusedTitle(child.toObject());
            if (!title.isEmpty())
                return title;
        }
    }
    return {};
}

/// A desktop that a window fills, of which a part was copied: the upper right corner shows it.
struct PreviewSession : WaylandSession
{
    PreviewSession() { settings.remove(QStringLiteral("showInMenuBar")); }

    [[nodiscard]] bool startWithWindow()
    {
        if (!start())
            return false;
        window = desktop.run(QStringLiteral(TOVEK_DROP_WINDOW), {},
                             {{QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland")}});
        return window && waitUntil([&] { return pixel({300, 400}) == orange && !isShown(); });
    }
    /// 400 x 200 points of the left half: a preview of 200 x 100.
    [[nodiscard]] bool copy()
    {
        return open() && !isShown() && (select(0, {100, 300}, {500, 500}), tap("Return"))
            && waitUntil([&] { return isShown(); });
    }
    QRgb pixel(QPoint at) { return desktop.look(0).pixel(at); }
    /// Looks where the pointer is not.
    bool isShown() { return pixel(inPreview + QPoint(50, -30)) == orange; }

    static constexpr QPoint inPreview{1280 - 12 - 100, 12 + 50};
    Program *window = nullptr;
};

} // namespace

class TestWaylandPreview : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(WaylandDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void isDraggedIntoAnotherProgram()
    {
        PreviewSession session;
        QVERIFY2(session.startWithWindow(), qPrintable(session.error));
        // The other program's toolkit waits a second for what is dropped, which a machine that is
        // busy with other tests may not have.
        const auto last = [&] {
            return session.window->lines().value(session.window->lines().size() - 1);
        };
        for (int i = 0; i < 3 && (i == 0 || last() == QStringLiteral("nothing")); ++i) {
            QVERIFY(session.copy());
            session.hand->dragAndHold(session.inPreview, session.inPreview + QPoint(-12, 12));
            // The picture hangs at the pointer: by its corner where the toolkit is older than 6.5,
            // else by its middle.
            const QPoint belowPreview = session.inPreview + QPoint(30, 56);
            QTRY_COMPARE(session.pixel(belowPreview), orange);
            // Nobody drops before the other program has said that it would take it.
            for (int x = 1100; x >= 300; x -= 100) {
                const qsizetype before = session.window->lines().size();
                session.hand->move({double(x), 500});
                QTRY_VERIFY(session.window->lines().size() > before);
            }
            session.hand->release();
            QTRY_VERIFY(last() != QStringLiteral("over"));
            QTRY_VERIFY(!session.isShown());
        }
        const QStringList words = last().split(QLatin1Char(' '));
        QVERIFY2(words[0].toInt() > 100, qPrintable(words[0]));
        QCOMPARE(words[1], QStringLiteral("89504e470d0a1a0a"));
    }

    void opensTheMenuAndTakesNothingElse()
    {
        PreviewSession session;
        QVERIFY2(session.startWithWindow(), qPrintable(session.error));
        QVERIFY(session.copy());
        const QJsonDocument tree =
            session.desktop.tell({QStringLiteral("-t"), QStringLiteral("get_tree")});
        QCOMPARE(focusedTitle(tree.object()), QStringLiteral("drop here"));
        const QPoint inMenu(1280 - 12 - 60, 12 + 100 + 60);
        QCOMPARE(session.pixel(inMenu), green);
        session.hand->click(session.inPreview);
        QTRY_VERIFY(session.pixel(inMenu) != green);
        QVERIFY(session.isShown());
        // A click anywhere else ends it.
        session.hand->click({300, 700});
        QTRY_COMPARE(session.pixel(inMenu), green);
        QVERIFY(session.isShown());
        // It opens again, and its first row starts a capture, in which neither is to be seen.
        session.hand->click(session.inPreview);
        QTRY_VERIFY(session.pixel(inMenu) != green);
        session.hand->click({1280 - 12 - 60, 12 + 100 + 5 + 14});
        QTRY_COMPARE(session.pixel(inMenu), green);
        QTRY_VERIFY(!session.isShown());
        QVERIFY(session.tap("Escape"));
        QTRY_VERIFY(session.isShown());
        QVERIFY(session.tovek->isRunning());
    }

    void comesOnTheScreenOfTheCapture()
    {
        const QRect corner(1280 - 12 - 200, 12, 200, 100);
        for (const int screen : {0, 1}) {
            WaylandSession session({{{QSize(1280, 800), 1}, {QSize(1280, 800), 1}}});
            session.settings.remove(QStringLiteral("showInMenuBar"));
            QVERIFY2(session.start(), qPrintable(session.error));
            QVERIFY(session.open());
            session.select(screen, {100, 300}, {500, 500});
            QVERIFY(session.tap("Return"));
            QCOMPARE(session.pasted().size(), QSize(400, 200));
            QTRY_VERIFY(session.desktop.look(screen).copy(corner)
                        != session.before[screen].copy(corner));
            QTRY_VERIFY(session.desktop.look(1 - screen).copy(corner)
                        == session.before[1 - screen].copy(corner));
        }
    }

    void isInNoPicture()
    {
        PreviewSession session;
        QVERIFY2(session.startWithWindow(), qPrintable(session.error));
        QVERIFY(session.copy());
        session.point(0, {30, 700});
        QVERIFY(session.act("start-capture"));
        QTRY_COMPARE(session.pixel(session.inPreview), green);
        session.select(0, {800, 2}, {1278, 300});
        QVERIFY(session.tap("Return"));
        QTRY_COMPARE(session.pasted().size(), QSize(478, 298));
        const QImage image = session.pasted();
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                QCOMPARE(image.pixel(x, y), green);
    }
};

QTEST_GUILESS_MAIN(TestWaylandPreview)
#include "tst_WaylandPreview.moc"
