// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/KeyNames.h"

#include <QCoreApplication>
#include <QKeySequence>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

class TestKeyNames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void callsTheKeySuperWherePeopleReadIt()
    {
        KeyNames names;
        QCoreApplication::installTranslator(&names);
        const QKeySequence keys(Qt::META | Qt::SHIFT | Qt::Key_C);
        QCOMPARE(keys.toString(QKeySequence::NativeText), QStringLiteral("Super+Shift+C"));
        QCOMPARE(keys.toString(QKeySequence::PortableText), QStringLiteral("Meta+Shift+C"));
        QCOMPARE(QKeySequence(Qt::CTRL | Qt::Key_Q).toString(QKeySequence::NativeText),
                 QStringLiteral("Ctrl+Q"));
    }
};

QTEST_MAIN(TestKeyNames)
#include "tst_KeyNames.moc"
