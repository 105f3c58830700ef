// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/UpdateSignature.h"

#include <QBuffer>
#include <QTest>

using namespace tovek;

class TestUpdateSignature : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void acceptsOnlyWhatWasSigned_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<qint64>("length");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("isValid");
        const QByteArray content = "the program";
        const QString version = QStringLiteral("1.2");
        QTest::newRow("all of it") << version << qint64(11) << content << true;
        QTest::newRow("another version") << QStringLiteral("1.3") << qint64(11) << content << false;
        QTest::newRow("another length") << version << qint64(12) << content << false;
        QTest::newRow("another file")
            << version << qint64(11) << QByteArray("The program") << false;
    }
    void acceptsOnlyWhatWasSigned()
    {
        QFETCH(QString, version);
        QFETCH(qint64, length);
        QFETCH(QByteArray, content);
        QFETCH(bool, isValid);
        const auto keys = UpdateSignature::makeKeyPair();
        const QByteArray signature = UpdateSignature::sign(keys.secretKey, QStringLiteral("1.2"),
                                                           11, digestOf("the program"));
        QCOMPARE(signature.size(), 64);
        QCOMPARE(
            UpdateSignature::isValid(signature, keys.publicKey, version, length, digestOf(content)),
            isValid);
    }

    void refusesOtherKeysAndBrokenSignatures()
    {
        const auto keys = UpdateSignature::makeKeyPair();
        const QString version = QStringLiteral("1");
        const QByteArray digest = digestOf("a");
        QByteArray signature = UpdateSignature::sign(keys.secretKey, version, 1, digest);
        const auto isValid = [&](const QByteArray &publicKey) {
            return UpdateSignature::isValid(signature, publicKey, version, 1, digest);
        };
        QVERIFY(isValid(keys.publicKey));
        QVERIFY(!isValid(UpdateSignature::makeKeyPair().publicKey));
        QVERIFY(!isValid(keys.publicKey.chopped(1)));
        QVERIFY(!isValid({}));
        signature[10] = char(signature[10] ^ 1);
        QVERIFY(!isValid(keys.publicKey));
        signature.chop(1);
        QVERIFY(!isValid(keys.publicKey));
    }

    void signsWithNothingButAKey()
    {
        QVERIFY(UpdateSignature::sign("short", QStringLiteral("1"), 1, digestOf("a")).isEmpty());
    }

    void digestsLongFilesByBlocks()
    {
        const QByteArray large(600 * 1024, 'a');
        QCOMPARE(digestOf(large), digestOf(large));
        QVERIFY(digestOf(large) != digestOf(large.chopped(1)));
        QBuffer closed;
        QTest::ignoreMessage(QtWarningMsg, "QIODevice::read (QBuffer): device not open");
        QVERIFY(!UpdateSignature::digest(closed));
    }

private:
    static QByteArray digestOf(const QByteArray &content)
    {
        QBuffer buffer;
        buffer.setData(content);
        return buffer.open(QIODevice::ReadOnly)
            ? UpdateSignature::digest(buffer).value_or(QByteArray())
            : QByteArray();
    }
};

QTEST_APPLESS_MAIN(TestUpdateSignature)
#include "tst_UpdateSignature.moc"
