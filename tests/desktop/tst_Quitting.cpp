// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// What was copied or saved last, when the program is ended from outside.

#include "desktop/Session.h"
#include "support/Skip.h"

#include <QTest>

#include <csignal>

using namespace tovek;

namespace {

constexpr auto patience = std::chrono::seconds(20);

/// So large that the picture is still being made when the signal comes.
DesktopPlan large()
{
    DesktopPlan plan;
    plan.size = {3840, 2160};
    return plan;
}

constexpr QPoint from{20, 20};
constexpr QPoint to{3820, 2060};

} // namespace

class TestQuitting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing(large())); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void keepsTheCopy_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("terminate") << SIGTERM;
        QTest::newRow("interrupt") << SIGINT;
        QTest::newRow("hang up") << SIGHUP;
    }
    void keepsTheCopy()
    {
        QFETCH(int, signal);
        Session s(large());
        s.readsText = true;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.open());
        s.select(from, to);
        ClipboardReader reader(s.desktop.displayName());
        QVERIFY(s.tap("Return") && waitUntil([&] { return reader.hasOwner(); }, patience));
        QCOMPARE(kill(pid_t(s.tovek->program().pid()), signal), 0);
        QCOMPARE(s.tovek->program().waitForExit(patience), std::optional(0));
        const QImage image = QImage::fromData(s.pasted());
        QCOMPARE(differentPixels(image, s.expected(from, to)), 0);
    }

    void keepsTheSave()
    {
        Session s(large());
        s.readsText = true;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.open());
        s.select(from, to);
        QVERIFY(s.tap("Control_L+s") && s.isClosed());
        QCOMPARE(kill(pid_t(s.tovek->program().pid()), SIGTERM), 0);
        QCOMPARE(s.tovek->program().waitForExit(patience), std::optional(0));
        QCOMPARE(differentPixels(QImage::fromData(s.saved()), s.expected(from, to)), 0);
    }

    void keepsTheSaveWithoutAServer()
    {
        Session s(large());
        s.readsText = true;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.open());
        s.select(from, to);
        QVERIFY(s.tap("Control_L+s") && s.isClosed());
        s.desktop.server().kill();
        QCOMPARE(s.tovek->program().waitForExit(patience), std::optional(1));
        QCOMPARE(differentPixels(QImage::fromData(s.saved()), s.expected(from, to)), 0);
    }
};

QTEST_GUILESS_MAIN(TestQuitting)
#include "tst_Quitting.moc"
