// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/Version.h"

#include <QTest>

using namespace tovek;

class TestVersion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void ordersVersions_data()
    {
        QTest::addColumn<QString>("lesser");
        QTest::addColumn<QString>("greater");
        const auto row = [](const char *lesser, const char *greater) {
            QTest::addRow("%s < %s", lesser, greater)
                << QString::fromLatin1(lesser) << QString::fromLatin1(greater);
        };
        row("1.0", "1.1");
        row("1.9", "1.10");
        row("1.9.9", "2");
        row("0.1.0", "0.1.1");
        row("1.0", "1.0.1");
        row("1.0-beta1", "1.0");
        row("1.0-beta2", "1.0-beta10");
        row("1.0-alpha9", "1.0-beta1");
        row("1.0-beta", "1.0-beta1");
        row("1.0-1", "1.0-a");
        row("0.9", "1.0-beta1");
    }
    void ordersVersions()
    {
        QFETCH(QString, lesser);
        QFETCH(QString, greater);
        const auto one = Version::fromString(lesser);
        const auto other = Version::fromString(greater);
        QVERIFY(one && other);
        QVERIFY(*one < *other);
        QVERIFY(*other > *one);
        QVERIFY(!(*one == *other));
        QVERIFY(*one <= *one && *one == *one);
    }

    void doesNotCountZerosAtTheEnd()
    {
        QVERIFY(Version::fromString(QStringLiteral("1"))
                == Version::fromString(QStringLiteral("1.0.0")));
        QVERIFY(Version::fromString(QStringLiteral("1.0-Beta1"))
                == Version::fromString(QStringLiteral("1-beta.1")));
    }

    void refusesWhatIsNoVersion_data()
    {
        QTest::addColumn<QString>("text");
        for (const char *text : {"", "v1", "1.", ".1", "1..2", "1.0-", "1 0", "1.0\n", "-1",
                                 "1.2.3.4.5.6.7", "1234567890", "1.0-\xc3\xa4"})
            QTest::addRow("\"%s\"", text) << QString::fromUtf8(text);
    }
    void refusesWhatIsNoVersion()
    {
        QFETCH(QString, text);
        QVERIFY(!Version::fromString(text));
    }

    void acceptsTheLargestVersion()
    {
        QVERIFY(Version::fromString(QStringLiteral("1.2.3.4.5.6")));
        QVERIFY(Version::fromString(QStringLiteral("999999999")));
    }
};

QTEST_APPLESS_MAIN(TestVersion)
#include "tst_Version.moc"
