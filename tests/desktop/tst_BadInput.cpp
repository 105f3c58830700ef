// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The program on desktops that lack something, and with settings that make no sense.

#include "desktop/Session.h"
#include "support/Skip.h"
#include "support/XConnection.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

// One capture from the keys to the clipboard, as on a sound desktop.
bool capturesStill(Session &session)
{
    if (!session.open())
        return false;
    session.select({150, 150}, {301, 277});
    return session.tap("Return")
        && differentPixels(QImage::fromData(session.pasted()),
                           session.expected({150, 150}, {301, 277}))
        == 0;
}

} // namespace

class TestBadInput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        DesktopPlan plan;
        plan.monitors = {QRect(0, 0, 10, 10)};
        SKIP_BECAUSE(TestDesktop::missing(plan));
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    /// A scale of a hundred: one window would be larger than what the X server can hold.
    void livesWithAnImpossibleDensity()
    {
        Session session;
        QVERIFY2(session.startDesktop(), qPrintable(session.error));
        const QByteArray resources("Xft.dpi:\t9600\n");
        const XConnection connection(session.desktop.displayName());
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, connection.root(),
                            XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 8,
                            uint32_t(resources.size()), resources.constData());
        connection.sync();
        QVERIFY2(session.tovek->start(), qPrintable(session.tovek->error()));
        QVERIFY(capturesStill(session));
        QVERIFY(session.tovek->program().lines().contains(QStringLiteral(
            "9600 dots per inch are ignored: no window can be drawn at this scale")));
    }

    void livesWithSettingsOfWrongTypes()
    {
        Session session;
        QVERIFY2(session.start({{QStringLiteral("saveFolderPath"), 7},
                                {QStringLiteral("highlightText"), QStringLiteral("yes")},
                                {QStringLiteral("showInMenuBar"), QJsonArray{1, 2}},
                                {QStringLiteral("KeyboardShortcuts_captureText"), 5.5}}),
                 qPrintable(session.error));
        QVERIFY(session.open());
        session.select({150, 150}, {301, 277});
        QVERIFY(session.tap("Control_L+s"));
        QCOMPARE(QImage::fromData(session.saved()).size(), QSize(151, 127));
        QVERIFY(session.tovek->program().isRunning());
    }

    void livesWithAShortcutThatIsNoJson_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::newRow("words") << QStringLiteral("Super+Shift+T");
        QTest::newRow("empty") << QString();
        QTest::newRow("half an object") << QStringLiteral("{\"carbonKeyCode\":8");
        QTest::newRow("a list") << QStringLiteral("[8,768]");
        QTest::newRow("a word for a code")
            << QStringLiteral("{\"carbonKeyCode\":\"c\",\"carbonModifiers\":768}");
    }
    void livesWithAShortcutThatIsNoJson()
    {
        QFETCH(QString, stored);
        Session session;
        QVERIFY2(session.start({{QStringLiteral("KeyboardShortcuts_captureText"), stored}}),
                 qPrintable(session.error));
        QVERIFY(capturesStill(session));
    }

    void setsAStoreAsideThatDoesNotParse()
    {
        const QByteArray torn = "{\"saveFolderPath\":\"/tmp";
        Session session;
        QVERIFY2(session.startDesktop(), qPrintable(session.error));
        QVERIFY(session.tovek->writeSettings(torn));
        QVERIFY(session.tovek->startAsItIs());
        const QDir folder(session.desktop.configFolder() + QStringLiteral("/tovek"));
        const auto isKept = [&] {
            for (const QString &name : folder.entryList(QDir::Files)) {
                QFile file(folder.filePath(name));
                if (name != QStringLiteral("defaults.json") && file.open(QIODevice::ReadOnly)
                    && file.readAll() == torn)
                    return true;
            }
            return false;
        };
        QVERIFY(waitUntil(isKept));
        QVERIFY(waitUntil([&] { return !session.tovek->program().lines().isEmpty(); }));
        QVERIFY(session.tovek->program().isRunning());
    }

    void saysWhenTheFolderTakesNoFile_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::newRow("missing") << QStringLiteral("%1/no/such/folder");
        QTest::newRow("a file") << QStringLiteral("%1/file");
        // Even for root.
        QTest::newRow("read-only") << QStringLiteral("/proc/self");
    }
    void saysWhenTheFolderTakesNoFile()
    {
        QFETCH(QString, folder);
        Session session;
        QVERIFY2(session.startDesktop(), qPrintable(session.error));
        const QString home = session.desktop.home();
        QFile file(home + QStringLiteral("/file"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        QVERIFY(session.tovek->start(
            1,
            {{QStringLiteral("saveFolderPath"),
              folder.startsWith(QLatin1Char('%')) ? folder.arg(home) : folder}}));
        QVERIFY(session.open());
        session.select({150, 150}, {301, 277});
        QVERIFY(session.tap("Control_L+s"));
        QVERIFY(session.tovek->program().waitForLine(QStringLiteral("Failed to save image: ")));
        QVERIFY(session.savedNames().isEmpty());
        QCOMPARE(file.size(), 0);
        QVERIFY(capturesStill(session));
    }

    void worksWithoutAWindowManager()
    {
        DesktopPlan plan;
        plan.windowManager.clear();
        Session session(plan);
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(capturesStill(session));
    }

    void worksWithoutABus()
    {
        DesktopPlan plan;
        plan.hasBus = false;
        Session session(plan);
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(capturesStill(session));
    }

    void goesOnWhenAScreenIsUnplugged()
    {
        DesktopPlan plan;
        plan.size = {1600, 600};
        plan.monitors = {{0, 0, 800, 600}, {800, 0, 800, 600}};
        Session session(plan);
        QVERIFY2(session.start(), qPrintable(session.error));
        session.tovek->hand().move({300, 300});
        QVERIFY(session.open());
        QVERIFY(session.desktop.removeMonitor(TestDesktop::monitorName(1)));
        QVERIFY(waitUntil([&] { return !session.tovek->covers({plan.monitors[1]}); }));
        QVERIFY(session.tovek->covers({plan.monitors[0]}));
        session.select({150, 150}, {301, 277});
        QVERIFY(session.tap("Return"));
        QCOMPARE(differentPixels(QImage::fromData(session.pasted()),
                                 session.expected({150, 150}, {301, 277})),
                 0);
    }

    void endsWithOneLineWhenTheServerGoesAway()
    {
        Session session;
        QVERIFY2(session.start(), qPrintable(session.error));
        Program &program = session.tovek->program();
        const qsizetype lines = program.lines().size();
        const qsizetype errors = program.errorLines().size();
        session.desktop.server().kill();
        const std::optional<int> status = program.waitForExit();
        const QStringList since = program.lines().mid(lines) + program.errorLines().mid(errors);
        const QString told = since.join(QLatin1Char('\n'));
        QVERIFY2(status == 1, qPrintable(QString::number(status.value_or(-1)) + told));
        QVERIFY2(since.size() == 1, qPrintable(told));
    }
};

QTEST_GUILESS_MAIN(TestBadInput)
#include "tst_BadInput.moc"
