// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/OverlayKeys.h"

#include <QTest>

using namespace tovek;
using Action = OverlayKeyAction;

class TestOverlayKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void actsOnKeys_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<KeyFlags>("flags");
        QTest::addColumn<QString>("characters");
        QTest::addColumn<bool>("takesTools");
        QTest::addColumn<Action>("action");
        const auto row = [](const char *name, int code, KeyFlags flags, const char *characters,
                            bool takesTools, Action action) {
            QTest::newRow(name) << code << flags << QString::fromLatin1(characters) << takesTools
                                << action;
        };
        const int none = KeyCode::none;
        const KeyFlags command = KeyFlag::command;
        row("Escape", KeyCode::escape, {}, "", true, Action::cancel);
        row("Escape before a selection", KeyCode::escape, {}, "", false, Action::cancel);
        row("Backspace", KeyCode::backspace, {}, "", true, Action::deleteAnnotation);
        row("Delete", KeyCode::forwardDelete, {}, "", false, Action::deleteAnnotation);
        row("Command s", none, command, "s", false, Action::save);
        row("Command c", none, command, "c", false, Action::copy);
        row("Command Option c", none, command | KeyFlag::option, "c", true, Action::copy);
        row("Command Shift S", none, command | KeyFlag::shift, "S", true, Action::none);
        row("Command Shift C", none, command | KeyFlag::shift, "C", true, Action::none);
        row("s alone", none, {}, "s", true, Action::none);
        row("c alone", none, {}, "c", true, Action::none);
        row("Space", KeyCode::space, {}, " ", true, Action::copy);
        row("Return", KeyCode::returnKey, {}, "", false, Action::copy);
        row("Enter of the keypad", KeyCode::keypadEnter, KeyFlag::numericPad, "", false,
            Action::copy);
        row("v", none, {}, "v", true, Action::pointerTool);
        row("V", none, KeyFlag::shift, "V", true, Action::pointerTool);
        row("r", none, {}, "r", true, Action::rectangleTool);
        row("r before a selection", none, {}, "r", false, Action::none);
        row("l", none, {}, "l", true, Action::lineTool);
        row("a", none, {}, "a", true, Action::arrowTool);
        row("t", none, {}, "t", true, Action::textTool);
        row("t in a text box", none, {}, "t", false, Action::none);
        row("Command z", none, command, "z", true, Action::undo);
        row("z alone", none, {}, "z", true, Action::none);
        row("Command Shift Z", none, command | KeyFlag::shift, "Z", true, Action::redo);
        row("Shift Z alone", none, KeyFlag::shift, "Z", true, Action::none);
        row("Command y", none, command, "y", true, Action::redo);
        row("left arrow", KeyCode::leftArrow, {}, "", true, Action::nudge);
        row("up arrow with Shift", KeyCode::upArrow, KeyFlag::shift, "", true, Action::nudge);
        row("arrow before a selection", KeyCode::downArrow, {}, "", false, Action::none);
        row("x", none, {}, "x", true, Action::none);
        row("no character", none, {}, "", true, Action::none);
    }
    void actsOnKeys()
    {
        QFETCH(int, code);
        QFETCH(KeyFlags, flags);
        QFETCH(QString, characters);
        QFETCH(bool, takesTools);
        QFETCH(Action, action);
        QCOMPARE(overlayActionFor({code, flags, characters}, takesTools), action);
    }
};

QTEST_APPLESS_MAIN(TestOverlayKeys)
#include "tst_OverlayKeys.moc"
