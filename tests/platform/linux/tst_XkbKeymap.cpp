// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/XkbKeymap.h"

#include <QTest>

#include <xkbcommon/xkbcommon.h>

using namespace tovek;

namespace {

constexpr quint32 keyOfA = 38;
constexpr quint32 keyOfQ = 24;
constexpr quint32 keyOfThree = 12;
constexpr quint32 keyOfGrave = 49;
constexpr quint32 keyOfPrint = 107;
constexpr quint32 keyOfSpace = 65;

} // namespace

class TestXkbKeymap : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void knowsNothingWithoutAMap()
    {
        const XkbKeymap keymap;
        QVERIFY(keymap.isEmpty());
        QVERIFY(!keymap.character(keyOfA));
    }

    void namesWhatKeysType()
    {
        XkbKeymap keymap;
        keymap.set(named(keymap, "us"), 0);
        QCOMPARE(keymap.character(keyOfA), QStringLiteral("a"));
        QCOMPARE(keymap.character(keyOfA, XkbKeymap::Level::shifted), QStringLiteral("A"));
        QCOMPARE(keymap.character(keyOfThree, XkbKeymap::Level::shifted), QStringLiteral("#"));
        QCOMPARE(keymap.character(keyOfSpace, XkbKeymap::Level::shifted), QStringLiteral(" "));
        QVERIFY(!keymap.character(keyOfPrint));
    }

    void namesNoDeadKey()
    {
        XkbKeymap keymap;
        keymap.set(named(keymap, "de"), 0);
        QVERIFY(!keymap.character(keyOfGrave)); // a dead circumflex
        QCOMPARE(keymap.character(keyOfThree, XkbKeymap::Level::shifted), QStringLiteral("§"));
    }

    void followsTheActiveLayout()
    {
        XkbKeymap keymap;
        keymap.set(named(keymap, "us,fr"), 1);
        QCOMPARE(keymap.character(keyOfQ), QStringLiteral("a"));
        QVERIFY(keymap.activate(0));
        QCOMPARE(keymap.character(keyOfQ), QStringLiteral("q"));
        QVERIFY(!keymap.activate(0));
    }

    void takesTheFirstLatinLayoutWhereTheActiveIsNone()
    {
        XkbKeymap keymap;
        keymap.set(named(keymap, "ru,fr"), 0);
        QCOMPARE(keymap.character(keyOfQ), QStringLiteral("a"));
        QVERIFY(!keymap.activate(1));
    }

    void takesTheAmericanLayoutWhereNoneIsLatin()
    {
        XkbKeymap keymap;
        keymap.set(named(keymap, "ru,gr"), 1);
        QCOMPARE(keymap.character(keyOfQ), QStringLiteral("q"));
    }

    void readsTheTextThatCompositorsPass()
    {
        XkbKeymap source;
        xkb_keymap *french = named(source, "fr");
        char *text = xkb_keymap_get_as_string(french, XKB_KEYMAP_FORMAT_TEXT_V1);
        XkbKeymap keymap;
        QVERIFY(keymap.setText(text, 0));
        QCOMPARE(keymap.character(keyOfQ), QStringLiteral("a"));
        free(text);
        xkb_keymap_unref(french);
    }

private:
    static xkb_keymap *named(const XkbKeymap &keymap, const char *layout)
    {
        const xkb_rule_names names{"evdev", "pc105", layout, "", ""};
        return xkb_keymap_new_from_names(keymap.context(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
    }
};

QTEST_APPLESS_MAIN(TestXkbKeymap)
#include "tst_XkbKeymap.moc"
