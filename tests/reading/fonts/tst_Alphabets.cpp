// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/fonts/Alphabets.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestAlphabets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void givesLettersToTheAlphabetOfTheirWord_data()
    {
        QTest::addColumn<QString>("read");
        QTest::addColumn<QString>("meant");
        QTest::newRow("Latin with a Cyrillic letter") << "r\u0435turn"
                                                      << "return";
        QTest::newRow("shared shapes alone") << "\u0430\u0441\u0435"
                                             << "ace";
        QTest::newRow("Russian with Latin letters") << "\u041f\u043ep\u044f\u0434ok"
                                                    << "\u041f\u043e\u0440\u044f\u0434\u043ek";
        QTest::newRow("Greek with Latin letters") << "o\u03bb\u03bao"
                                                  << "\u03bf\u03bb\u03ba\u03bf";
        QTest::newRow("no letters") << "--[0]"
                                    << "--[0]";
    }
    void givesLettersToTheAlphabetOfTheirWord()
    {
        QFETCH(QString, read);
        QFETCH(QString, meant);
        std::u32string word = read.toStdU32String();
        settleAlphabet(word);
        QCOMPARE(QString::fromStdU32String(word), meant);
    }
};

QTEST_APPLESS_MAIN(TestAlphabets)
#include "tst_Alphabets.moc"
