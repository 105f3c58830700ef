// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/X11ActivationToken.h"
#include "support/Skip.h"
#include "support/XConnection.h"
#include "support/XServer.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

/// What launchers told window managers since the last call.
QByteArray told(const XConnection &connection)
{
    QByteArray text;
    connection.sync();
    while (const XPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
        if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE)
            continue;
        const auto &message = reinterpret_cast<const xcb_client_message_event_t &>(*event);
        const char *type = text.isEmpty() ? "_NET_STARTUP_INFO_BEGIN" : "_NET_STARTUP_INFO";
        if (message.format == 8 && message.type == connection.atom(type))
            text.append(reinterpret_cast<const char *>(message.data.data8), 20);
    }
    return text.left(text.indexOf('\0'));
}

} // namespace

/// The window manager believes that a window was asked for only if it was told before.
class TestX11ActivationToken : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(XServer::missing()); }

    void isToldToTheWindowManager()
    {
        XServer server;
        QVERIFY2(server.start(), qPrintable(server.error()));
        qputenv("DISPLAY", server.displayName().toLocal8Bit());
        const XConnection manager(server.displayName());
        const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(manager, manager.root(), XCB_CW_EVENT_MASK, &events);
        manager.sync();
        const QString first = newX11ActivationToken();
        const QRegularExpression form(QStringLiteral("^tovek-\\d+-\\d+-.+_TIME(\\d+)$"));
        QVERIFY2(form.match(first).hasMatch(), qPrintable(first));
        const QByteArray message = told(manager);
        QVERIFY2(message.startsWith("new: ID=\"" + first.toUtf8() + "\" "), message.constData());
        QVERIFY2(message.endsWith(" TIMESTAMP=" + form.match(first).captured(1).toUtf8()),
                 message.constData());
        QVERIFY(newX11ActivationToken() != first);
    }

    void isEmptyWithoutAServer()
    {
        qputenv("DISPLAY", ":nowhere");
        QCOMPARE(newX11ActivationToken(), QString());
    }
};

QTEST_GUILESS_MAIN(TestX11ActivationToken)
#include "tst_X11ActivationToken.moc"
