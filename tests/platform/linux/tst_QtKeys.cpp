// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeKeyboardLayout.h"
#include "platform/linux/QtKeys.h"

#include <QTest>

using namespace tovek;

namespace {

constexpr quint32 control = 0x1000;
constexpr quint32 option = 0x800;
constexpr quint32 shift = 0x200;
constexpr quint32 command = 0x100;

constexpr int qtControl = Qt::ControlModifier;
constexpr int qtAlt = Qt::AltModifier;
constexpr int qtShift = Qt::ShiftModifier;
constexpr int qtMeta = Qt::MetaModifier;
constexpr int qtKeypad = Qt::KeypadModifier;

} // namespace

class TestQtKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_layout.characters = {{8, "c"}, {20, "3"}, {41, QStringLiteral("ö")}, {10, "<"}};
        m_layout.shifted = {{20, "#"}, {10, ">"}};
    }

    void namesAKeyAsKdeDoes_data()
    {
        QTest::addColumn<quint32>("keyCode");
        QTest::addColumn<quint32>("modifiers");
        QTest::addColumn<QList<int>>("keys");
        const auto row = [](const char *name, quint32 code, quint32 modifiers, QList<int> keys) {
            QTest::newRow(name) << code << modifiers << keys;
        };
        row("letter", 8, control, {qtControl | Qt::Key_C});
        row("letter with Shift", 8, control | shift, {qtControl | qtShift | Qt::Key_C});
        row("letter with dots and Shift", 41, shift | option,
            {qtShift | qtAlt | Qt::Key_Odiaeresis});
        row("digit", 20, control, {qtControl | Qt::Key_3});
        row("Shift chooses another sign", 20, control | shift, {qtControl | Qt::Key_NumberSign});
        row("sign beside the letters", 10, command | shift, {qtMeta | Qt::Key_Greater});
        row("Print", 105, 0, {Qt::Key_Print});
        row("Print with Shift", 105, shift, {qtShift | Qt::Key_Print});
        row("Print with Alt", 105, option,
            {qtAlt | Qt::Key_Print, qtAlt | Qt::Key_SysReq, Qt::Key_SysReq});
        row("function key", 101, control | shift, {qtControl | qtShift | Qt::Key_F9});
        row("keypad", 84, control, {qtControl | qtKeypad | Qt::Key_2, qtControl | Qt::Key_2});
        row("key that types nothing", 52, control, {});
        row("dead key", 50, control, {});
    }
    void namesAKeyAsKdeDoes()
    {
        QFETCH(quint32, keyCode);
        QFETCH(quint32, modifiers);
        QTEST(qtKeysOf({keyCode, modifiers}, m_layout), "keys");
    }

private:
    FakeKeyboardLayout m_layout;
};

QTEST_APPLESS_MAIN(TestQtKeys)
#include "tst_QtKeys.moc"
