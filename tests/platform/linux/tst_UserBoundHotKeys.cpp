// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/UserBoundHotKeys.h"

#include <QTest>

using namespace tovek;

class TestUserBoundHotKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void refusesEveryGrab()
    {
        UserBoundHotKeys keys{QStringLiteral("labwc")};
        QCOMPARE(keys.grab(1, {105, 0}), 1);
        QVERIFY(!keys.isTaken({105, 0}));
        QVERIFY(!keys.reportsRelease());
    }

    void givesTheLineOfEachDesktop_data()
    {
        QTest::addColumn<QString>("desktop");
        QTest::addColumn<quint32>("modifiers");
        QTest::addColumn<QString>("line");
        const auto row = [](const char *name, quint32 modifiers, const char *line) {
            QTest::addRow("%s %x", name, modifiers)
                << QString::fromLatin1(name) << modifiers << QString::fromLatin1(line);
        };
        row("labwc:wlroots", 0,
            "<keybind key=\"Print\" onRelease=\"yes\"><action name=\"Execute\" "
            "command=\"tovek --capture\"/></keybind>");
        row("labwc:wlroots", 0x200,
            "<keybind key=\"S-Print\" onRelease=\"yes\"><action name=\"Execute\" "
            "command=\"tovek --capture\"/></keybind>");
        row("river", 0, "riverctl map -release normal None Print spawn 'tovek --capture'");
        row("river", 0x1200,
            "riverctl map -release normal Control+Shift Print spawn 'tovek --capture'");
        row("niri", 0x1000, "Ctrl+Print { spawn \"tovek\" \"--capture\"; }");
        row("Hyprland", 0, "bindr = , Print, exec, tovek --capture");
        row("Hyprland", 0x200, "bindr = SHIFT, Print, exec, tovek --capture");
        row("Wayfire:wlroots", 0x200,
            "release_binding_tovek200 = <shift> KEY_SYSRQ\ncommand_tovek200 = tovek --capture");
        row("sway", 0x200, "bindsym --release Shift+Print exec tovek --capture");
        row("COSMIC", 0, "tovek --capture");
        row("Something", 0, "tovek --capture");
        row("", 0, "tovek --capture");
    }
    void givesTheLineOfEachDesktop()
    {
        QFETCH(QString, desktop);
        QFETCH(quint32, modifiers);
        const auto binding =
            UserBoundHotKeys(desktop).commandBinding({105, modifiers}, "tovek --capture");
        QVERIFY(binding);
        QTEST(binding->line, "line");
        QVERIFY(!binding->place.isEmpty());
    }
};

QTEST_APPLESS_MAIN(TestUserBoundHotKeys)
#include "tst_UserBoundHotKeys.moc"
