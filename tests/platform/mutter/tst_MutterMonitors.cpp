// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/mutter/MutterMonitors.h"

#include <QDBusMessage>
#include <QTest>

using namespace tovek;

namespace {

/// A screen that is `pixels` large, and as large in the layout, from there on.
PortalDisplay display(quint32 id, QPoint place, QSize pixels)
{
    return {id, QRect(place, pixels), QRect(place, pixels)};
}

} // namespace

class TestMutterMonitors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsEachScreenByItsPlace()
    {
        const QSize size(100, 80);
        QCOMPARE(
            connectorsOf(
                {display(1, {100, 0}, size), display(2, {0, 0}, size), display(3, {0, 80}, size)},
                {{"left", {0, 0}, size}, {"below", {0, 80}, size}, {"right", {100, 0}, size}}),
            QStringList({"right", "left", "below"}));
    }

    void findsThemWhereTheLayoutHasOtherUnits()
    {
        // One program counts in points, the other in pixels.
        const QSize size(200, 160);
        QCOMPARE(connectorsOf({display(1, {400, 0}, size), display(2, {200, 0}, size),
                               display(3, {0, 0}, size)},
                              {{"a", {0, 0}, size}, {"b", {100, 0}, size}, {"c", {200, 0}, size}}),
                 QStringList({"c", "b", "a"}));
    }

    void findsNoneWhereTheScreensAreOthers_data()
    {
        QTest::addColumn<QSize>("second");
        QTest::addColumn<QString>("connector");
        QTest::addColumn<int>("count");
        QTest::addColumn<bool>("isFound");
        QTest::newRow("the same") << QSize(60, 90) << "b" << 2 << true;
        QTest::newRow("turned meanwhile") << QSize(90, 60) << "b" << 2 << false;
        QTest::newRow("unplugged meanwhile") << QSize(60, 90) << "b" << 1 << false;
        QTest::newRow("without a name") << QSize(60, 90) << "" << 2 << false;
    }
    void findsNoneWhereTheScreensAreOthers()
    {
        QFETCH(QSize, second);
        QFETCH(QString, connector);
        QFETCH(int, count);
        std::vector<MutterMonitor> monitors{{"a", {0, 0}, {100, 80}},
                                            {connector, {100, 0}, second}};
        monitors.resize(size_t(count));
        const QStringList found =
            connectorsOf({display(1, {0, 0}, {100, 80}), display(2, {100, 0}, {60, 90})}, monitors);
        QTEST(!found.isEmpty(), "isFound");
    }

    void readsNothingFromAReplyThatIsAnother()
    {
        QDBusMessage reply = QDBusMessage::createMethodCall("a.b", "/a", "a.b", "c");
        reply << 7u << QString();
        QVERIFY(mutterMonitors(reply).empty());
    }
};

QTEST_APPLESS_MAIN(TestMutterMonitors)
#include "tst_MutterMonitors.moc"
