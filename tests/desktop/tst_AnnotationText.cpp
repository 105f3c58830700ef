// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Texts typed, pasted and changed on a real desktop, as they are in the copy.

#include "desktop/Drawing.h"
#include "support/Skip.h"

#include <QTest>

using namespace tovek;

namespace {

constexpr QPoint place{100, 100};

/// A desktop on which texts are written, each in the same place of the same selection.
struct Writing : Drawing
{
    using Drawing::Drawing;
    [[nodiscard]] bool taps(const std::vector<const char *> &keys)
    {
        return std::all_of(keys.begin(), keys.end(), [this](const char *key) { return tap(key); });
    }
    /// Opens a box and types; it is open still.
    [[nodiscard]] bool type(const std::vector<const char *> &keys)
    {
        if (!tap("t"))
            return false;
        click(place);
        // Keys that come in one go with the click pass by the input method.
        return waitUntil([&] { return isCaretSeen(); }) && taps(keys);
    }
    bool isCaretSeen() const
    {
        return !boxOf(tovek->eye().look({at(place), QSize(native(4), native(20))}), Ink::red)
                    .isEmpty();
    }
    /// Leaves the box and copies; null when what was seen before is not what was copied.
    QImage finished()
    {
        // Without handles, which are not copied either.
        if (!taps({"Escape", "v"}) || !waitForActiveButton(pointerButton))
            return {};
        // Without the border, which is not copied.
        const QRect inner(10, 10, selection.width() - 20, selection.height() - 20);
        const QImage seen = tovek->eye().lookWhenStill(inner.translated(selection.topLeft()));
        if (!tap("Return") || !isClosed())
            return {};
        ClipboardReader reader(desktop.displayName());
        const QString png = QStringLiteral("image/png");
        if (!waitUntil([&] { return reader.types() == QStringList(png); }))
            return {};
        const QImage image = QImage::fromData(reader.read(png).value_or(QByteArray()));
        return differentPixels(seen, image.copy(inner)) == 0 ? image : QImage();
    }
    /// The picture of what was typed, on a newly frozen screen.
    QImage typed(const std::vector<const char *> &keys)
    {
        return again() && type(keys) ? finished() : QImage();
    }
    /// The same for a text that comes from another program through the clipboard.
    QImage pastedText(const QString &text)
    {
        if (!again() || !offer(text) || !type({"Control_L+v"}))
            return {};
        return finished();
    }
    [[nodiscard]] bool offer(const QString &text)
    {
        QFile file(desktop.home() + QStringLiteral("/offered.txt"));
        if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
            return false;
        file.close();
        const ClipboardReader reader(desktop.displayName());
        return desktop.run("xclip", {"-selection", "clipboard", "-quiet", file.fileName()})
            && waitUntil([&] { return reader.hasOwner(); });
    }
    bool hasInk(const QImage &image) const
    {
        return !image.isNull() && differentPixels(image, untouched()) > 0;
    }
};

} // namespace

class TestAnnotationText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void standsWhereItWasClicked_data()
    {
        QTest::addColumn<double>("scale");
        for (double scale : {1.0, 1.5, 2.0})
            QTest::addRow("scale %.1f", scale) << scale;
    }
    void standsWhereItWasClicked()
    {
        QFETCH(double, scale);
        Writing d(scale);
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.type({"h", "i", "Shift_L+1"}));
        const QRect box = boxOf(d.finished(), Ink::red);
        QVERIFY(box.left() >= 100 && box.left() < 100 + 6 * scale);
        QVERIFY(box.top() >= 100 && box.bottom() < 100 + 26 * scale);
        QVERIFY(box.width() > 8 * scale && box.width() < 40 * scale);
    }

    void keepsLinesAndTabs()
    {
        Writing d;
        QVERIFY2(d.start(), qPrintable(d.error));
        const QImage typed = d.typed({"a", "Return", "Tab", "b", "space", "c"});
        QVERIFY(d.hasInk(typed));
        const QRect box = boxOf(typed, Ink::red);
        QVERIFY2(box.height() > 22 && box.width() > 60, qPrintable(toText(box)));
        QCOMPARE(differentPixels(d.pastedText(QStringLiteral("a\n\tb c")), typed), 0);
    }

    void takesDeadKeys()
    {
        Writing d;
        QVERIFY2(d.start(), qPrintable(d.error));
        QVERIFY(d.setLayout({"-layout", "us", "-variant", "intl"}));
        const QImage typed = d.typed({"dead_acute", "e", "dead_acute", "space"});
        QVERIFY(d.hasInk(typed));
        QCOMPARE(differentPixels(d.pastedText(QString::fromUtf8("é'")), typed), 0);
    }

    void takesTheComposeKey()
    {
        Writing d;
        QVERIFY2(d.start(), qPrintable(d.error));
        QVERIFY(d.setLayout({"-layout", "us", "-option", "compose:ralt"}));
        const QImage typed = d.typed({"Multi_key", "o", "c", "Multi_key", "s", "s"});
        QVERIFY(d.hasInk(typed));
        QCOMPARE(differentPixels(d.pastedText(QString::fromUtf8("©ß")), typed), 0);
    }

    void keepsEmojiAndWordsFromRightToLeft()
    {
        Writing d;
        QVERIFY2(d.start(), qPrintable(d.error));
        const QString word = QString::fromUtf8("שלום");
        const QImage emoji = d.pastedText(QString::fromUtf8("😀"));
        const QImage right = d.pastedText(word);
        const QImage both = d.pastedText(word + QString::fromUtf8(" 😀"));
        QVERIFY(d.hasInk(emoji));
        QVERIFY(d.hasInk(right));
        // In a line from right to left what comes last stands leftmost, and all of it is there.
        const int wordWidth = boxOf(right, Ink::red).width();
        QVERIFY(wordWidth > 20);
        QVERIFY(boxOf(both, Ink::red).width() >= wordWidth);
        const QRect wordPlace = boxOf(right, Ink::red);
        const QImage atLeft = both.copy(QRect(wordPlace.topLeft(), QSize(8, wordPlace.height())));
        QVERIFY(differentPixels(atLeft, right.copy(QRect(wordPlace.topLeft(), atLeft.size()))) > 0);
    }

    void changesOnADoubleClick()
    {
        Writing d;
        QVERIFY2(d.start(), qPrintable(d.error));
        const QImage fresh = d.typed({"w", "o", "r", "d"});
        QVERIFY(d.hasInk(fresh));
        QVERIFY(d.again());
        QVERIFY(d.type({"m", "m", "m", "Escape", "v"}));
        d.doubleClick(place + QPoint(3, 8));
        // All of the old text is selected, and nothing of it shows below the new one.
        QVERIFY(d.tap("space"));
        const QRect line(d.at(place) + QPoint(8, 0), QSize(30, 20));
        QVERIFY(waitUntil(
            [&] { return differentPixels(d.tovek->eye().look(line), d.before.copy(line)) == 0; }));
        QVERIFY(d.taps({"BackSpace", "w", "o", "r", "d"}));
        QCOMPARE(differentPixels(d.finished(), fresh), 0);
    }

    void goesWhenItIsCleared()
    {
        Writing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.type({"x", "Escape", "v"}));
        // The click that opened the box must not be the first of two.
        QTest::qWait(600);
        d.doubleClick(place + QPoint(3, 8));
        QVERIFY(d.taps({"BackSpace", "space"}));
        QCOMPARE(differentPixels(d.finished(), d.untouched()), 0);
    }

    void leavesNothingOfAnEmptyBox()
    {
        Writing d;
        QVERIFY2(d.begin(), qPrintable(d.error));
        QVERIFY(d.type({"space", "Return"}));
        QCOMPARE(differentPixels(d.finished(), d.untouched()), 0);
    }

    void isFinishedByAClickBesideIt()
    {
        Writing d;
        QVERIFY2(d.start(), qPrintable(d.error));
        const QImage fresh = d.typed({"o", "k"});
        QVERIFY(d.again());
        QVERIFY(d.type({"o", "k"}));
        d.click(place + QPoint(250, 20));
        // The click only left the box; letters are tools again.
        QVERIFY(d.tap("r"));
        QVERIFY(d.waitForActiveButton(Drawing::rectangleButton));
        QVERIFY(d.tap("Return"));
        QCOMPARE(differentPixels(QImage::fromData(d.pasted()), fresh), 0);
    }

    void isSavedWhileItIsTyped()
    {
        Writing d;
        QVERIFY2(d.start(), qPrintable(d.error));
        const QImage fresh = d.typed({"o", "k"});
        QVERIFY(d.again());
        QVERIFY(d.type({"o", "k", "Control_L+s"}));
        QCOMPARE(differentPixels(QImage::fromData(d.saved()), fresh), 0);
    }

    void editsAsATextFieldDoes()
    {
        Writing d;
        QVERIFY2(d.start(), qPrintable(d.error));
        const QImage fresh = d.typed({"a", "b", "a", "b"});
        QVERIFY(d.hasInk(fresh));
        QVERIFY(d.again());
        // Copies within the box, and no picture.
        QVERIFY(d.type(
            {"a", "b", "x", "BackSpace", "Control_L+a", "Control_L+c", "End", "Control_L+v"}));
        QVERIFY(d.tovek->covers(d.monitors()));
        QCOMPARE(differentPixels(d.finished(), fresh), 0);
    }

    void opensNoMenuUnderTheOverlay_data()
    {
        QTest::addColumn<QString>("key");
        QTest::newRow("right click") << QString();
        QTest::newRow("Menu") << "Menu";
    }
    void opensNoMenuUnderTheOverlay()
    {
        QFETCH(QString, key);
        Writing d;
        QVERIFY2(d.start(), qPrintable(d.error));
        const QImage fresh = d.typed({"a", "t"});
        QVERIFY(d.again());
        QVERIFY(d.type({"a"}));
        if (key.isEmpty())
            d.tovek->hand().click(d.at(place) + QPoint(30, 30), 3);
        else
            QVERIFY(d.tovek->hand().tap(key));
        QVERIFY(d.tap("t"));
        QCOMPARE(differentPixels(d.finished(), fresh), 0);
    }

    void goesOnAfterAChoiceInTheToolbar()
    {
        Writing d;
        QVERIFY2(d.start(), qPrintable(d.error));
        const QImage red = d.typed({"i", "i", "m"});
        QVERIFY(d.again());
        QVERIFY(d.type({"i", "i"}));
        d.clickButton(Drawing::colorButton);
        d.tovek->hand().click(d.swatch(3));
        QVERIFY(d.tap("m"));
        const QRect box = boxOf(d.finished(), Ink::green);
        const QRect expected = boxOf(red, Ink::red);
        QVERIFY2(isNear(box, expected), qPrintable(toText(box) + " not " + toText(expected)));
    }
};

QTEST_GUILESS_MAIN(TestAnnotationText)
#include "tst_AnnotationText.moc"
