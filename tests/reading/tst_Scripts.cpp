// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/Scripts.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestScripts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void tellsWhichTextIsReadByWords_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isByWords");
        QTest::newRow("Latin") << "Größe" << false;
        QTest::newRow("Cyrillic") << "Файл" << false;
        QTest::newRow("Greek") << "Αρχείο" << false;
        QTest::newRow("digits") << "12:10" << false;
        QTest::newRow("empty") << "" << false;
        QTest::newRow("Arabic") << "الساعة" << true;
        QTest::newRow("Hindi") << "फ़ाइलें" << true;
        QTest::newRow("Thai") << "เวลา" << true;
        QTest::newRow("Korean beside Latin") << "OpenGL을" << false;
        QTest::newRow("Arabic beside Latin") << "Firefox وملفات" << true;
        QTest::newRow("mark of length") << "ー" << true;
        QTest::newRow("an icon read as an ideograph") << "口Preferences" << false;
    }
    void tellsWhichTextIsReadByWords()
    {
        QFETCH(QString, text);
        QTEST(isReadByWords(text), "isByWords");
    }

    void dividesKoreanAndThaiByBlanks()
    {
        QVERIFY(isDividedByBlanks(QStringLiteral("파일은 Firefox에서")));
        QVERIFY(isDividedByBlanks(QStringLiteral("รถไฟ")));
        QVERIFY(!isDividedByBlanks(QStringLiteral("小麦粉")));
        QVERIFY(!isDividedByBlanks(QStringLiteral("الساعة")));
        QVERIFY(!isDividedByBlanks(QStringLiteral("File")));
    }

    void putsWordsIntoReadingOrder_data()
    {
        QTest::addColumn<QStringList>("seen"); // from the left
        QTest::addColumn<QStringList>("read");
        QTest::newRow("from left to right")
            << QStringList{"one", "2", "three"} << QStringList{"one", "2", "three"};
        QTest::newRow("from right to left")
            << QStringList{"ג", "ב", "א"} << QStringList{"א", "ב", "ג"};
        QTest::newRow("a number") << QStringList{"ב", "12", "א"} << QStringList{"א", "12", "ב"};
        QTest::newRow("Latin words in place") << QStringList{"ב", "HP", "LaserJet", "12", "א"}
                                              << QStringList{"א", "HP", "LaserJet", "12", "ב"};
        QTest::newRow("numbers go with the line")
            << QStringList{"2025", "3", "א"} << QStringList{"א", "3", "2025"};
        QTest::newRow("mostly Latin")
            << QStringList{"Internet", "Explorer", "א"} << QStringList{"א", "Internet", "Explorer"};
    }
    void putsWordsIntoReadingOrder()
    {
        QFETCH(QStringList, seen);
        QStringList read;
        for (const std::size_t i : readingOrderOf({seen.begin(), seen.end()}))
            read += seen.at(qsizetype(i));
        QTEST(read, "read");
    }

    void putsTheMarksOfALineFromRightToLeftBehind_data()
    {
        QTest::addColumn<QString>("seen");
        QTest::addColumn<QString>("read");
        QTest::newRow("full stop") << ".12:10"
                                   << "12:10.";
        QTest::newRow("brackets") << "()main"
                                  << "main()";
        QTest::newRow("both sides") << "(12)"
                                    << "(12)";
        QTest::newRow("nothing else") << "..."
                                      << "...";
        QTest::newRow("none") << "12"
                              << "12";
        QTest::newRow("empty") << ""
                               << "";
    }
    void putsTheMarksOfALineFromRightToLeftBehind()
    {
        QFETCH(QString, seen);
        QTEST(withMarksBehind(seen), "read");
    }

    void keepsAWordInOneScript_data()
    {
        QTest::addColumn<QString>("read");
        QTest::addColumn<QString>("expected");
        QTest::newRow("Latin with Cyrillic vowels") << "Firеfоx"
                                                    << "Firefox";
        QTest::newRow("Cyrillic with a Latin vowel") << "Фaйл"
                                                     << "Файл";
        QTest::newRow("Greek with a Latin o") << "Αρχείo"
                                              << "Αρχείο";
        QTest::newRow("nothing to tell by") << "НP"
                                            << "НP";
        QTest::newRow("Latin alone") << "Core"
                                     << "Core";
        QTest::newRow("Cyrillic alone") << "Сорок"
                                        << "Сорок";
    }
    void keepsAWordInOneScript()
    {
        QFETCH(QString, read);
        QTEST(inOneScript(read), "expected");
    }

    void takesOutMarksThatTurnTheDirection()
    {
        QCOMPARE(withoutDirectionMarks(QStringLiteral("\u200Fא\u200E1\u202C")),
                 QStringLiteral("א1"));
        // Joiners are part of the spelling.
        QCOMPARE(withoutDirectionMarks(QStringLiteral("क\u200Dष")), QStringLiteral("क\u200Dष"));
    }
};

QTEST_APPLESS_MAIN(TestScripts)
#include "tst_Scripts.moc"
