// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "command/WordsText.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

/// A word at pixels of a picture of 200 by 100.
TextRegion word(const char *text, QRect pixels)
{
    return {QString::fromUtf8(text),
            {pixels.x() / 200.0, (100 - pixels.y() - pixels.height()) / 100.0,
             pixels.width() / 200.0, pixels.height() / 100.0}};
}

const WordLines lines{
    {word("Grüße", {10, 5, 41, 13}), word("\"you\"", {60, 5, 33, 13})},
    {word("second", {10, 40, 57, 12})},
};

} // namespace

class TestWordsText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void isWritten_data()
    {
        QTest::addColumn<WordLines>("words");
        QTest::addColumn<WordsFormat>("format");
        QTest::addColumn<QString>("expected");
        QTest::newRow("text") << lines << WordsFormat::text
                              << QStringLiteral("Grüße \"you\"\nsecond\n");
        QTest::newRow("tabs") << lines << WordsFormat::tabs
                              << QStringLiteral("10\t5\t41\t13\t1\tGrüße\n"
                                                "60\t5\t33\t13\t1\t\"you\"\n"
                                                "10\t40\t57\t12\t2\tsecond\n");
        QTest::newRow("json")
            << lines << WordsFormat::json
            << QStringLiteral(
                   "[{'height':13,'left':10,'line':1,'text':'Grüße','top':5,'width':41},"
                   "{'height':13,'left':60,'line':1,'text':'\\'you\\'','top':5,'width':33},"
                   "{'height':12,'left':10,'line':2,'text':'second','top':40,'width':57}]\n")
                   .replace('\'', '"');
        QTest::newRow("no words as text") << WordLines() << WordsFormat::text << QString();
        QTest::newRow("no words with tabs") << WordLines() << WordsFormat::tabs << QString();
        QTest::newRow("no words as json")
            << WordLines() << WordsFormat::json << QStringLiteral("[]\n");
    }
    void isWritten()
    {
        QFETCH(WordLines, words);
        QFETCH(WordsFormat, format);
        QFETCH(QString, expected);
        QCOMPARE(wordsText(words, {200, 100}, format), expected);
    }
};

QTEST_APPLESS_MAIN(TestWordsText)
#include "tst_WordsText.moc"
