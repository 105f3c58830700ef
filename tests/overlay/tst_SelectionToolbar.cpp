// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/SystemColors.h"
#include "overlay/ColorPickerPopover.h"
#include "overlay/SelectionToolbar.h"
#include "overlay/ToolbarButton.h"
#include "overlay/ToolbarTooltip.h"

#include <QAccessible>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

/// An overlay view that counts what reaches it.
class View : public QWidget
{
public:
    View() { resize(600, 400); }
    int presses = 0;
    QList<int> keys;

protected:
    void mousePressEvent(QMouseEvent *) override { ++presses; }
    void keyPressEvent(QKeyEvent *event) override { keys << event->key(); }
};

QImage white(QRect pixels)
{
    QImage image(pixels.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

struct Desk
{
    Desk()
    {
        toolbar->move(100, 100);
        view.show();
        view.activateWindow();
        [[maybe_unused]] const bool isExposed = QTest::qWaitForWindowActive(&view);
    }
    ColorPickerPopover &popover() { return *view.findChild<ColorPickerPopover *>(); }
    ToolbarTooltip &tooltip() { return *view.findChild<ToolbarTooltip *>(); }

    View view;
    SelectionToolbar *toolbar = new SelectionToolbar(white, &view);
};

constexpr int colorButton = 5;

} // namespace

class TestSelectionToolbar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void callsBackFromEveryButton_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("expected");
        const char *names[] = {"cursor", "rectangle", "line", "arrow", "text", "", "copy", "close"};
        for (int i = 0; i < 8; ++i)
            QTest::newRow(qPrintable(QStringLiteral("button %1").arg(i)))
                << i << QString::fromLatin1(names[i]);
    }
    void callsBackFromEveryButton()
    {
        QFETCH(int, index);
        QFETCH(QString, expected);
        Desk desk;
        QString called;
        const auto telling = [&called](const char *name) {
            return [&called, name] { called += QString::fromLatin1(name); };
        };
        desk.toolbar->onCursor = telling("cursor");
        desk.toolbar->onRectangle = telling("rectangle");
        desk.toolbar->onLine = telling("line");
        desk.toolbar->onArrow = telling("arrow");
        desk.toolbar->onText = telling("text");
        desk.toolbar->onCopy = telling("copy");
        desk.toolbar->onClose = telling("close");
        ToolbarButton *button = desk.toolbar->button(index);
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(called, expected);
        QVERIFY(!button->accessibleName().isEmpty());
        desk.toolbar->closeColorPicker();
        for (Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
            called.clear();
            button->setFocus(Qt::TabFocusReason);
            QTest::keyClick(button, key);
            QCOMPARE(called, expected);
            desk.toolbar->closeColorPicker();
        }
        QVERIFY(desk.view.keys.isEmpty());
    }

    void isReadOutByAScreenReader()
    {
        Desk desk;
        QTest::mouseClick(desk.toolbar->button(colorButton), Qt::LeftButton);
        QList<QWidget *> buttons{desk.toolbar, &desk.popover()};
        for (int i = 0; i < 8; ++i)
            buttons << desk.toolbar->button(i);
        for (ToolbarButton *swatch : desk.popover().swatches())
            buttons << swatch;
        QStringList names;
        for (QWidget *widget : std::as_const(buttons)) {
            const QAccessibleInterface *seen = QAccessible::queryAccessibleInterface(widget);
            QVERIFY(seen);
            const QString name = seen->text(QAccessible::Name);
            QVERIFY2(!name.isEmpty() && !names.contains(name), qPrintable(name));
            names << name;
            if (!qobject_cast<ToolbarButton *>(widget))
                continue;
            QVERIFY2(seen->role() == QAccessible::Button
                         || seen->role() == QAccessible::RadioButton,
                     qPrintable(name));
            QVERIFY2(seen->state().focusable, qPrintable(name));
        }
        QCOMPARE(names.mid(2, 3), (QStringList{"Pointer", "Rectangle", "Line"}));
        // Which tool is the active one is told as well.
        const auto isChecked = [&](int i) {
            return bool(
                QAccessible::queryAccessibleInterface(desk.toolbar->button(i))->state().checked);
        };
        QVERIFY(isChecked(0) && !isChecked(1));
        desk.toolbar->setActiveTool(AnnotationTool::rectangle);
        QVERIFY(!isChecked(0) && isChecked(1));
    }

    void doesNothingWithoutCallbacks()
    {
        Desk desk;
        for (int i = 0; i < 8; ++i)
            QTest::mouseClick(desk.toolbar->button(i), Qt::LeftButton);
        QVERIFY(!desk.toolbar->isColorPickerOpen());
    }

    void showsExactlyOneActiveTool()
    {
        Desk desk;
        const auto active = [&] {
            QList<int> buttons;
            for (int i = 0; i < 8; ++i) {
                if (desk.toolbar->button(i)->isActive())
                    buttons << i;
            }
            return buttons;
        };
        QCOMPARE(active(), QList<int>{0});
        desk.toolbar->setActiveTool(AnnotationTool::arrow);
        QCOMPARE(active(), QList<int>{3});
        QTest::mouseClick(desk.toolbar->button(1), Qt::LeftButton);
        QCOMPARE(active(), QList<int>{3});
    }

    void keepsPressesFromTheView()
    {
        Desk desk;
        QTest::mouseClick(desk.toolbar, Qt::LeftButton, {}, QPoint(3, 3));
        QTest::mouseClick(desk.toolbar->button(1), Qt::LeftButton);
        QTest::mouseClick(desk.toolbar->button(colorButton), Qt::LeftButton);
        QTest::mouseClick(&desk.popover(), Qt::LeftButton, {}, QPoint(3, 3));
        QCOMPARE(desk.view.presses, 0);
        QTest::mouseClick(&desk.view, Qt::LeftButton, {}, QPoint(3, 3));
        QCOMPARE(desk.view.presses, 1);
    }

    void leavesOtherKeysToTheView()
    {
        Desk desk;
        desk.toolbar->button(2)->setFocus(Qt::TabFocusReason);
        for (Qt::Key key : {Qt::Key_Escape, Qt::Key_R, Qt::Key_Left, Qt::Key_Backspace})
            QTest::keyClick(desk.toolbar->button(2), key);
        QTest::keyClick(desk.toolbar->button(2), Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(desk.view.keys,
                 (QList<int>{Qt::Key_Escape, Qt::Key_R, Qt::Key_Left, Qt::Key_Backspace,
                             Qt::Key_Control, Qt::Key_C}));
    }

    void passesTheChosenColourOn_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QColor>("expected");
        const QColor colors[] = {SystemColors::red,   SystemColors::orange, SystemColors::yellow,
                                 SystemColors::green, SystemColors::blue,   SystemColors::purple,
                                 SystemColors::white, SystemColors::black};
        for (int i = 0; i < 8; ++i)
            QTest::newRow(qPrintable(colors[i].name())) << i << colors[i];
    }
    void passesTheChosenColourOn()
    {
        QFETCH(int, index);
        QFETCH(QColor, expected);
        Desk desk;
        std::optional<QColor> chosen;
        std::optional<ColorTarget> target;
        desk.toolbar->onColorSelected = [&](const QColor &color, ColorTarget to) {
            chosen = color;
            target = to;
        };
        QTest::mouseClick(desk.toolbar->button(colorButton), Qt::LeftButton);
        QVERIFY(desk.toolbar->isColorPickerOpen());
        QTest::mouseClick(desk.popover().swatches().at(size_t(index)), Qt::LeftButton);
        QCOMPARE(*chosen, expected);
        QVERIFY(target == ColorTarget::newAnnotations);
        QVERIFY(!desk.toolbar->isColorPickerOpen());
        QCOMPARE(desk.toolbar->button(colorButton)->swatch(), expected);
    }

    void meansTheSelectedAnnotationWithShift()
    {
        Desk desk;
        std::optional<ColorTarget> target;
        desk.toolbar->onColorSelected = [&](const QColor &, ColorTarget to) { target = to; };
        QTest::mouseClick(desk.toolbar->button(colorButton), Qt::LeftButton);
        QTest::mouseClick(desk.popover().swatches().at(3), Qt::LeftButton, Qt::ShiftModifier);
        QVERIFY(target == ColorTarget::selectedAnnotation);
        QCOMPARE(desk.toolbar->button(colorButton)->swatch(), SystemColors::red);
    }

    void opensTheColoursAsAChildInsideTheView()
    {
        Desk desk;
        for (const QPoint at : {QPoint(0, 0), QPoint(330, 0), QPoint(0, 346), QPoint(330, 346)}) {
            desk.toolbar->move(at);
            QTest::mouseClick(desk.toolbar->button(colorButton), Qt::LeftButton);
            QVERIFY(!desk.popover().isWindow());
            QVERIFY(desk.view.rect().contains(desk.popover().geometry()));
            QVERIFY(!desk.popover().geometry().intersects(desk.toolbar->geometry()));
            desk.toolbar->closeColorPicker();
        }
    }

    void closesTheColoursOnAPressBesideThem()
    {
        Desk desk;
        QTest::mouseClick(desk.toolbar->button(colorButton), Qt::LeftButton);
        QTest::mouseClick(&desk.view, Qt::LeftButton, {}, QPoint(3, 3));
        QVERIFY(!desk.toolbar->isColorPickerOpen());
        QTest::mouseClick(desk.toolbar->button(colorButton), Qt::LeftButton);
        QTest::mouseClick(desk.toolbar->button(colorButton), Qt::LeftButton);
        QVERIFY(!desk.toolbar->isColorPickerOpen());
    }

    void worksTheColoursFromTheKeyboard()
    {
        Desk desk;
        ToolbarButton *button = desk.toolbar->button(colorButton);
        button->setFocus(Qt::TabFocusReason);
        QTest::keyClick(button, Qt::Key_Space);
        QVERIFY(desk.popover().swatches().front()->hasFocus());
        QTest::keyClick(desk.popover().swatches().front(), Qt::Key_Escape);
        QVERIFY(!desk.toolbar->isColorPickerOpen());
        QVERIFY(button->hasFocus());
        QVERIFY(desk.view.keys.isEmpty());
    }

    void showsATooltipWithTheKeyOfTheTool()
    {
        Desk desk;
        // Written as menus and recorders write keys.
        const char *keys[] = {"(V)", "(R)", "(L)", "(A)", "(T)", "", "(\u2303C)", "(\u238b)"};
        for (int i = 0; i < 8; ++i)
            QVERIFY(desk.toolbar->button(i)->tooltipText().endsWith(QString::fromUtf8(keys[i])));
        desk.toolbar->button(3)->setFocus(Qt::TabFocusReason);
        QVERIFY(desk.tooltip().isVisible());
        QCOMPARE(desk.tooltip().text(), desk.toolbar->button(3)->tooltipText());
        const QRect button(desk.toolbar->button(3)->mapTo(&desk.view, QPoint(0, 0)), QSize(28, 28));
        QCOMPARE(desk.tooltip().geometry().top(), button.bottom() + 1 + 22);
        QVERIFY(std::abs(desk.tooltip().geometry().center().x() - button.center().x()) <= 1);
        QVERIFY(desk.toolbar->coveredRegion().contains(desk.tooltip().geometry().center()));
        desk.view.setFocus();
        QTRY_VERIFY(!desk.tooltip().isVisible());
        QCOMPARE(desk.toolbar->coveredRegion(), QRegion(desk.toolbar->geometry()));
    }

    void tellsWhenItCoversMoreOrLess()
    {
        Desk desk;
        int told = 0;
        desk.toolbar->onCoverChanged = [&] { ++told; };
        QTest::mouseClick(desk.toolbar->button(colorButton), Qt::LeftButton);
        QVERIFY(told > 0);
        QVERIFY(desk.toolbar->coveredRegion().contains(desk.popover().geometry()));
        told = 0;
        desk.toolbar->closeColorPicker();
        QVERIFY(told > 0);
        QVERIFY(!desk.toolbar->coveredRegion().contains(desk.popover().geometry().center()));
    }

    void takesItsChildrenWithIt()
    {
        Desk desk;
        QTest::mouseClick(desk.toolbar->button(colorButton), Qt::LeftButton);
        delete desk.toolbar;
        QVERIFY(desk.view.findChildren<QWidget *>().isEmpty());
    }

    void paintsTheBackdropOutsideItsPlateAndStaysDarkOverWhite()
    {
        Desk desk;
        const QImage image = desk.toolbar->grab().toImage();
        QCOMPARE(image.pixelColor(0, 0), QColor(Qt::white));
        QVERIFY(image.pixelColor(image.width() / 2, 9).lightness() < 100);
    }

    void asksForTheBackdropAgainOnlyWhenItChanged()
    {
        View view;
        int asked = 0;
        SelectionToolbar toolbar(
            [&](QRect pixels) {
                ++asked;
                return white(pixels);
            },
            &view);
        toolbar.grab();
        toolbar.grab();
        QCOMPARE(asked, 1);
        toolbar.backdropChanged();
        toolbar.grab();
        QCOMPARE(asked, 2);
    }

    void hasASizeThatIsWholeInNativePixels()
    {
        View view;
        const SelectionToolbar toolbar(white, &view);
        QCOMPARE(toolbar.sizeHint().width() % 4, 0);
        QCOMPARE(toolbar.sizeHint().height() % 4, 0);
    }

    void tellsScreenReadersWhichToolAndColourAreInUse()
    {
        Desk desk;
        const auto access = [](QObject *of) { return QAccessible::queryAccessibleInterface(of); };
        desk.toolbar->setActiveTool(AnnotationTool::line);
        for (int i = 0; i < 5; ++i) {
            const QAccessibleInterface *tool = access(desk.toolbar->button(i));
            QCOMPARE(tool->role(), QAccessible::RadioButton);
            QCOMPARE(bool(tool->state().checked), i == 2);
        }
        for (int i = 5; i < 8; ++i) {
            const QAccessibleInterface *button = access(desk.toolbar->button(i));
            QCOMPARE(button->role(), QAccessible::Button);
            QVERIFY(!button->state().checkable);
            QVERIFY(!button->text(QAccessible::Name).isEmpty());
        }
        desk.toolbar->setSelectedColor(SystemColors::green);
        int chosen = 0;
        for (ToolbarButton *swatch : desk.popover().swatches()) {
            QCOMPARE(access(swatch)->role(), QAccessible::RadioButton);
            chosen += access(swatch)->state().checked;
        }
        QCOMPARE(chosen, 1);
        bool isPressed = false;
        desk.toolbar->onRectangle = [&] { isPressed = true; };
        access(desk.toolbar->button(1))
            ->actionInterface()
            ->doAction(QAccessibleActionInterface::pressAction());
        QVERIFY(isPressed);
    }
};

QTEST_MAIN(TestSelectionToolbar)
#include "tst_SelectionToolbar.moc"
