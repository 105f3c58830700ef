// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/Name.h"

#include <QTest>

using namespace KeyboardShortcuts;
using tovek::KeyFlag;
using tovek::KeyFlags;

class TestShortcut : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void convertsModifiers_data()
    {
        QTest::addColumn<quint32>("flags");
        QTest::addColumn<qint64>("carbon");
        QTest::addColumn<quint32>("back");
        QTest::newRow("none") << 0u << qint64(0) << 0u;
        QTest::newRow("control") << 0x40000u << qint64(0x1000) << 0x40000u;
        QTest::newRow("option") << 0x80000u << qint64(0x800) << 0x80000u;
        QTest::newRow("shift") << 0x20000u << qint64(0x200) << 0x20000u;
        QTest::newRow("command") << 0x100000u << qint64(0x100) << 0x100000u;
        QTest::newRow("function") << 0x800000u << qint64(0x20000) << 0x800000u;
        QTest::newRow("all five") << 0x9E0000u << qint64(0x21B00) << 0x9E0000u;
        QTest::newRow("caps lock is dropped") << 0x110000u << qint64(0x100) << 0x100000u;
        QTest::newRow("numeric pad is dropped") << 0x240000u << qint64(0x1000) << 0x40000u;
        QTest::newRow("help is dropped") << 0x400000u << qint64(0) << 0u;
        QTest::newRow("low bits are dropped") << 0x10010Au << qint64(0x100) << 0x100000u;
    }
    void convertsModifiers()
    {
        QFETCH(quint32, flags);
        QFETCH(qint64, carbon);
        QFETCH(quint32, back);
        QCOMPARE(carbonModifiers(KeyFlags::fromInt(flags)), carbon);
        QCOMPARE(keyFlags(carbon).toInt(), back);
    }

    void dropsUnknownBitsWhenNormalising()
    {
        QCOMPARE(normalizedModifiers(0x21B00), qint64(0x21B00));
        QCOMPARE(normalizedModifiers(0x1 | 0x400 | 0x10000 | 0x1100), qint64(0x1100));
        QCOMPARE(normalizedModifiers(-1), qint64(0x21B00));
    }

    void comesOfKeysOnly_data()
    {
        QTest::addColumn<InputEvent::Type>("type");
        QTest::addColumn<bool>("isShortcut");
        QTest::newRow("key down") << InputEvent::Type::keyDown << true;
        QTest::newRow("key up") << InputEvent::Type::keyUp << true;
        QTest::newRow("modifier alone") << InputEvent::Type::flagsChanged << false;
        QTest::newRow("left button") << InputEvent::Type::leftMouseUp << false;
        QTest::newRow("right button") << InputEvent::Type::rightMouseUp << false;
        QTest::newRow("anything else") << InputEvent::Type::other << false;
    }
    void comesOfKeysOnly()
    {
        QFETCH(InputEvent::Type, type);
        QFETCH(bool, isShortcut);
        const auto shortcut = Shortcut::fromEvent({type, {8, KeyFlag::command, {}}});
        QCOMPARE(shortcut.has_value(), isShortcut);
        if (shortcut)
            QCOMPARE(*shortcut, (Shortcut{8, 0x100}));
    }

    void doesNotComeOfAKeyWithoutACode()
    {
        using Type = InputEvent::Type;
        QVERIFY(!Shortcut::fromEvent({Type::keyDown, {tovek::KeyCode::none, {}, {}}}));
        QVERIFY(Shortcut::fromEvent({Type::keyDown, {0, {}, {}}}));
    }

    void neverRecordsLocksOrTheFunctionFlag()
    {
        const KeyFlags flags = KeyFlag::control | KeyFlag::shift;
        const auto plain = Shortcut::fromEvent({InputEvent::Type::keyDown, {0, flags, {}}});
        const auto noisy = Shortcut::fromEvent(
            {InputEvent::Type::keyDown,
             {0, flags | KeyFlag::capsLock | KeyFlag::numericPad | KeyFlag::function, {}}});
        QCOMPARE(noisy, plain);
        QCOMPARE(plain->carbonModifiers, qint64(0x1200));
        QCOMPARE(plain->flags(), flags);
    }

    void writesExactlyTwoMembers()
    {
        QCOMPARE((Shortcut{8, 768}.toJson()),
                 QStringLiteral("{\"carbonKeyCode\":8,\"carbonModifiers\":768}"));
        QCOMPARE((Shortcut{0, 0}.toJson()),
                 QStringLiteral("{\"carbonKeyCode\":0,\"carbonModifiers\":0}"));
    }

    void reads_data()
    {
        QTest::addColumn<QString>("json");
        QTest::addColumn<std::optional<Shortcut>>("shortcut");
        const auto row = [](const char *name, const char *json, std::optional<Shortcut> shortcut) {
            QTest::newRow(name) << QString::fromUtf8(json) << shortcut;
        };
        const Shortcut expected{8, 768};
        row("its own form", R"({"carbonKeyCode":8,"carbonModifiers":768})", expected);
        row("other order", R"({"carbonModifiers":768,"carbonKeyCode":8})", expected);
        row("blanks", "{ \"carbonKeyCode\" : 8,\n\"carbonModifiers\" : 768 }", expected);
        row("a stranger beside", R"({"x":[],"carbonKeyCode":8,"carbonModifiers":768})", expected);
        row("no key code", R"({"carbonModifiers":768})", std::nullopt);
        row("no modifiers", R"({"carbonKeyCode":8})", std::nullopt);
        row("other case", R"({"CarbonKeyCode":8,"carbonModifiers":768})", std::nullopt);
        row("string", R"({"carbonKeyCode":"8","carbonModifiers":768})", std::nullopt);
        row("boolean", R"({"carbonKeyCode":true,"carbonModifiers":768})", std::nullopt);
        row("null", R"({"carbonKeyCode":8,"carbonModifiers":null})", std::nullopt);
        row("fraction", R"({"carbonKeyCode":8.5,"carbonModifiers":768})", std::nullopt);
        row("beyond 64 bits", R"({"carbonKeyCode":1e30,"carbonModifiers":768})", std::nullopt);
        row("array", "[8,768]", std::nullopt);
        row("cut off", R"({"carbonKeyCode":8,"carbonModifiers":768)", std::nullopt);
        row("empty", "", std::nullopt);
    }
    void reads()
    {
        QFETCH(QString, json);
        QFETCH(std::optional<Shortcut>, shortcut);
        QCOMPARE(Shortcut::fromJson(json), shortcut);
    }

    void readsWhatItWrote()
    {
        for (const Shortcut shortcut : {Shortcut{0, 0}, {111, 0x1B00}, {1LL << 40, -7}})
            QCOMPARE(Shortcut::fromJson(shortcut.toJson()), std::optional(shortcut));
    }

    void isKeptInHashes()
    {
        QSet<Shortcut> set{{8, 768}, {8, 768}, {8, 512}, {9, 768}};
        QCOMPARE(set.size(), 3);
        QVERIFY(set.contains({8, 512}));
        QVERIFY(!set.contains({9, 512}));
    }

    void comparesNamesWithoutTheirDefaults()
    {
        const Name plain{QStringLiteral("a"), {}};
        QCOMPARE(plain, (Name{QStringLiteral("a"), Shortcut{1, 2}}));
        QVERIFY(!(plain == Name{QStringLiteral("A"), {}}));
        QCOMPARE(plain.key(), QStringLiteral("KeyboardShortcuts_a"));
    }
};

QTEST_APPLESS_MAIN(TestShortcut)
#include "tst_Shortcut.moc"
