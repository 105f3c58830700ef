// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/KnownGaps.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

constexpr double cap = 10;

void learn(KnownGaps &gaps, int width, int letters, int blanks)
{
    for (int i = 0; i < letters + blanks; ++i)
        gaps.learn(cap, {width, QStringLiteral("a"), QStringLiteral("b")}, i >= letters);
}

} // namespace

class TestKnownGaps : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void dividesByWhatMostGapsOfAWidthAre()
    {
        KnownGaps gaps;
        learn(gaps, 1, 300, 3); // blanks that were read into a word
        learn(gaps, 2, 300, 0);
        learn(gaps, 4, 8, 4);
        learn(gaps, 5, 1, 40);
        learn(gaps, 6, 0, 40);
        const auto limits = gaps.limits(cap);
        QVERIFY(limits);
        QCOMPARE(limits->widestLetter, 2);
        QCOMPARE(limits->narrowestBlank, 5);
    }
    void knowsOnlyLettersOfTheSameSize()
    {
        KnownGaps gaps;
        learn(gaps, 1, 50, 0);
        learn(gaps, 5, 0, 50);
        QVERIFY(gaps.limits(cap * 1.05));
        QVERIFY(!gaps.limits(cap * 2));
    }
    void tellsNothingWhereBothAreEquallyWide()
    {
        KnownGaps gaps;
        learn(gaps, 2, 50, 50);
        learn(gaps, 3, 50, 50);
        QVERIFY(!gaps.limits(cap));
    }
    void tellsNothingByAFewGaps()
    {
        KnownGaps gaps;
        learn(gaps, 1, 50, 0);
        learn(gaps, 5, 0, 5);
        QVERIFY(!gaps.limits(cap));
    }
    void tellsAGapByTheCharactersBesideIt()
    {
        KnownGaps gaps;
        const KnownGaps::Gap quoted{4, QStringLiteral("`"), QStringLiteral("d")};
        const KnownGaps::Gap either{4, QStringLiteral("."), QStringLiteral("d")};
        for (int i = 0; i < 4; ++i) {
            QCOMPARE(gaps.isBlank(cap, quoted).has_value(), i > 2);
            gaps.learn(cap, quoted, false);
            gaps.learn(cap, either, i % 2 == 0);
        }
        QCOMPARE(gaps.isBlank(cap, quoted), std::optional(false));
        QCOMPARE(gaps.isBlank(cap, either), std::nullopt);
        QCOMPARE(gaps.isBlank(cap, {5, quoted.before, quoted.after}), std::nullopt);
    }
};

QTEST_APPLESS_MAIN(TestKnownGaps)
#include "tst_KnownGaps.moc"
