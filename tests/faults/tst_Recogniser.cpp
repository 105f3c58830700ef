// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The processes that recognise text stand still, or die.

#include "desktop/Session.h"
#include "support/Skip.h"

#include <QElapsedTimer>
#include <QTest>

#include <csignal>

using namespace tovek;

namespace {

/// The processes of this name that the program has started.
QList<pid_t> childrenNamed(const char *name, qint64 parent)
{
    QList<pid_t> found;
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString &entry : entries) {
        QFile file(QStringLiteral("/proc/%1/stat").arg(entry));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray stat = file.readAll();
        const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        if (stat.contains(QByteArray("(") + name + ")") && fields.value(1).toLongLong() == parent)
            found.append(pid_t(entry.toInt()));
    }
    return found;
}

} // namespace

class TestRecogniser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { skipBecause(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void holdsUpNothing_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("stopped") << SIGSTOP;
        QTest::newRow("killed") << SIGKILL;
    }
    void holdsUpNothing()
    {
        QFETCH(int, signal);
        Session s;
        QVERIFY2(s.start(), qPrintable(s.error));
        const qint64 pid = s.tovek->program().pid();
        QVERIFY(s.open());
        QVERIFY(waitUntil([&] { return !childrenNamed("tovek-ocr", pid).isEmpty(); }));
        for (const pid_t engine : childrenNamed("tovek-ocr", pid))
            kill(engine, signal);
        s.select({150, 150}, {350, 300}); // it begins to read
        QVERIFY(s.tap("Return"));
        QCOMPARE(differentPixels(QImage::fromData(s.pasted()), s.expected({150, 150}, {350, 300})),
                 0);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(kill(pid_t(pid), SIGTERM), 0);
        QCOMPARE(s.tovek->program().waitForExit(), std::optional(0));
        QVERIFY2(timer.elapsed() < 4000, qPrintable(QString::number(timer.elapsed())));
    }

    void startsNoneForAnImage()
    {
        Session s;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.copy({100, 100}, {300, 250}));
        QVERIFY(!s.pasted().isEmpty());
        QTest::qWait(300);
        QCOMPARE(childrenNamed("tovek-ocr", s.tovek->program().pid()), QList<pid_t>());
    }
};

QTEST_GUILESS_MAIN(TestRecogniser)
#include "tst_Recogniser.moc"
