// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Keys on keyboards of other scripts: letters and commands go by what is on the key in Latin.

#include "desktop/Drawing.h"
#include "support/Skip.h"

#include <QTest>

#include <map>

using namespace tovek;

namespace {

/// The names of the symbols that a layout has on the keys of these Latin letters.
using Keys = std::map<char, const char *>;

const Keys greek{{'a', "Greek_alpha"}, {'c', "Greek_psi"},     {'l', "Greek_lamda"},
                 {'r', "Greek_rho"},   {'s', "Greek_sigma"},   {'t', "Greek_tau"},
                 {'v', "Greek_omega"}, {'y', "Greek_upsilon"}, {'z', "Greek_zeta"}};
const Keys russian{{'a', "Cyrillic_ef"}, {'c', "Cyrillic_es"},   {'l', "Cyrillic_de"},
                   {'r', "Cyrillic_ka"}, {'s', "Cyrillic_yeru"}, {'t', "Cyrillic_ie"},
                   {'v', "Cyrillic_em"}, {'y', "Cyrillic_en"},   {'z', "Cyrillic_ya"}};

struct Typing : Drawing
{
    /// Keys by their Latin letters: "Control_L+z".
    [[nodiscard]] bool press(const QString &latin)
    {
        QString chord = latin;
        const char letter = latin.back().toLatin1();
        if (const auto key = keys.find(letter); key != keys.end())
            chord = latin.chopped(1) + QLatin1String(key->second);
        return tap(chord.toLatin1().constData());
    }
    [[nodiscard]] bool freeze()
    {
        ClipboardReader(desktop.displayName()).clear();
        before = tovek->eye().lookWhenStill();
        // The program takes its shortcuts anew for the layout.
        const bool isOpen = waitUntil([&] {
            return press("Super_L+Shift_L+c")
                && waitUntil([&] { return tovek->covers(monitors()); }, std::chrono::seconds(2));
        });
        select(selection.topLeft(), selection.bottomRight() + QPoint(1, 1));
        return isOpen && waitUntil([&] { return !(firstButton = activeButton()).isEmpty(); });
    }

    Keys keys;
};

} // namespace

class TestLayouts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void actByTheLatinMeaningOfTheKey_data()
    {
        QTest::addColumn<QString>("layout");
        QTest::addColumn<QString>("toggle");
        QTest::newRow("Greek alone") << QStringLiteral("gr") << QString();
        QTest::newRow("Russian alone") << QStringLiteral("ru") << QString();
        QTest::newRow("Greek beside Latin")
            << QStringLiteral("us,gr") << QStringLiteral("ISO_Next_Group");
        QTest::newRow("Russian beside Latin")
            << QStringLiteral("us,ru") << QStringLiteral("ISO_Next_Group");
    }
    void actByTheLatinMeaningOfTheKey()
    {
        QFETCH(QString, layout);
        QFETCH(QString, toggle);
        Typing d;
        if (toggle.isEmpty())
            d.keys = layout == QLatin1String("gr") ? greek : russian;
        QVERIFY2(d.start(), qPrintable(d.error));
        QVERIFY2(d.setLayout({"-layout", layout, "-option", "grp:rctrl_toggle"}),
                 qPrintable(d.error));
        QVERIFY(toggle.isEmpty() || d.tap(toggle.toLatin1().constData()));
        QVERIFY(d.freeze());
        const std::pair<const char *, int> tools[] = {
            {"r", Drawing::rectangleButton},     {"l", Drawing::lineButton},
            {"Shift_L+a", Drawing::arrowButton}, {"t", Drawing::textButton},
            {"v", Drawing::pointerButton},       {"l", Drawing::lineButton}};
        for (const auto &[key, tool] : tools) {
            QVERIFY(d.press(QLatin1String(key)));
            QVERIFY2(d.waitForActiveButton(tool), key);
        }
        d.drag({100, 100}, {300, 100});
        d.drag({100, 200}, {300, 200});
        d.drag({100, 300}, {300, 300});
        QVERIFY(d.press("Control_L+z"));
        QVERIFY(d.press("Control_L+z"));
        QVERIFY(d.press("Control_L+Shift_L+z"));
        QVERIFY(d.press("Control_L+y"));
        QVERIFY(d.press("Control_L+z"));
        QVERIFY(d.press("Control_L+c"));
        const QRect box = boxOf(QImage::fromData(d.pasted()), Ink::red);
        QVERIFY2(isNear(box, QRect(99, 99, 203, 103)), qPrintable(toText(box)));
        QVERIFY(d.tovek->waitUntilGone());
        QVERIFY(d.freeze());
        QVERIFY(d.press("Control_L+s"));
        QCOMPARE(differentPixels(QImage::fromData(d.saved()), d.untouched()), 0);
    }

    void typeTheirOwnScriptIntoATextBox()
    {
        Typing d;
        d.keys = russian;
        QVERIFY2(d.start(), qPrintable(d.error));
        QVERIFY2(d.setLayout({"-layout", "ru"}), qPrintable(d.error));
        QVERIFY(d.freeze());
        // The letters have Latin twins in look, so that the Latin ones in the same place are the
        // same picture. The commands between them are no letters.
        const auto written = [&](const QStringList &letters) {
            if (!d.press("t"))
                return QImage();
            d.click({100, 100});
            for (const QString &letter : letters) {
                if (!d.tap(letter.toLatin1().constData()))
                    return QImage();
            }
            return d.tap("Escape") ? d.copied() : QImage();
        };
        const QImage cyrillic = written({"Cyrillic_es", "Cyrillic_a", "Cyrillic_o"});
        QVERIFY(!boxOf(cyrillic, Ink::red).isEmpty());
        QVERIFY(d.tovek->waitUntilGone());
        QVERIFY2(d.setLayout({"-layout", "us"}), qPrintable(d.error));
        d.keys.clear();
        QVERIFY(d.freeze());
        QCOMPARE(differentPixels(written({"c", "a", "o"}), cyrillic), 0);
    }
};

QTEST_GUILESS_MAIN(TestLayouts)
#include "tst_Layouts.moc"
