// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/SpeckField.h"

#include <QTest>

#include <random>

using namespace tovek;

namespace {

using Patches = std::vector<InkPatch>;
constexpr QSize picture(400, 300);

Patches specks(int count, int largest)
{
    std::mt19937 random(1);
    const auto upTo = [&](int most) { return int(random() % unsigned(most)); };
    Patches patches;
    for (int i = 0; i < count; ++i) {
        const QSize size(1 + upTo(largest), 1 + upTo(largest));
        patches.push_back({{{upTo(390), upTo(290)}, size}, size.width() * size.height(), 200});
    }
    return patches;
}

/// A line of letters of 9 px text, after every `step`th one a dot at some height.
Patches line(QPoint at, int letters, int step)
{
    Patches patches;
    for (int i = 0; i < letters; ++i) {
        const int x = at.x() + i * 6;
        const int height = i % 3 == 0 ? 7 : 5;
        patches.push_back({{x, at.y() - height, 4, height}, 12, 255});
        if (step > 0 && i % step == 0)
            patches.push_back({{x + 2, at.y() - 9 + i % 4, 1, 1 + i % 2}, 1, 255});
    }
    return patches;
}

Patches linesOverAll(int step)
{
    Patches patches;
    for (int y = 12; y < 290; y += 13) {
        const Patches one = line({10, y}, 60, step);
        patches.insert(patches.end(), one.begin(), one.end());
    }
    return patches;
}

/// Dots that lead from chapters to their pages, of which only the numbers are letters.
Patches leaders()
{
    Patches patches;
    for (int y = 12; y < 290; y += 14) {
        for (int x = 10; x < 360; x += 4)
            patches.push_back({{x, y, 1, 1}, 1, 255});
        patches.push_back({{370, y - 6, 5, 7}, 20, 255});
    }
    return patches;
}

TextRun run(const Patches &patches)
{
    TextRun run;
    run.patches = patches;
    for (const InkPatch &patch : patches)
        run.box |= patch.box;
    return run;
}

const TextRun mark = run({{{200, 150, 4, 4}, 16, 255}});
const TextRun word = run(line({200, 150}, 6, 0));

} // namespace

class TestSpeckField : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void coversWhatLiesAmongSpecks_data()
    {
        QTest::addColumn<Patches>("around");
        QTest::addColumn<TextRun>("run");
        QTest::addColumn<bool>("expected");
        QTest::newRow("a mark among specks") << specks(1500, 3) << mark << true;
        QTest::newRow("a mark among specks as high as letters") << specks(1500, 5) << mark << true;
        QTest::newRow("two letters among specks")
            << specks(1500, 3) << run(line({200, 150}, 2, 0)) << true;
        QTest::newRow("a word among specks") << specks(1500, 3) << word << false;
        QTest::newRow("specks on a line with three letters")
            << specks(1500, 3) << run(line({200, 150}, 3, 1)) << true;
        QTest::newRow("a mark among some dust") << specks(60, 3) << mark << false;
        QTest::newRow("a mark in an empty picture") << Patches() << mark << false;
        QTest::newRow("a mark in text") << linesOverAll(0) << mark << false;
        QTest::newRow("a mark in text with many dots") << linesOverAll(2) << mark << false;
        QTest::newRow("a mark in text with a dot on every letter")
            << linesOverAll(1) << mark << false;
        QTest::newRow("a number after leading dots")
            << leaders() << run({{{370, 132, 5, 7}, 20, 255}}) << false;
    }
    void coversWhatLiesAmongSpecks()
    {
        QFETCH(Patches, around);
        QFETCH(TextRun, run);
        QTEST(SpeckField(around, picture).covers(run), "expected");
    }

    void endsAtTheSpecks()
    {
        Patches around = specks(1500, 3);
        std::erase_if(around, [](const InkPatch &patch) { return patch.box.right() >= 128; });
        const SpeckField field(around, picture);
        QVERIFY(field.covers(run({{{60, 150, 4, 4}, 16, 255}})));
        QVERIFY(!field.covers(run({{{300, 150, 4, 4}, 16, 255}})));
    }
};

QTEST_APPLESS_MAIN(TestSpeckField)
#include "tst_SpeckField.moc"
