// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/Localization.h"
#include "KeyboardShortcuts/ShortcutDescription.h"
#include "KeyboardShortcuts/SpecialKey.h"
#include "fakes/FakeKeyboardLayout.h"

#include <QLocale>
#include <QTest>

using namespace KeyboardShortcuts;
using tovek::KeyFlag;

namespace {

constexpr qint64 command = 0x100;
constexpr qint64 shift = 0x200;
constexpr qint64 option = 0x800;
constexpr qint64 control = 0x1000;
constexpr qint64 function = 0x20000;

} // namespace

class TestShortcutDescription : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        QLocale::setDefault(QLocale(QLocale::English));
        m_layout.characters = {{0, QStringLiteral("a")},
                               {8, QStringLiteral("c")},
                               {10, QStringLiteral("ß")},
                               {44, QStringLiteral("/")}};
        m_layout.asked.clear();
    }

    void writesTheKeysOfMenusAsItsOwn_data()
    {
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QString>("text");
        QTest::newRow("sign") << "Ctrl+," << QStringLiteral("⌃,");
        QTest::newRow("letter") << "Ctrl+Q" << QStringLiteral("⌃Q");
        QTest::newRow("all modifiers") << "Meta+Ctrl+Alt+Shift+A" << QStringLiteral("⌃⌥⇧⌘A");
        QTest::newRow("print") << "Print" << QStringLiteral("F13");
        QTest::newRow("special") << "Alt+Return" << QStringLiteral("⌥↩");
        QTest::newRow("keypad") << "Num+5" << QStringLiteral("5⃣");
        QTest::newRow("none") << "" << QString();
    }
    void writesTheKeysOfMenusAsItsOwn()
    {
        QFETCH(QString, keys);
        QTEST(description(QKeySequence(keys)), "text");
    }

    void describes_data()
    {
        QTest::addColumn<Shortcut>("shortcut");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, Shortcut shortcut, const char16_t *text) {
            QTest::newRow(name) << shortcut << QString::fromUtf16(text);
        };
        row("no modifiers", {0, 0}, u"A");
        row("all four", {0, command | shift | option | control}, u"⌃⌥⇧⌘A");
        row("function last", {8, function | command}, u"⌘🌐\uFE0EC");
        row("each alone: control", {0, control}, u"⌃A");
        row("each alone: option", {0, option}, u"⌥A");
        row("each alone: shift", {0, shift}, u"⇧A");
        row("unknown bits", {0, command | 0x400}, u"⌘A");
        row("sign", {44, shift}, u"⇧/");
        row("no character", {9, command}, u"⌘\uFFFD");
        row("beyond 16 bits", {0x10000, command}, u"⌘\uFFFD");
        row("negative", {-1, 0}, u"\uFFFD");
        row("special key", {48, option}, u"⌥⇥");
        row("space", {49, control}, u"⌃Space");
        row("help", {114, 0}, u"?\u20DD");
        row("F12", {111, 0}, u"F12");
        row("F20", {90, shift}, u"⇧F20");
        row("keypad digit", {92, 0}, u"9\u20E3");
        row("keypad clear", {71, 0}, u"☒\u20E3");
        row("keypad enter", {76, 0}, u"↩\u20E3");
        row("keypad multiply", {67, 0}, u"*\u20E3");
    }
    void describes()
    {
        QFETCH(Shortcut, shortcut);
        QFETCH(QString, text);
        QCOMPARE(description(shortcut, m_layout), text);
    }

    void readsTheSameKeyAsTheLayoutTypesIt()
    {
        QCOMPARE(description({0, command}, m_layout), QString::fromUtf16(u"⌘A"));
        m_layout.change({{0, QStringLiteral("q")}});
        QCOMPARE(description({0, command}, m_layout), QString::fromUtf16(u"⌘Q"));
    }

    void neverAsksTheLayoutForASpecialKey()
    {
        for (const int keyCode : specialKeyCodes()) {
            m_layout.characters.insert(keyCode, QStringLiteral("x"));
            QVERIFY(!description({keyCode, 0}, m_layout).contains(QLatin1Char('X')));
            QVERIFY(keyEquivalent({keyCode, 0}, m_layout).has_value());
        }
        QCOMPARE(m_layout.asked, QList<int>());
    }

    void knowsFiftyThreeSpecialKeysInTheirOrder()
    {
        const std::vector<int> codes = specialKeyCodes();
        QCOMPARE(codes.size(), size_t(53));
        QCOMPARE(QSet<int>(codes.begin(), codes.end()).size(), 53);
        for (size_t index = 0; index < codes.size(); ++index)
            QCOMPARE(specialKey(codes[index]), std::optional(SpecialKey(index)));
        QCOMPARE(specialKey(122), std::optional(SpecialKey::f1));
        QCOMPARE(specialKey(90), std::optional(SpecialKey::f20));
        QCOMPARE(specialKey(82), std::optional(SpecialKey::keypad0));
        QCOMPARE(specialKey(92), std::optional(SpecialKey::keypad9));
        QCOMPARE(specialKey(69), std::optional(SpecialKey::keypadPlus));
        QVERIFY(!specialKey(0));
        QVERIFY(!specialKey(52));
    }

    void speaksOneLanguageWithTheRestOfTheProgram()
    {
        for (const QLocale::Language language : {QLocale::English, QLocale::German}) {
            QLocale::setDefault(QLocale(language));
            QCOMPARE(text(SpecialKey::space), QStringLiteral("Space"));
            QCOMPARE(localized(QStringLiteral("record_shortcut")),
                     QStringLiteral("Record Shortcut"));
        }
        QCOMPARE(localized(QStringLiteral("no_such_key")), QStringLiteral("no_such_key"));
    }

    void hasATextForEveryKeyOfTheRecorder()
    {
        for (const char *key :
             {"record_shortcut", "press_shortcut", "keyboard_shortcut_used_by_menu_item",
              "keyboard_shortcut_disallowed", "keyboard_shortcut_used_by_system",
              "keyboard_shortcuts_can_be_changed", "ok", "force_use_shortcut"}) {
            const QString name = QString::fromLatin1(key);
            QVERIFY2(localized(name) != name, key);
            QCOMPARE(localized(name).contains(QStringLiteral("%1")),
                     name == QStringLiteral("keyboard_shortcut_used_by_menu_item"));
        }
    }

    void givesMenusTheirKeys_data()
    {
        QTest::addColumn<Shortcut>("shortcut");
        QTest::addColumn<QString>("keyEquivalent");
        QTest::addColumn<QString>("sequence");
        const auto row = [](const char *name, Shortcut shortcut, const char *key,
                            const char *text) {
            QTest::newRow(name) << shortcut << QString::fromUtf8(key) << QString::fromUtf8(text);
        };
        row("letter", {8, control | shift}, "c", "Ctrl+Shift+C");
        row("super and alt", {8, command | option}, "c", "Meta+Alt+C");
        row("sign", {44, control}, "/", "Ctrl+/");
        row("function key", {96, shift}, "F5", "Shift+F5");
        row("print screen", {105, 0}, "Print", "Print");
        row("keypad digit", {83, option}, "Num+1", "Alt+Num+1");
        row("backspace", {51, control}, "Backspace", "Ctrl+Backspace");
        row("no character", {9, control}, nullptr, "");
        row("beyond 16 bits", {0x10000, control}, nullptr, "");
    }
    void givesMenusTheirKeys()
    {
        QFETCH(Shortcut, shortcut);
        QFETCH(QString, keyEquivalent);
        QFETCH(QString, sequence);
        const auto key = KeyboardShortcuts::keyEquivalent(shortcut, m_layout);
        QCOMPARE(key.has_value(), !keyEquivalent.isNull());
        QCOMPARE(key.value_or(QString()), keyEquivalent);
        const QKeySequence keys = keySequence(shortcut, m_layout);
        // Qt writes the modifiers in an order of its own.
        QCOMPARE(keys, QKeySequence::fromString(sequence, QKeySequence::PortableText));
    }

    void comparesInTheTermsOfOurWindows_data()
    {
        QTest::addColumn<Shortcut>("shortcut");
        QTest::addColumn<QString>("item");
        QTest::addColumn<bool>("isChosen");
        const auto row = [](const char *name, Shortcut shortcut, const char *item, bool isChosen) {
            QTest::newRow(name) << shortcut << QString::fromLatin1(item) << isChosen;
        };
        row("control is the command key", {8, control}, "Ctrl+C", true);
        row("so is super", {8, command}, "Ctrl+C", true);
        row("super of the item, too", {8, control}, "Meta+C", true);
        row("option alone is not", {8, option}, "Ctrl+C", false);
        row("option", {8, option}, "Alt+C", true);
        row("no modifiers", {8, 0}, "Ctrl+C", false);
        row("shift missing at the item", {8, control | shift}, "Ctrl+C", false);
        row("shift missing at the shortcut", {8, control}, "Ctrl+Shift+C", false);
        row("shift at both", {8, control | shift}, "Ctrl+Shift+C", true);
        row("other letter", {0, control}, "Ctrl+C", false);
        row("function key", {111, 0}, "F12", true);
        row("function key with shift", {111, shift}, "F12", false);
        row("keypad is not the row of digits", {83, control}, "Ctrl+1", false);
        row("item without a key", {8, control}, "", false);
        row("item with two strokes", {8, control}, "Ctrl+C, Ctrl+C", false);
        row("key without a character", {9, control}, "Ctrl+V", false);
    }
    void comparesInTheTermsOfOurWindows()
    {
        QFETCH(Shortcut, shortcut);
        QFETCH(QString, item);
        QFETCH(bool, isChosen);
        const auto itemKey = menuKey(QKeySequence::fromString(item, QKeySequence::PortableText));
        const auto shortcutKey = menuKey(shortcut, m_layout);
        QCOMPARE(itemKey && shortcutKey && isChosenBy(*itemKey, *shortcutKey), isChosen);
    }

    void readsACapitalOfAnItemAsShift_data()
    {
        QTest::addColumn<QString>("item");
        QTest::addColumn<bool>("itemHasShift");
        QTest::addColumn<bool>("shortcutHasShift");
        QTest::addColumn<bool>("isChosen");
        QTest::newRow("capital") << QStringLiteral("C") << false << true << true;
        QTest::newRow("capital with shift") << QStringLiteral("C") << true << true << true;
        QTest::newRow("capital, no shift pressed")
            << QStringLiteral("C") << false << false << false;
        QTest::newRow("small letter") << QStringLiteral("c") << false << true << false;
        QTest::newRow("small letter with shift") << QStringLiteral("c") << true << true << true;
    }
    void readsACapitalOfAnItemAsShift()
    {
        QFETCH(QString, item);
        QFETCH(bool, itemHasShift);
        QFETCH(bool, shortcutHasShift);
        QFETCH(bool, isChosen);
        MenuKey itemKey{item, KeyFlag::command};
        itemKey.flags.setFlag(KeyFlag::shift, itemHasShift);
        MenuKey shortcut{QStringLiteral("c"), KeyFlag::command};
        shortcut.flags.setFlag(KeyFlag::shift, shortcutHasShift);
        QCOMPARE(isChosenBy(itemKey, shortcut), isChosen);
    }

private:
    tovek::FakeKeyboardLayout m_layout;
};

QTEST_APPLESS_MAIN(TestShortcutDescription)
#include "tst_ShortcutDescription.moc"
