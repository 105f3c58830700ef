// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/ocr/LineAnswer.h"

#include <QRegularExpression>
#include <QTest>

#include <cstring>
#include <limits>

using namespace tovek;

namespace {

LineProtocol::Symbol symbol(const char *text, float left, float right, float confidence = 90)
{
    LineProtocol::Symbol result;
    result.left = left;
    result.right = right;
    result.confidence = confidence;
    result.length = uint8_t(std::strlen(text));
    std::memcpy(result.text, text, result.length);
    return result;
}

} // namespace

class TestLineAnswer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void keepsWhatIsInTheStrip()
    {
        const auto answer = lineAnswer({symbol("a", 1, 9), symbol(" ", 9, 12)}, 100);
        QVERIFY(answer);
        QCOMPARE(answer->size(), 1U);
        QCOMPARE(answer->front().text, QStringLiteral("a"));
        QCOMPARE(answer->front().left, 1.0);
        QCOMPARE(answer->front().right, 9.0);
    }

    void bringsPlacesIntoTheStrip()
    {
        const auto answer = lineAnswer({symbol("a", -5, 1e30F, 700), symbol("b", 20, 10)}, 100);
        QVERIFY(answer);
        QCOMPARE(answer->at(0).left, 0.0);
        QCOMPARE(answer->at(0).right, 100.0);
        QCOMPARE(answer->at(0).confidence, 100.0);
        QCOMPARE(answer->at(1).right, 20.0);
    }

    void refusesWhatIsNoNumber_data()
    {
        QTest::addColumn<float>("left");
        QTest::addColumn<float>("right");
        QTest::addColumn<float>("confidence");
        const float nan = std::numeric_limits<float>::quiet_NaN();
        const float infinity = std::numeric_limits<float>::infinity();
        QTest::newRow("left") << nan << 9.0F << 90.0F;
        QTest::newRow("right") << 1.0F << infinity << 90.0F;
        QTest::newRow("confidence") << 1.0F << 9.0F << nan;
    }
    void refusesWhatIsNoNumber()
    {
        QFETCH(float, left);
        QFETCH(float, right);
        QFETCH(float, confidence);
        QVERIFY(!lineAnswer({symbol("a", 1, 9), symbol("b", left, right, confidence)}, 100));
    }

    void believesNoLengthBeyondItsOwn()
    {
        auto longer = symbol("abc", 1, 9);
        longer.length = 255;
        const auto answer = lineAnswer({longer}, 100);
        QVERIFY(answer);
        QVERIFY(answer->front().text.startsWith(QStringLiteral("abc")));
        QVERIFY(answer->front().text.size() <= qsizetype(sizeof longer.text));
    }
};

QTEST_APPLESS_MAIN(TestLineAnswer)
#include "tst_LineAnswer.moc"
