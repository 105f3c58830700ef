// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/FakeClipboard.h"
#ifdef TOVEK_WITH_X11
#include "platform/x11/clipboard/X11Clipboard.h"
#include "support/SelectionReader.h"
#include "support/XServer.h"
#endif
#ifdef TOVEK_WITH_WAYLAND
#include "platform/wayland/WaylandConnection.h"
#include "platform/wayland/clipboard/DataControlClipboard.h"
#include "support/WaylandClipboardReader.h"
#include "support/WaylandDesktop.h"
#include "support/compositor/TestCompositor.h"
#endif

#include <QFile>
#include <QPromise>
#include <QRegularExpression>
#include <QTest>

#include <future>

using namespace tovek;

namespace {

/// What another program sees of a clipboard.
class Seen
{
public:
    virtual ~Seen() = default;
    virtual Clipboard &clipboard() = 0;
    virtual QStringList targets() = 0;
    virtual QByteArray png() = 0;
    virtual QString text() = 0;
};

class SeenFake : public Seen
{
public:
    Clipboard &clipboard() override { return m_fake; }
    QStringList targets() override { return m_fake.targets(); }
    QByteArray png() override { return m_fake.lastPng(); }
    QString text() override { return m_fake.lastText(); }

private:
    FakeClipboard m_fake;
};

#ifdef TOVEK_WITH_X11
class SeenX11 : public Seen
{
public:
    explicit SeenX11(const QByteArray &display)
        : m_display(display)
        , m_clipboard(X11Clipboard::create({}, QString::fromLatin1(display)))
    {
    }
    Clipboard &clipboard() override { return *m_clipboard; }
    QStringList targets() override
    {
        QStringList names = whileServing([this] { return SelectionReader(m_display).targets(); });
        for (const char *protocol : {"TARGETS", "MULTIPLE", "TIMESTAMP", "SAVE_TARGETS"})
            names.removeOne(QString::fromLatin1(protocol));
        return names;
    }
    QByteArray png() override { return read("image/png"); }
    QString text() override { return QString::fromUtf8(read("UTF8_STRING")); }

private:
    QByteArray read(const char *target)
    {
        return whileServing([this, target] {
            const auto value = SelectionReader(m_display).read(target);
            return value ? value->bytes : QByteArray();
        });
    }
    QByteArray m_display;
    std::unique_ptr<X11Clipboard> m_clipboard;
};
#endif

#ifdef TOVEK_WITH_WAYLAND
class SeenWayland : public Seen
{
public:
    explicit SeenWayland(WaylandDesktop &desktop)
        : m_reader(desktop)
        , m_clipboard(DataControlClipboard::create(connected(), {}))
    {
    }
    Clipboard &clipboard() override { return *m_clipboard; }
    QStringList targets() override { return m_reader.targets(); }
    QByteArray png() override { return m_reader.read("image/png"); }
    QString text() override { return QString::fromUtf8(m_reader.read("UTF8_STRING")); }

private:
    static std::shared_ptr<WaylandConnection> connected()
    {
        auto connection = WaylandConnection::open();
        connection->handleInMainLoop();
        return connection;
    }
    WaylandClipboardReader m_reader;
    std::unique_ptr<DataControlClipboard> m_clipboard;
};

/// On a compositor that offers one of the two protocols alone.
class SeenOneProtocol : public Seen
{
public:
    explicit SeenOneProtocol(const char *withheld)
        : m_compositor({.outputs = {}, .withheld = {QString::fromLatin1(withheld)}})
    {
        if (!m_compositor.start())
            qFatal("no compositor");
        const UseCompositor use(m_compositor);
        const auto connection = WaylandConnection::open();
        connection->handleInMainLoop();
        m_clipboard = DataControlClipboard::create(connection, {});
    }
    Clipboard &clipboard() override { return *m_clipboard; }
    QStringList targets() override
    {
        QCoreApplication::processEvents();
        return m_compositor.clipboardTypes();
    }
    QByteArray png() override { return read("image/png"); }
    QString text() override { return QString::fromUtf8(read("UTF8_STRING")); }

private:
    QByteArray read(const char *type)
    {
        QCoreApplication::processEvents();
        const int pipe = m_compositor.paste(type);
        if (pipe < 0)
            return {};
        auto bytes = std::async(std::launch::async, [pipe] {
            QFile file;
            return file.open(pipe, QIODevice::ReadOnly, QFile::AutoCloseHandle) ? file.readAll()
                                                                                : QByteArray();
        });
        while (bytes.wait_for(std::chrono::milliseconds(0)) != std::future_status::ready)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        return bytes.get();
    }

    TestCompositor m_compositor;
    std::unique_ptr<DataControlClipboard> m_clipboard;
};
#endif

} // namespace

/// What every clipboard does, whatever it is made of.
class TestClipboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
#ifdef TOVEK_WITH_X11
        if (XServer::missing().isEmpty() && m_server.start())
            m_display = m_server.displayName().toLatin1();
#endif
#ifdef TOVEK_WITH_WAYLAND
        if (WaylandDesktop::missing().isEmpty() && m_desktop.start())
            qputenv("WAYLAND_DISPLAY", m_desktop.socket().toLocal8Bit());
#endif
    }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".*"));
    }

    void isEmptyAfterClearing_data()
    {
        implementations();
    }
    void isEmptyAfterClearing()
    {
        const auto seen = make();
        if (!seen)
            QSKIP("the window system is missing");
        seen->clipboard().setText(QStringLiteral("x"));
        seen->clipboard().clear();
        QCOMPARE(seen->targets(), QStringList());
        QCOMPARE(seen->text(), QString());
    }

    void offersTextUnderItsNames_data()
    {
        implementations();
    }
    void offersTextUnderItsNames()
    {
        const auto seen = make();
        if (!seen)
            QSKIP("the window system is missing");
        const QString text = QStringLiteral("naïve ☃ line one\nline two");
        seen->clipboard().setText(text);
        QCOMPARE(seen->targets(),
                 QStringList(
                     {"STRING", "TEXT", "UTF8_STRING", "text/plain", "text/plain;charset=utf-8"}));
        QCOMPARE(seen->text(), text);
        QCOMPARE(seen->png(), QByteArray());
    }

    void offersAPngAndNothingElse_data()
    {
        implementations();
    }
    void offersAPngAndNothingElse()
    {
        const auto seen = make();
        if (!seen)
            QSKIP("the window system is missing");
        seen->clipboard().setText(QStringLiteral("before"));
        seen->clipboard().setPng(ready("the picture"));
        QCOMPARE(seen->targets(), QStringList("image/png"));
        QCOMPARE(seen->png(), QByteArray("the picture"));
        QCOMPARE(seen->text(), QString());
    }

    void isTakenBeforeTheBytesAreReady_data()
    {
        implementations();
    }
    void isTakenBeforeTheBytesAreReady()
    {
        const auto seen = make();
        if (!seen)
            QSKIP("the window system is missing");
        QPromise<QByteArray> promise;
        promise.start();
        seen->clipboard().setText(QStringLiteral("before"));
        seen->clipboard().setPng(promise.future());
        QCOMPARE(seen->targets(), QStringList("image/png"));
        QCOMPARE(seen->text(), QString());
        promise.addResult("late");
        promise.finish();
        QCOMPARE(seen->png(), QByteArray("late"));
    }

    void isLeftClearedByEmptyBytes_data()
    {
        implementations();
    }
    void isLeftClearedByEmptyBytes()
    {
        const auto seen = make();
        if (!seen)
            QSKIP("the window system is missing");
        seen->clipboard().setText(QStringLiteral("before"));
        seen->clipboard().setPng(ready(QByteArray()));
        QCOMPARE(seen->targets(), QStringList());
        QCOMPARE(seen->png(), QByteArray());
    }

    void keepsTheNewerContentWhenAnOlderPngIsLate_data()
    {
        implementations();
    }
    void keepsTheNewerContentWhenAnOlderPngIsLate()
    {
        const auto seen = make();
        if (!seen)
            QSKIP("the window system is missing");
        QPromise<QByteArray> promise;
        promise.start();
        seen->clipboard().setPng(promise.future());
        seen->clipboard().setText(QStringLiteral("newer"));
        promise.addResult("older");
        promise.finish();
        QCoreApplication::processEvents();
        QCOMPARE(seen->text(), QStringLiteral("newer"));
        QCOMPARE(seen->png(), QByteArray());
    }

private:
    static void implementations()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("fake") << QStringLiteral("fake");
        QTest::newRow("X11") << QStringLiteral("X11");
        QTest::newRow("Wayland") << QStringLiteral("Wayland");
        QTest::newRow("ext-data-control") << QStringLiteral("ext");
        QTest::newRow("wlr-data-control") << QStringLiteral("wlr");
    }
    std::unique_ptr<Seen> make()
    {
        QFETCH(QString, kind);
        if (kind == QLatin1String("fake"))
            return std::make_unique<SeenFake>();
#ifdef TOVEK_WITH_X11
        if (kind == QLatin1String("X11") && !m_display.isEmpty())
            return std::make_unique<SeenX11>(m_display);
#endif
#ifdef TOVEK_WITH_WAYLAND
        if (kind == QLatin1String("Wayland") && !m_desktop.socket().isEmpty())
            return std::make_unique<SeenWayland>(m_desktop);
        if (kind == QLatin1String("ext"))
            return std::make_unique<SeenOneProtocol>("zwlr_data_control_manager_v1");
        if (kind == QLatin1String("wlr"))
            return std::make_unique<SeenOneProtocol>("ext_data_control_manager_v1");
#endif
        return nullptr;
    }
    static QFuture<QByteArray> ready(const QByteArray &bytes)
    {
        QPromise<QByteArray> promise;
        promise.start();
        promise.addResult(bytes);
        promise.finish();
        return promise.future();
    }

#ifdef TOVEK_WITH_X11
    XServer m_server;
    QByteArray m_display;
#endif
#ifdef TOVEK_WITH_WAYLAND
    WaylandDesktop m_desktop;
#endif
};

QTEST_GUILESS_MAIN(TestClipboard)
#include "tst_Clipboard.moc"
