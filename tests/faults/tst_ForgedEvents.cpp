// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Other programs send an overlay what only its user and its session may.

#include "desktop/Session.h"
#include "support/Skip.h"
#include "support/XConnection.h"

#include <QTest>

using namespace tovek;

namespace {

/// Another program, and the overlay that it has chosen.
struct Intruder
{
    explicit Intruder(const Session &s) : connection(s.desktop.displayName())
    {
        const QList<SeenWindow> overlays = s.tovek->eye().overlays(QStringLiteral("tovek"));
        overlay = overlays.isEmpty() ? 0 : overlays.first().id;
    }
    void close() const
    {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = overlay;
        event.type = connection.atom("WM_PROTOCOLS");
        event.data.data32[0] = connection.atom("WM_DELETE_WINDOW");
        send(event);
    }
    void claimSize() const
    {
        xcb_configure_notify_event_t event{};
        event.response_type = XCB_CONFIGURE_NOTIFY;
        event.event = event.window = overlay;
        event.width = event.height = 32000;
        send(event);
    }
    void pressEscape() const
    {
        xcb_key_press_event_t event{};
        event.response_type = XCB_KEY_PRESS;
        event.detail = 9;
        event.event = overlay;
        event.root = connection.root();
        event.same_screen = 1;
        send(event);
    }
    void enlarge() const
    {
        const uint32_t size[]{20000, 20000};
        xcb_configure_window(connection, overlay,
                             XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
        connection.sync();
    }

    void hide() const
    {
        xcb_unmap_window(connection, overlay);
        connection.sync();
    }

    xcb_window_t overlay = 0;

private:
    template <typename Event>
    void send(const Event &event) const
    {
        char bytes[32]{};
        std::memcpy(bytes, &event, std::min(sizeof event, sizeof bytes));
        xcb_send_event(connection, 0, overlay, XCB_EVENT_MASK_NO_EVENT, bytes);
        connection.sync();
    }

    XConnection connection;
};

qint64 residentMegabytes(qint64 pid)
{
    QFile status(QStringLiteral("/proc/%1/statm").arg(pid));
    return status.open(QIODevice::ReadOnly)
        ? status.readAll().split(' ').value(1).toLongLong() * 4096 / 1000000
        : -1;
}

} // namespace

class TestForgedEvents : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { SKIP_BECAUSE(TestDesktop::missing()); }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void areWithoutEffect_data()
    {
        QTest::addColumn<int>("kind");
        QTest::newRow("to close it") << 0;
        QTest::newRow("of a huge size") << 1;
        QTest::newRow("a key that nobody pressed") << 2;
        QTest::newRow("a size that is real") << 3;
        QTest::newRow("hidden by another program") << 4;
    }
    void areWithoutEffect()
    {
        QFETCH(int, kind);
        Session s;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.open());
        const Intruder intruder(s);
        QVERIFY(intruder.overlay);
        const qint64 pid = s.tovek->program().pid();
        const qint64 before = residentMegabytes(pid);
        constexpr void (Intruder::*acts[])()
            const {&Intruder::close, &Intruder::claimSize, &Intruder::pressEscape,
                   &Intruder::enlarge, &Intruder::hide};
        (intruder.*acts[kind])();
        QTest::qWait(300);
        QVERIFY(waitUntil([&] { return s.tovek->covers(s.monitors()); }));
        QVERIFY(residentMegabytes(pid) < before + 100);
        // The capture goes on, and so do the next ones.
        s.select({150, 150}, {350, 300});
        QVERIFY(s.tap("Return"));
        QCOMPARE(differentPixels(QImage::fromData(s.pasted()), s.expected({150, 150}, {350, 300})),
                 0);
        QVERIFY(s.copy({100, 100}, {300, 250}));
    }
};

QTEST_GUILESS_MAIN(TestForgedEvents)
#include "tst_ForgedEvents.moc"
