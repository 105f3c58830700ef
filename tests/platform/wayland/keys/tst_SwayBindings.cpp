// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeKeyboardLayout.h"
#include "platform/wayland/keys/SwayBindings.h"

#include <QTest>

using namespace tovek;

class TestSwayBindings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_layout.characters = {{1, "s"}, {20, "3"}};
    }

    void findsWhatAConfigurationBinds_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isBound");
        const auto row = [](const char *name, const char *text, bool isBound) {
            QTest::newRow(name) << QString::fromLatin1(text) << isBound;
        };
        row("plain", "bindsym Mod4+Shift+s exec grim", true);
        row("other order and case", "bindsym shift+mod4+S exec grim", true);
        row("variable", "set $mod Mod4\nbindsym $mod+Shift+s exec grim", true);
        row("variable of a variable", "set $m Mod4\nset $ms $m+Shift\nbindsym $ms+s exec x", true);
        row("name that begins another", "set $m Mod1\nset $mod Mod4\nbindsym $mod+Shift+s x", true);
        row("options", "bindsym --locked --no-warn Mod4+Shift+s exec grim", true);
        row("by code", "bindcode Mod4+Shift+39 exec grim", true);
        row("at the release", "bindsym --release Mod4+Shift+s exec grim", true);
        row("in a block", "bindsym {\n    Mod4+Shift+s exec grim\n}", true);
        row("after a block", "input * {\n  xkb_layout de\n}\nbindsym Mod4+Shift+s exec x", true);
        row("over two lines", "bindsym \\\n  Mod4+Shift+s exec grim", true);
        row("comment", "# bindsym Mod4+Shift+s exec grim", false);
        row("of a mode", "mode \"resize\" {\n  bindsym Mod4+Shift+s exec x\n}", false);
        row("modifier more", "bindsym Mod4+Ctrl+Shift+s exec grim", false);
        row("modifier less", "bindsym Mod4+s exec grim", false);
        row("unknown modifier", "bindsym Mod5+Mod4+Shift+s exec grim", false);
        row("other key", "bindsym Mod4+Shift+3 exec grim", false);
        row("other code", "bindcode Mod4+Shift+40 exec grim", false);
        row("nothing bound", "bindsym\nset $x\nset", false);
    }
    void findsWhatAConfigurationBinds()
    {
        QFETCH(QString, text);
        QHash<QString, QString> variables;
        const SwayConfiguration found = parseSwayConfiguration(text, variables);
        const bool isBound = std::any_of(found.bindings.begin(), found.bindings.end(),
                                         [&](const SwayBinding &binding) {
                                             return isBoundTo(binding, {1, 0x300}, m_layout);
                                         });
        QTEST(isBound, "isBound");
    }

    void knowsNamedKeys()
    {
        QVERIFY(isBoundTo({0, QStringLiteral("Print"), 0}, {105, 0}, m_layout));
        QVERIFY(!isBoundTo({0, QStringLiteral("Print"), 0}, {101, 0}, m_layout));
    }

    void tellsWhichFilesBelongToIt()
    {
        QHash<QString, QString> variables;
        const auto found = parseSwayConfiguration(
            QStringLiteral("set $d /etc/sway\ninclude $d/config.d/*\n"), variables);
        QCOMPARE(found.includes, QStringList("/etc/sway/config.d/*"));
        QCOMPARE(variables.value(QStringLiteral("$d")), QStringLiteral("/etc/sway"));
    }

private:
    FakeKeyboardLayout m_layout;
};

QTEST_APPLESS_MAIN(TestSwayBindings)
#include "tst_SwayBindings.moc"
