// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/tray/XSettings.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

/// Blocks as the settings daemon writes them.
class TestXSettings : public QObject
{
    Q_OBJECT

private:
    static QByteArray little(quint32 value, int size)
    {
        QByteArray bytes;
        for (int i = 0; i < size; ++i)
            bytes += char(value >> (8 * i));
        return bytes;
    }
    static QByteArray padded(QByteArray text)
    {
        while (text.size() % 4)
            text += '\0';
        return text;
    }
    static QByteArray head(int kind, const QByteArray &name)
    {
        return little(quint32(kind), 1) + '\0' + little(quint32(name.size()), 2) + padded(name)
            + little(0, 4);
    }
    /// A string, a colour and two numbers.
    static QByteArray block()
    {
        return QByteArray(4, '\0') + little(9, 4) + little(4, 4) //
            + head(1, "Net/ThemeName") + little(5, 4) + padded("Adwai") //
            + head(2, "Some/Color") + QByteArray(8, '\x7f') //
            + head(0, "Net/DoubleClickTime") + little(400, 4) //
            + head(0, "Net/EnableEventSounds") + little(0, 4);
    }

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void findsANumberByItsName_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<int>("expected"); // -1: absent
        QTest::newRow("the last one") << QByteArray("Net/EnableEventSounds") << 0;
        QTest::newRow("one before") << QByteArray("Net/DoubleClickTime") << 400;
        QTest::newRow("a string") << QByteArray("Net/ThemeName") << -1;
        QTest::newRow("not there") << QByteArray("Net/EnableEventSound") << -1;
    }
    void findsANumberByItsName()
    {
        QFETCH(QByteArray, name);
        QTEST(XSettings::integer(block(), name).value_or(-1), "expected");
    }

    void survivesEveryTruncation()
    {
        const QByteArray whole = block();
        for (qsizetype size = 0; size < whole.size(); ++size)
            QVERIFY(!XSettings::integer(whole.left(size), "Net/EnableEventSounds"));
        QVERIFY(XSettings::integer(whole, "Net/EnableEventSounds"));
    }

    void readsTheOtherByteOrder()
    {
        const QByteArray big("\x01\0\0\0\0\0\0\x09\0\0\0\x01\0\0\0\x02"
                             "AB\0\0"
                             "\0\0\0\0\0\0\x01\x02",
                             28);
        QCOMPARE(XSettings::integer(big, "AB").value_or(-1), 258);
    }
};

QTEST_APPLESS_MAIN(TestXSettings)
#include "tst_XSettings.moc"
