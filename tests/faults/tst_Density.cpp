// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The desktop's settings daemon names dots per inch that make no sense.

#include "desktop/Session.h"
#include "support/SettingsDaemon.h"
#include "support/Skip.h"

#include <QTest>

using namespace tovek;

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr int mostMegabytes = 800; // what was freed is kept for a while, to catch its users
#else
constexpr int mostMegabytes = 400;
#endif

constexpr int perInch = 1024; ///< the setting counts these parts
constexpr int usual = 96 * perInch;

struct DenseSession : Session
{
    [[nodiscard]] bool start(int published)
    {
        if (!startDesktop())
            return false;
        daemon = std::make_unique<SettingsDaemon>(desktop.displayName(), "Xft/DPI", published);
        return tovek->start() || fail(tovek->error());
    }
    [[nodiscard]] bool capturesStill()
    {
        if (!open())
            return false;
        select({150, 150}, {301, 277});
        return tap("Return")
            && differentPixels(QImage::fromData(pasted()), expected({150, 150}, {301, 277})) == 0;
    }
    qsizetype refusals() const
    {
        return tovek->program().lines().filter(QStringLiteral("dots per inch are ignored")).size();
    }
    /// In megabytes.
    int memory() const
    {
        QFile status(QStringLiteral("/proc/%1/status").arg(tovek->program().pid()));
        const QByteArray all = status.open(QIODevice::ReadOnly) ? status.readAll() : QByteArray();
        return all.mid(all.indexOf("VmRSS:") + 6).trimmed().split(' ').first().toInt() / 1024;
    }

    std::unique_ptr<SettingsDaemon> daemon;
};

} // namespace

class TestDensity : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void isLivedWith_data()
    {
        QTest::addColumn<int>("published");
        QTest::addColumn<int>("refusals");
        QTest::newRow("none") << 0 << 0;
        QTest::newRow("less than one") << 7 << 0;
        QTest::newRow("one") << perInch << 0;
        QTest::newRow("negative") << -50 * perInch << 0;
        QTest::newRow("most") << 768 * perInch << 0;
        QTest::newRow("one more") << 769 * perInch << 1;
        QTest::newRow("a hundred thousand") << 100000 * perInch << 1;
        QTest::newRow("the largest number") << 0x7fffffff << 1;
    }
    void isLivedWith()
    {
        QFETCH(int, published);
        QFETCH(int, refusals);
        DenseSession s;
        QVERIFY2(s.start(usual), qPrintable(s.error));
        QVERIFY(s.capturesStill());
        s.daemon->publish(published);
        QVERIFY(s.capturesStill());
        s.daemon->publish(usual);
        QVERIFY(s.open());
        s.daemon->publish(published);
        s.select({150, 150}, {301, 277});
        QVERIFY(s.tap("Escape") && s.isClosed());
        QVERIFY(s.capturesStill());
        QVERIFY2(s.memory() < mostMegabytes, qPrintable(QString::number(s.memory())));
        QCOMPARE(s.refusals(), 2 * refusals);
        s.daemon->publish(published); // no news
        s.daemon->publish(usual);
        QVERIFY(s.capturesStill());
        QCOMPARE(s.refusals(), 2 * refusals);
    }

    void isLivedWithFromTheStart()
    {
        DenseSession s;
        QVERIFY2(s.start(100000 * perInch), qPrintable(s.error));
        QVERIFY(s.capturesStill());
        QCOMPARE(s.refusals(), 1);
        s.daemon->publish(usual);
        QVERIFY(s.capturesStill());
    }
};

QTEST_GUILESS_MAIN(TestDensity)
#include "tst_Density.moc"
