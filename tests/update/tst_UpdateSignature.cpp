// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/UpdateSignature.h"

#include <QBuffer>
#include <QTest>
#include <QTimeZone>

using namespace tovek;

class TestUpdateSignature : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void acceptsOnlyWhatWasSigned_data()
    {
        QTest::addColumn<SignedEntry>("entry");
        QTest::addColumn<bool>("isValid");
        const auto row = [](const char *name, auto change) {
            SignedEntry changed = entry();
            change(changed);
            QTest::newRow(name) << changed << false;
        };
        QTest::newRow("all of it") << entry() << true;
        row("another version", [](SignedEntry &e) { e.version = QStringLiteral("1.3"); });
        row("another kind", [](SignedEntry &e) { e.kind = PackageKind::debian; });
        row("another machine", [](SignedEntry &e) { e.architecture = QStringLiteral("arm64"); });
        row("another length", [](SignedEntry &e) { ++e.length; });
        row("another file", [](SignedEntry &e) { e.digest = digestOf("The program"); });
        row("another system", [](SignedEntry &e) { e.minimumSystem = QStringLiteral("2.30"); });
        row("another date", [](SignedEntry &e) { e.date = e.date.addSecs(1); });
        row("one value run into the next",
            [](SignedEntry &e) { e.version += QStringLiteral("\nkind appimage"); });
    }
    void acceptsOnlyWhatWasSigned()
    {
        QFETCH(SignedEntry, entry);
        QFETCH(bool, isValid);
        const auto keys = UpdateSignature::makeKeyPair();
        const QByteArray signature =
            UpdateSignature::sign(keys.secretKey, TestUpdateSignature::entry());
        QCOMPARE(signature.size(), 64);
        QCOMPARE(UpdateSignature::isValid(signature, keys.publicKey, entry), isValid);
    }

    void refusesOtherKeysAndBrokenSignatures()
    {
        const auto keys = UpdateSignature::makeKeyPair();
        QByteArray signature = UpdateSignature::sign(keys.secretKey, entry());
        const auto isValid = [&](const QByteArray &publicKey) {
            return UpdateSignature::isValid(signature, publicKey, entry());
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

    void signsWithNothingButAKey() { QVERIFY(UpdateSignature::sign("short", entry()).isEmpty()); }

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
    static SignedEntry entry()
    {
        return {QStringLiteral("1.2"),
                PackageKind::appImage,
                QStringLiteral("x86_64"),
                11,
                digestOf("the program"),
                {},
                QDateTime(QDate(2026, 3, 7), QTime(14, 0), QTimeZone::utc())};
    }
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
