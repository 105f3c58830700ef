// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Whom the item takes for a good host.

#include "platform/x11/OnX11TestDesktop.h"
#include "platform/x11/X11Reply.h"
#include "platform/x11/tray/X11TrayItem.h"

#include <QGuiApplication>
#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

X11TestDesktop *desktop = nullptr;

xcb_atom_t atom(const QByteArray &name)
{
    xcb_connection_t *c = desktop->client();
    const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        c, xcb_intern_atom(c, 0, uint16_t(name.size()), name.constData()), nullptr));
    return reply->atom;
}

void setClass(xcb_window_t window, const QByteArray &name)
{
    if (!name.isEmpty())
        xcb_change_property(desktop->client(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS,
                            XCB_ATOM_STRING, 8, uint32_t(name.size()), name.constData());
}

} // namespace

class TestX11TrayItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void knowsPanelsThatShowItBadly_data()
    {
        QTest::addColumn<QByteArray>("ownClass");
        QTest::addColumn<QByteArray>("panelClass");
        QTest::addColumn<bool>("isLastResort");
        QTest::newRow("a panel") << QByteArray("trayer") << QByteArray() << false;
        QTest::newRow("named by its panel only") << QByteArray() << QByteArray("tint2") << false;
        QTest::newRow("without any name") << QByteArray() << QByteArray() << true;
        QTest::newRow("lxqt-panel") << QByteArray("lxqt-panel") << QByteArray() << true;
        QTest::newRow("lxqt-panel by its panel only")
            << QByteArray() << QByteArray("lxqt-panel") << true;
        QTest::newRow("xembedsniproxy") << QByteArray("xembedsniproxy") << QByteArray() << true;
    }
    void knowsPanelsThatShowItBadly()
    {
        QFETCH(QByteArray, ownClass);
        QFETCH(QByteArray, panelClass);
        const xcb_window_t panel = desktop->openWindow(QRect(0, 700, 800, 30), 0x333333);
        const xcb_window_t owner = desktop->openWindow(QRect(-1, -1, 1, 1), 0);
        setClass(panel, panelClass);
        setClass(owner, ownClass);
        xcb_connection_t *c = desktop->client();
        xcb_set_selection_owner(c, owner, atom("_NET_SYSTEM_TRAY_S0"), XCB_CURRENT_TIME);
        desktop->sync();
        const auto item = X11TrayItem::create();
        QVERIFY(item->hasHost());
        QTEST(item->isLastResort(), "isLastResort");
        xcb_destroy_window(c, owner);
        xcb_destroy_window(c, panel);
        desktop->sync();
    }
};

int main(int argc, char **argv)
{
    return runOnX11TestDesktop<TestX11TrayItem>(argc, argv, desktop, {800, 740});
}

#include "tst_X11TrayItem.moc"
