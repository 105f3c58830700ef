// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/capture/SwayFrontmostApp.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTest>

using namespace tovek;

/// What sway's tree says; that sway itself says it so is in the test of windows on its desktop.
class TestSwayFrontmostApp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheFocusedWindow_data()
    {
        QTest::addColumn<QJsonObject>("tree");
        QTest::addColumn<QRect>("expected");
        const QJsonObject window{
            {"pid", 7},
            {"focused", true},
            {"rect", QJsonObject{{"x", 10}, {"y", 40}, {"width", 300}, {"height", 200}}},
            {"deco_rect", QJsonObject{{"x", 0}, {"y", 0}, {"width", 300}, {"height", 20}}}};
        const auto in = [&](const char *layout, const char *children) {
            return QJsonObject{{"layout", layout},
                               {QLatin1String(children),
                                QJsonArray{QJsonObject{{"pid", 6}, {"focused", false}}, window}}};
        };
        const auto around = [](const QJsonObject &node) {
            return QJsonObject{{"nodes", QJsonArray{node}}};
        };
        QTest::newRow("tiled, with its title") << in("splith", "nodes") << QRect(10, 20, 300, 220);
        QTest::newRow("floating") << in("none", "floating_nodes") << QRect(10, 20, 300, 220);
        QTest::newRow("tabbed, without the titles of all")
            << in("tabbed", "nodes") << QRect(10, 40, 300, 200);
        QTest::newRow("deep down")
            << around(around(in("splitv", "nodes"))) << QRect(10, 20, 300, 220);
        QTest::newRow("an empty workspace")
            << around({{"type", "workspace"}, {"focused", true}}) << QRect();
        QTest::newRow("no answer") << QJsonObject() << QRect();
    }
    void findsTheFocusedWindow()
    {
        QFETCH(QJsonObject, tree);
        QFETCH(QRect, expected);
        const auto found = focusedSwayWindow(tree);
        QCOMPARE(found.value_or(QRect()), expected);
    }

    void isNotThereWithoutASocket()
    {
        QVERIFY(!SwayFrontmostApp::create({}, nullptr));
        QVERIFY(!SwayFrontmostApp::create(QStringLiteral("/nonexistent/socket"), nullptr));
    }
};

QTEST_APPLESS_MAIN(TestSwayFrontmostApp)
#include "tst_SwayFrontmostApp.moc"
