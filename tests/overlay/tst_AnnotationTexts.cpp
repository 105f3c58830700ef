// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/SystemColors.h"
#include "overlay/AnnotationDesk.h"

#include <QFont>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestAnnotationTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QGuiApplication::setFont(QFont(QStringLiteral("DejaVu Sans"))); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void opensATextBoxAtTheClick()
    {
        Desk desk;
        desk.chooseColor(SystemColors::purple, ColorTarget::newAnnotations);
        desk.selectTool(AnnotationTool::text);
        const auto effect = desk.click({200, 300});
        QVERIFY(effect.opensTextBox && !effect.closesTextBox);
        QVERIFY((effect.opensTextBox->position == Point{200, 300}));
        QCOMPARE(effect.opensTextBox->color, SystemColors::purple);
        QCOMPARE(effect.opensTextBox->text, QString());
        QVERIFY(desk.isTextBoxOpen());
        QVERIFY(desk.commit(QStringLiteral("hello")).closesTextBox);
        QVERIFY(!desk.isTextBoxOpen());
        QCOMPARE(desk.textAt(0), QStringLiteral("hello"));
        QVERIFY(
            (desk.at(0).startPoint == Point{200, 300} && desk.at(0).endPoint == Point{200, 300}));
        QCOMPARE(desk.at(0).color, SystemColors::purple);
        QCOMPARE(std::get<TextAnnotation>(desk.annotations()[0]).fontSize, 16.0);
        QVERIFY(!desk.commitText().isHandled);
    }

    void trimsWhatIsCommitted_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("nothing") << QString() << QStringList();
        QTest::newRow("blanks") << QStringLiteral(" \t\n \n") << QStringList();
        QTest::newRow("around") << QStringLiteral("\n a\n  b \n")
                                << QStringList{QStringLiteral("a\n  b")};
        QTest::newRow("no-break space")
            << QString::fromUtf8("\u00a0x\u00a0") << QStringList{QStringLiteral("x")};
    }
    void trimsWhatIsCommitted()
    {
        QFETCH(QString, typed);
        Desk desk;
        desk.write({200, 300}, typed);
        QStringList texts;
        for (size_t i = 0; i < desk.annotations().size(); ++i)
            texts << desk.textAt(i);
        QTEST(texts, "expected");
    }

    void commitsOnAnyToolChangeButToText()
    {
        Desk desk;
        desk.selectTool(AnnotationTool::text);
        desk.click({200, 300});
        desk.setTypedText(QStringLiteral("kept"));
        QVERIFY(!desk.selectTool(AnnotationTool::text).closesTextBox);
        QVERIFY(desk.isTextBoxOpen());
        QVERIFY(desk.toggleTool(AnnotationTool::text).closesTextBox);
        QCOMPARE(desk.textAt(0), QStringLiteral("kept"));
    }

    void commitsBeforeOpeningAnother()
    {
        Desk desk;
        desk.selectTool(AnnotationTool::text);
        desk.click({200, 300});
        desk.setTypedText(QStringLiteral("one"));
        const auto effect = desk.click({200, 200});
        QVERIFY(effect.closesTextBox && effect.opensTextBox);
        QCOMPARE(desk.annotations().size(), size_t(1));
        desk.commit(QStringLiteral("two"));
        QCOMPARE(desk.textAt(1), QStringLiteral("two"));
    }

    void editsATextAgainOnADoubleClick()
    {
        Desk desk;
        desk.write({200, 300}, QStringLiteral("before"));
        const QUuid id = desk.at(0).id;
        desk.chooseColor(SystemColors::blue, ColorTarget::newAnnotations);
        QVERIFY(!desk.click({210, 290}).opensTextBox);
        const auto effect = desk.press({210, 290}, 2, selection);
        QVERIFY(effect.opensTextBox && !desk.isDraggingAnnotation());
        QVERIFY((effect.opensTextBox->position == Point{200, 300}));
        QCOMPARE(effect.opensTextBox->color, SystemColors::red);
        QCOMPARE(effect.opensTextBox->text, QStringLiteral("before"));
        desk.commit(QStringLiteral(" after "));
        QCOMPARE(desk.annotations().size(), size_t(1));
        QCOMPARE(desk.textAt(0), QStringLiteral("after"));
        QCOMPARE(desk.at(0).color, SystemColors::red);
        QCOMPARE(desk.at(0).id, id);
    }

    void opensABoxInTheSizeOfTheText()
    {
        Desk desk;
        QCOMPARE(desk.click({200, 300}).opensTextBox.has_value(), false);
        desk.selectTool(AnnotationTool::text);
        const auto fresh = desk.click({200, 300});
        QVERIFY(fresh.opensTextBox);
        QCOMPARE(fresh.opensTextBox->fontSize, TextAnnotation().fontSize);
        desk.commit(QStringLiteral("large"));
        auto kept = desk.annotations();
        std::get<TextAnnotation>(kept[0]).fontSize = 24;
        AnnotationEditor later(kept);
        const auto again = later.press({210, 290}, 2, selection);
        QVERIFY(again.opensTextBox);
        QCOMPARE(again.opensTextBox->fontSize, 24.0);
    }

    void showsATextOnlyInItsBoxWhileItIsEdited()
    {
        Desk desk;
        desk.write({200, 300}, QStringLiteral("kept"));
        desk.write({200, 200}, QStringLiteral("edited"));
        QCOMPARE(desk.drawnAnnotations().size(), size_t(2));
        desk.click({210, 190});
        QVERIFY(desk.press({210, 190}, 2, selection).needsRedraw);
        QVERIFY((desk.drawnAnnotations() == std::vector{desk.annotations()[0]}));
        QCOMPARE(desk.annotations().size(), size_t(2));
        QVERIFY(desk.commitText().needsRedraw);
        QVERIFY(desk.drawnAnnotations() == desk.annotations());
    }

    void dragsATextOnATripleClick()
    {
        Desk desk;
        desk.write({200, 300}, QStringLiteral("text"));
        QVERIFY(!desk.press({210, 290}, 3, selection).opensTextBox);
        QVERIFY(desk.isDraggingAnnotation() && !desk.draggingHandle());
    }

    void doesNotEditAShapeOnADoubleClick()
    {
        Desk desk;
        desk.draw(AnnotationTool::line, {200, 200}, {300, 200});
        QVERIFY(!desk.press({250, 200}, 2, selection).opensTextBox);
        QVERIFY(desk.isDraggingAnnotation());
    }

    void deletesATextThatIsClearedWhenEditedAgain()
    {
        Desk desk;
        desk.write({200, 300}, QStringLiteral("first"));
        desk.draw(AnnotationTool::line, {350, 200}, {450, 200});
        desk.click({210, 290});
        desk.press({210, 290}, 2, selection);
        QVERIFY(desk.commit(QStringLiteral(" \n")).closesTextBox);
        QCOMPARE(desk.annotations().size(), size_t(1));
        QVERIFY(std::holds_alternative<LineAnnotation>(desk.annotations()[0]));
        QVERIFY(!desk.selectedAnnotationIndex() && !desk.editingTextAnnotationIndex());
    }

    void editsAnotherTextAfterClearingAnEarlierOne()
    {
        Desk desk;
        desk.write({150, 350}, QStringLiteral("first"));
        desk.write({300, 200}, QStringLiteral("second"));
        desk.press({155, 345}, 2, selection);
        desk.setTypedText(QString());
        const auto effect = desk.press({305, 195}, 2, selection);
        QVERIFY(effect.opensTextBox);
        QCOMPARE(effect.opensTextBox->text, QStringLiteral("second"));
        QCOMPARE(desk.editingTextAnnotationIndex(), std::optional<size_t>(0));
        desk.commit(QStringLiteral("changed"));
        QCOMPARE(desk.annotations().size(), size_t(1));
        QCOMPARE(desk.textAt(0), QStringLiteral("changed"));
    }

    void closesTheBoxOfATextThatIsDeleted()
    {
        Desk desk;
        desk.write({200, 300}, QStringLiteral("gone"));
        desk.click({210, 290});
        desk.press({210, 290}, 2, selection);
        QVERIFY(desk.deleteSelected().closesTextBox);
        QVERIFY(!desk.isTextBoxOpen() && desk.annotations().empty());
    }
};

QTEST_MAIN(TestAnnotationTexts)
#include "tst_AnnotationTexts.moc"
