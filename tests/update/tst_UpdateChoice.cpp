// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/UpdateChoice.h"

#include <QTest>
#include <QTimeZone>

using namespace tovek;

namespace {

Version version(const char *text)
{
    return *Version::fromString(QString::fromLatin1(text));
}

UpdateItem itemOf(const char *text, PackageKind kind = PackageKind::appImage,
                  const char *system = nullptr)
{
    UpdateItem item{version(text), QString::fromLatin1(text), {}, {}, {}, {}};
    item.packages = {UpdatePackage{kind, QStringLiteral("x86_64"), {}, 1, {}, {}}};
    if (system)
        item.minimumSystem = version(system);
    return item;
}

} // namespace

class TestUpdateChoice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_situation = {version("1.5"),
                       version("2.36"),
                       PackageKind::appImage,
                       QStringLiteral("x86_64"),
                       {},
                       {},
                       false};
    }

    void offersTheNewestGreaterVersion_data()
    {
        QTest::addColumn<QStringList>("versions");
        QTest::addColumn<QString>("offered");
        const auto row = [](const char *name, const QStringList &versions, const char *offered) {
            QTest::newRow(name) << versions << QString::fromLatin1(offered);
        };
        row("lower", {"1.4"}, "");
        row("equal", {"1.5"}, "");
        row("equal with a zero", {"1.5.0"}, "");
        row("its own beta", {"1.5-beta1"}, "");
        row("greater", {"1.6"}, "1.6");
        row("several", {"1.6", "1.10", "1.9"}, "1.10");
        row("both sides", {"1.4", "1.6"}, "1.6");
    }
    void offersTheNewestGreaterVersion()
    {
        QFETCH(QStringList, versions);
        QFETCH(QString, offered);
        UpdateFeed feed{date(0), {}};
        for (const QString &text : versions)
            feed.items.append(itemOf(text.toLatin1().constData()));
        const auto choice = chooseUpdate(feed, m_situation);
        if (const auto *offer = std::get_if<UpdateOffer>(&choice))
            QCOMPARE(offer->item.versionText, offered);
        else
            QVERIFY(offered.isEmpty() && std::get<NoOffer>(choice) == NoOffer::upToDate);
    }

    void refusesAFeedOlderThanOneSeen()
    {
        const UpdateFeed feed{date(10), {itemOf("2")}};
        m_situation.newestFeed = date(10);
        QVERIFY(std::holds_alternative<UpdateOffer>(chooseUpdate(feed, m_situation)));
        m_situation.newestFeed = date(11);
        QVERIFY(reasonFor(feed) == NoOffer::oldFeed);
    }

    void offersOnlyWhatRunsHere()
    {
        UpdateFeed feed{date(0), {itemOf("2", PackageKind::appImage, "2.37")}};
        QVERIFY(reasonFor(feed) == NoOffer::needsNewerSystem);
        feed.items.append(itemOf("1.9", PackageKind::appImage, "2.36"));
        const auto choice = chooseUpdate(feed, m_situation);
        QVERIFY(std::holds_alternative<UpdateOffer>(choice));
        QCOMPARE(std::get<UpdateOffer>(choice).item.versionText, QStringLiteral("1.9"));
    }

    void offersOnlyTheKindThatIsInstalled()
    {
        const UpdateFeed feed{date(0), {itemOf("2", PackageKind::debian)}};
        QVERIFY(reasonFor(feed) == NoOffer::notForThisInstallation);
        m_situation.kind = PackageKind::debian;
        const auto choice = chooseUpdate(feed, m_situation);
        QVERIFY(std::holds_alternative<UpdateOffer>(choice));
        QVERIFY(std::get<UpdateOffer>(choice).package.kind == PackageKind::debian);
    }

    void keepsQuietAboutASkippedVersion()
    {
        UpdateFeed feed{date(0), {itemOf("2")}};
        m_situation.skipped = version("2");
        QVERIFY(reasonFor(feed) == NoOffer::upToDate);
        m_situation.isRequested = true;
        QVERIFY(std::holds_alternative<UpdateOffer>(chooseUpdate(feed, m_situation)));
        m_situation.isRequested = false;
        feed.items.append(itemOf("2.1"));
        QVERIFY(std::holds_alternative<UpdateOffer>(chooseUpdate(feed, m_situation)));
    }

private:
    static QDateTime date(int seconds)
    {
        return QDateTime(QDate(2025, 3, 7), QTime(14, 0), QTimeZone::utc()).addSecs(seconds);
    }
    std::optional<NoOffer> reasonFor(const UpdateFeed &feed) const
    {
        const auto choice = chooseUpdate(feed, m_situation);
        const auto *reason = std::get_if<NoOffer>(&choice);
        return reason ? std::optional(*reason) : std::nullopt;
    }

    UpdateSituation m_situation{version("1"), version("1"), {},   QStringLiteral("x86_64"),
                                {},           {},           false};
};

QTEST_APPLESS_MAIN(TestUpdateChoice)
#include "tst_UpdateChoice.moc"
