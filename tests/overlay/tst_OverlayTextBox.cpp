// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "annotations/AnnotationDrawing.h"
#include "foundation/DrawingContext.h"
#include "overlay/OverlayTextBox.h"

#include <QInputMethodEvent>
#include <QPainter>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

const QColor ink(255, 59, 48);

/// The overlay view below the box: a plain grey that takes the keys which the box does not want.
class View : public QWidget
{
public:
    View() { resize(400, 300); }
    QList<int> keys;

protected:
    void paintEvent(QPaintEvent *) override { QPainter(this).fillRect(rect(), Qt::gray); }
    void keyPressEvent(QKeyEvent *event) override
    {
        // Modifiers alone do nothing anywhere.
        if (event->key() != Qt::Key_Control && event->key() != Qt::Key_Meta
            && event->key() != Qt::Key_Shift)
            keys << event->key();
    }
};

struct Desk
{
    explicit Desk(const QString &text = {})
    {
        box = new OverlayTextBox({{20, 280}, ink, text, 16}, &view);
        box->move(20, 20);
        view.show();
        box->setFocus();
        [[maybe_unused]] const bool isActive = QTest::qWaitForWindowActive(&view);
    }
    QImage look() { return view.grab().toImage().convertToFormat(QImage::Format_RGB32); }
    void compose(const QString &preedit, const QString &commit = {})
    {
        QInputMethodEvent event(preedit, {});
        event.setCommitString(commit);
        QCoreApplication::sendEvent(box, &event);
    }

    View view;
    OverlayTextBox *box = nullptr;
};

/// The box around what is not grey.
QRect inkIn(const QImage &image)
{
    QRect found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != image.pixel(image.width() - 1, image.height() - 1))
                found |= QRect(x, y, 1, 1);
        }
    }
    return found;
}

QRect drawnInk(const QString &text)
{
    TextAnnotation annotation;
    annotation.startPoint = annotation.endPoint = {20, 280};
    annotation.color = ink;
    annotation.text = text;
    QImage image(400, 300, QImage::Format_RGB32);
    image.fill(Qt::gray);
    QPainter painter(&image);
    DrawingContext context(painter, {{400, 300}, 1});
    draw(annotation, context);
    return inkIn(image);
}

bool isNear(const QRect &a, const QRect &b)
{
    return (a.topLeft() - b.topLeft()).manhattanLength() <= 2
        && (a.bottomRight() - b.bottomRight()).manhattanLength() <= 2;
}

} // namespace

class TestOverlayTextBox : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void showsTheTextWhereTheAnnotationWillStand_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("a word") << QStringLiteral("Typed");
        QTest::newRow("lines") << QStringLiteral("One\nand\ntwo");
        QTest::newRow("a tab") << QStringLiteral("\tfar");
        QTest::newRow("accents") << QString::fromUtf8("Éç̊");
        QTest::newRow("an emoji") << QString::fromUtf8("😀!");
    }
    void showsTheTextWhereTheAnnotationWillStand()
    {
        QFETCH(QString, text);
        Desk desk(text);
        desk.box->clearFocus();
        desk.box->moveCursor(QTextCursor::End);
        const QRect shown = inkIn(desk.look());
        const QRect drawn = drawnInk(text);
        QVERIFY(!drawn.isEmpty());
        QVERIFY2(isNear(shown, drawn),
                 qPrintable(QStringLiteral("%1 wide at %2, not %3 at %4")
                                .arg(shown.width())
                                .arg(shown.x())
                                .arg(drawn.width())
                                .arg(drawn.x())));
    }

    void hasACaretOfItsColour()
    {
        Desk desk;
        QTRY_COMPARE(desk.look().pixelColor(20, 30), ink);
        QCOMPARE(desk.look().pixelColor(21, 30), ink);
        QCOMPARE(desk.look().pixelColor(22, 30), QColor(Qt::gray));
    }

    void takesWhatAnInputMethodComposes()
    {
        Desk desk;
        QVERIFY(desk.box->inputMethodQuery(Qt::ImEnabled).toBool());
        const QRect before = desk.box->inputMethodQuery(Qt::ImCursorRectangle).toRect();
        desk.compose(QString::fromUtf8("に"));
        // Shown while it is composed, but not typed yet.
        QVERIFY(inkIn(desk.look()).width() > 6);
        QVERIFY(desk.box->toPlainText().isEmpty());
        desk.compose({}, QString::fromUtf8("日本"));
        QCOMPARE(desk.box->toPlainText(), QString::fromUtf8("日本"));
        QVERIFY(desk.box->inputMethodQuery(Qt::ImCursorRectangle).toRect().x() > before.x());
        QTest::keyClicks(desk.box, QStringLiteral("!"));
        QCOMPARE(desk.box->toPlainText(), QString::fromUtf8("日本!"));
    }

    void tellsOfEveryChange()
    {
        Desk desk;
        QStringList told;
        QObject::connect(desk.box, &QPlainTextEdit::textChanged, desk.box,
                         [&] { told << desk.box->toPlainText(); });
        QTest::keyClicks(desk.box, QStringLiteral("ab"));
        desk.compose({}, QString::fromUtf8("é"));
        QCOMPARE(told.last(), QString::fromUtf8("abé"));
    }

    void typesWhatIsACommandElsewhere()
    {
        Desk desk;
        for (Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Tab, Qt::Key_Space})
            QTest::keyClick(desk.box, key);
        QCOMPARE(desk.box->toPlainText(), QStringLiteral("\n\n\t "));
        QTest::keyClick(desk.box, Qt::Key_Backspace);
        QTest::keyClick(desk.box, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(desk.box->toPlainText(), QStringLiteral("\n\n\t"));
        QVERIFY(desk.view.keys.isEmpty());
        QVERIFY(desk.box->hasFocus());
    }

    void undoesAndRedoesAllOfItself_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::newRow("Ctrl Y") << Qt::Key_Y << Qt::KeyboardModifiers(Qt::ControlModifier);
        QTest::newRow("Super Y") << Qt::Key_Y << Qt::KeyboardModifiers(Qt::MetaModifier);
        QTest::newRow("Ctrl Shift Z")
            << Qt::Key_Z << Qt::KeyboardModifiers(Qt::ControlModifier | Qt::ShiftModifier);
    }
    void undoesAndRedoesAllOfItself()
    {
        QFETCH(Qt::Key, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        Desk desk;
        QTest::keyClicks(desk.box, QStringLiteral("typed"));
        for (int i = 0; i < 3; ++i)
            QTest::keyClick(desk.box, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(desk.box->toPlainText(), QString());
        for (int i = 0; i < 3; ++i)
            QTest::keyClick(desk.box, key, modifiers);
        QCOMPARE(desk.box->toPlainText(), QStringLiteral("typed"));
        QVERIFY(desk.view.keys.isEmpty());
    }

    void leavesEscapeAndSavingToTheView()
    {
        Desk desk(QStringLiteral("text"));
        QTest::keyClick(desk.box, Qt::Key_Escape);
        QTest::keyClick(desk.box, Qt::Key_S, Qt::ControlModifier);
        QTest::keyClick(desk.box, Qt::Key_S, Qt::MetaModifier);
        QCOMPARE(desk.view.keys, (QList<int>{Qt::Key_Escape, Qt::Key_S, Qt::Key_S}));
        QCOMPARE(desk.box->toPlainText(), QStringLiteral("text"));
    }

    void startsWithAllSelected()
    {
        Desk desk(QStringLiteral("old\nlines"));
        QTest::keyClicks(desk.box, QStringLiteral("new"));
        QCOMPARE(desk.box->toPlainText(), QStringLiteral("new"));
    }

    void growsDownwardsOnly()
    {
        Desk desk;
        int changes = 0;
        desk.box->onGeometryChanged = [&] { ++changes; };
        QCOMPARE(desk.box->geometry(), QRect(20, 20, 200, 100));
        for (int i = 0; i < 12; ++i)
            QTest::keyClick(desk.box, Qt::Key_Return);
        QVERIFY(desk.box->height() > 12 * 16);
        QCOMPARE(desk.box->width(), 200);
        QCOMPARE(desk.box->pos(), QPoint(20, 20));
        QVERIFY(changes > 0);
        desk.box->clear();
        QCOMPARE(desk.box->height(), 100);
    }
};

QTEST_MAIN(TestOverlayTextBox)
#include "tst_OverlayTextBox.moc"
