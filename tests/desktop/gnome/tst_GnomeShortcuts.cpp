// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// A shortcut that GNOME gives over its portal, since 48.

#include "support/GnomeDesktop.h"
#include "support/Skip.h"
#include "support/Wait.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

constexpr auto patience = 20s;
constexpr int escape = 1, control = 29, shift = 42, f9 = 67;
const auto schema = QStringLiteral("org.gnome.settings-daemon.global-shortcuts");
const auto store = QStringLiteral(".application:/org/gnome/settings-daemon/global-shortcuts/");
const auto appId = QStringLiteral("org.tovek.Tovek");

} // namespace

class TestGnomeShortcuts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        if (QTest::currentTestFailed() && m_tovek)
            qWarning() << m_tovek->lines() << m_tovek->errorLines() << m_desktop.focusedTitle();
    }

    void opensOnceInWhateverOrderTheKeysAreLetGo()
    {
        SKIP_BECAUSE(GnomeDesktop::missing());
        QVERIFY2(m_desktop.start(), qPrintable(m_desktop.error()));
        if (settingsTool({"get", schema, "applications"}).isEmpty())
            QSKIP("this GNOME gives no shortcuts over its portal");
        for (const QString &name : {QString(), appId})
            QVERIFY(m_desktop.permitScreenshots(name));
        const QString program = qEnvironmentVariable("TOVEK_PROGRAM");
        QVERIFY(m_desktop.output(QStringLiteral(TOVEK_INTRODUCE), {program}).contains("serves"));
        agreeToTheShortcut();
        QVERIFY(writeSettings());
        m_tovek = m_desktop.run(program, {"--background"});
        QVERIFY(m_tovek->waitForLine(QStringLiteral("Wayland: capturing over the desktop's portal"),
                                     patience));
        QVERIFY(waitUntil([this] { return m_desktop.act("no-such-action"); }, patience));

        // Nothing outside tells from when on the shell has the keys.
        const QList<int> chord{control, shift, f9}, backwards{f9, shift, control};
        QVERIFY(waitUntil(
            [&] {
                press(chord, true);
                press(backwards, false);
                return waitUntil([this] { return shownOverlays() == 2; }, 3s);
            },
            patience));
        leave();
        // The shell tells of no release then.
        press(chord, true);
        press(chord, false);
        QVERIFY(waitUntil([this] { return shownOverlays() == 2; }, patience));
        leave();
        // And of a press many times.
        press(chord, true);
        QVERIFY(waitUntil([this] { return shownOverlays() == 2; }, patience));
        QTest::qWait(1000);
        press(backwards, false);
        leave();
        QTest::qWait(1500);
        QCOMPARE(shownOverlays(), 0);
    }

private:
    bool writeSettings() const
    {
        const QString folder = m_desktop.configFolder() + QStringLiteral("/tovek");
        const QJsonObject settings{
            {QStringLiteral("toldOfNoStatusItem"), true},
            {QStringLiteral("KeyboardShortcuts_captureScreenshot"),
             QStringLiteral("{\"carbonKeyCode\":101,\"carbonModifiers\":4608}")}};
        return QDir().mkpath(folder)
            && m_desktop.writeFile(folder + QStringLiteral("/defaults.json"),
                                   QJsonDocument(settings).toJson());
    }
    /// What a person's answer to the desktop's question leaves behind.
    void agreeToTheShortcut()
    {
        settingsTool({"set", schema, "applications", QStringLiteral("['%1']").arg(appId)});
        settingsTool({"set", schema + store + appId + QLatin1Char('/'), "shortcuts",
                      "[('start-capture:CTRL+SHIFT+F9', {'description': <'Start Capture'>, "
                      "'shortcuts': <['<Control><Shift>F9']>})]"});
    }
    QByteArray settingsTool(const QStringList &arguments)
    {
        return m_desktop.output(QStringLiteral("gsettings"), arguments);
    }
    void press(const QList<int> &keys, bool isDown) const
    {
        for (const int key : keys)
            m_desktop.key(key, isDown);
    }
    void leave()
    {
        m_desktop.tap(escape);
        QVERIFY(waitUntil([this] { return shownOverlays() == 0; }, patience));
    }
    qsizetype shownOverlays() const { return m_desktop.unmanagedTitles().size(); }

    GnomeDesktop m_desktop;
    Program *m_tovek = nullptr;
};

QTEST_GUILESS_MAIN(TestGnomeShortcuts)
#include "tst_GnomeShortcuts.moc"
