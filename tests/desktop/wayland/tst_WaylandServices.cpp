// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// What the desktops of Wayland do for the program beside showing it: keys, clipboard.

#include "desktop/wayland/WaylandSession.h"
#include "support/Skip.h"

#include <QRegularExpression>
#include <QStandardPaths>

using namespace tovek;

namespace {

const char chord[] = "Control_L+Alt_L+5";
/// 5 with Control and Alt, as it is stored.
const QString storedChord = QStringLiteral("{\"carbonKeyCode\":23,\"carbonModifiers\":6144}");

} // namespace

class TestWaylandServices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void startsWhenTheKeyIsLetGo_data() { desktops(); }
    void startsWhenTheKeyIsLetGo()
    {
        QFETCH(WaylandPlan, plan);
        SKIP_BECAUSE(WaylandDesktop::missing(plan));
        WaylandSession session(plan);
        session.settings.insert(QStringLiteral("KeyboardShortcuts_captureScreenshot"), storedChord);
        QVERIFY2(session.start(), qPrintable(session.error));
        session.point(0, WaylandSession::corner);
        const QImage before = session.desktop.lookWhenStill();
        const QImage arrow = session.pointer();
        QVERIFY(session.hand->hold(QLatin1String(chord)));
        for (int look = 0; look < 5; ++look)
            QCOMPARE(session.desktop.look(), before);
        QVERIFY(session.hand->letGo(QLatin1String(chord)));
        QTRY_VERIFY(session.pointer() != arrow);
        QCOMPARE(WaylandSession::differences(session.desktop.look(), before), 0);
        // The veil shows that it is no other picture.
        session.select(0, {200, 200}, {400, 360});
        QTRY_VERIFY(WaylandSession::differences(session.desktop.look(), before) > 0);
        session.point(0, WaylandSession::corner);
        QVERIFY(session.tap("Escape"));
        QVERIFY(session.tap("Escape"));
        QTRY_COMPARE(WaylandSession::differences(session.desktop.look(), before), 0);
    }

    void saysWhyWhereKWinDoesNotKnowIt()
    {
        WaylandPlan plan{{{}}, false, WaylandPlan::Compositor::kwin};
        plan.isInstalled = false;
        SKIP_BECAUSE(WaylandDesktop::missing(plan));
        WaylandSession session(plan);
        QVERIFY2(session.start(), qPrintable(session.error));
        session.point(0, WaylandSession::corner);
        const QImage before = session.desktop.lookWhenStill();
        QVERIFY(session.act("start-capture"));
        QVERIFY(session.tovek->waitForLine(QStringLiteral("KWin knows no desktop file")));
        // A window in the middle, and no overlay around it.
        QTRY_VERIFY(differentPixels(session.desktop.look(), before) > 0);
        const QRect aside(0, 0, 300, 800);
        QCOMPARE(differentPixels(session.desktop.look().copy(aside), before.copy(aside)), 0);
        QVERIFY(session.tap("Escape"));
        QTRY_COMPARE(differentPixels(session.desktop.look(), before), 0);
    }

    void isIntroducedToKWinByTheScriptThatRunsIt()
    {
        WaylandPlan plan{{{}}, false, WaylandPlan::Compositor::kwin};
        plan.isInstalled = false;
        SKIP_BECAUSE(WaylandDesktop::missing(plan));
        if (QStandardPaths::findExecutable(QStringLiteral("kbuildsycoca5")).isEmpty())
            QSKIP("kbuildsycoca5 is not installed, without which KWin finds no new file");
        WaylandSession session(plan);
        QVERIFY2(session.start(), qPrintable(session.error));
        const QStringList program{qEnvironmentVariable("TOVEK_PROGRAM")};
        const QByteArray said = session.desktop.output(QStringLiteral(TOVEK_INTRODUCE), program);
        QVERIFY(said.contains("org.tovek.Tovek.built.desktop"));
        // Said once: nothing is to be done the next time.
        QCOMPARE(session.desktop.output(QStringLiteral(TOVEK_INTRODUCE), program), QByteArray());
        QTest::qWait(2000); // KWin looks for new files every 1.5 s at most
        QVERIFY(session.open());
        QVERIFY(session.tap("Escape"));
    }

    void loadsNoGraphicsDriver_data() { desktops(); }
    void loadsNoGraphicsDriver()
    {
        QFETCH(WaylandPlan, plan);
        SKIP_BECAUSE(WaylandDesktop::missing(plan));
        WaylandSession session(plan);
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        QVERIFY(session.tap("Escape"));
        QFile maps(QStringLiteral("/proc/%1/maps").arg(session.tovek->pid()));
        QVERIFY2(maps.open(QIODevice::ReadOnly), qPrintable(maps.errorString()));
        const QByteArray files = maps.readAll();
        QVERIFY(files.contains("bin/tovek"));
        for (const char *part : {"_dri.so", "libgallium", "libLLVM", "libEGL_"})
            QVERIFY2(!files.contains(part), part);
        QVERIFY2(session.tovek->errorLines().isEmpty(),
                 qPrintable(session.tovek->errorLines().join(QLatin1Char('\n'))));
    }

    void keepsTheClipboardAfterQuitting_data() { desktops(); }
    void keepsTheClipboardAfterQuitting()
    {
        QFETCH(WaylandPlan, plan);
        SKIP_BECAUSE(WaylandDesktop::missing(plan));
        WaylandSession session(plan);
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.open());
        session.select(0, {200, 200}, {400, 360});
        QVERIFY(session.tap("Return"));
        const QImage expected = session.expected(0, {200, 200, 200, 160});
        QCOMPARE(differentPixels(session.pasted(), expected), 0);
        QVERIFY(session.act("quit"));
        QVERIFY(session.tovek->waitForExit());
        QCOMPARE(differentPixels(session.pasted(), expected), 0);
    }

private:
    static void desktops()
    {
        QTest::addColumn<WaylandPlan>("plan");
        QTest::newRow("sway") << WaylandPlan{};
        QTest::newRow("KWin") << WaylandPlan{{{}}, false, WaylandPlan::Compositor::kwin};
    }
};

QTEST_GUILESS_MAIN(TestWaylandServices)
#include "tst_WaylandServices.moc"
