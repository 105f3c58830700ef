// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Nobody reads what the program says.

#include "desktop/Session.h"
#include "support/Skip.h"

#include <QTest>

using namespace tovek;

class TestOutput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void isNeededByNobody_data()
    {
        QTest::addColumn<QByteArray>("output");
        QTest::newRow("a pipe that is full") << QByteArray(R"(mkfifo "$HOME/pipe"
exec 3<>"$HOME/pipe"
head -c 65536 /dev/zero >&3
exec "$program" "$@" >&3 2>&3
)");
        QTest::newRow("a reader that left") << QByteArray(R"(mkfifo "$HOME/pipe"
: < "$HOME/pipe" &
exec "$program" "$@" > "$HOME/pipe" 2>&1
)");
    }
    void isNeededByNobody()
    {
        QFETCH(QByteArray, output);
        Session s;
        QVERIFY2(s.startDesktop(), qPrintable(s.error));
        QFile script(s.desktop.home() + QStringLiteral("/tovek"));
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\nprogram='" + qgetenv("TOVEK_PROGRAM") + "'\n" + output);
        script.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        script.close();
        s.tovek = std::make_unique<RunningTovek>(s.desktop, script.fileName());
        QVERIFY(s.tovek->start());
        // Each has something to say.
        for (int i = 0; i < 3; ++i) {
            QVERIFY(s.copy({150, 150}, {350, 300}));
            QVERIFY(!s.pasted().isEmpty());
        }
        QVERIFY(s.tovek->program().isRunning());
        QCOMPARE(s.tovek->program().stop(), 0);
    }
};

QTEST_GUILESS_MAIN(TestOutput)
#include "tst_Output.moc"
