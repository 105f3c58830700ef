// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/ToolkitWithoutPortal.h"

#include <QTest>

using namespace tovek;

namespace {

constexpr char variable[] = "QT_NO_XDG_DESKTOP_PORTAL";

} // namespace

class TestToolkitWithoutPortal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }
    void cleanup() { qunsetenv(variable); }

    void lastsNoLongerThanTheStart()
    {
        qunsetenv(variable);
        {
            const ToolkitWithoutPortal withoutPortal;
            QCOMPARE(qgetenv(variable), QByteArray("1"));
        }
        QVERIFY(!qEnvironmentVariableIsSet(variable));
    }

    void leavesWhatSomebodyHasChosen()
    {
        qputenv(variable, "0");
        {
            const ToolkitWithoutPortal withoutPortal;
            QCOMPARE(qgetenv(variable), QByteArray("0"));
        }
        QCOMPARE(qgetenv(variable), QByteArray("0"));
    }
};

QTEST_APPLESS_MAIN(TestToolkitWithoutPortal)
#include "tst_ToolkitWithoutPortal.moc"
