// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/mutter/MutterScreenCast.h"

#include "platform/linux/BusProbe.h"
#include "platform/mutter/MutterMonitors.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>

namespace tovek {

namespace {

const auto castService = QStringLiteral("org.gnome.Mutter.ScreenCast");
const auto castPath = QStringLiteral("/org/gnome/Mutter/ScreenCast");
const auto sessionInterface = QStringLiteral("org.gnome.Mutter.ScreenCast.Session");
const auto streamInterface = QStringLiteral("org.gnome.Mutter.ScreenCast.Stream");
constexpr uint hiddenCursor = 0;
constexpr std::chrono::milliseconds busLimit{300};

int castCount = 0;

std::vector<QSize> sizesOf(const std::vector<PortalDisplay> &displays)
{
    std::vector<QSize> sizes;
    for (const PortalDisplay &display : displays)
        sizes.push_back(display.native.size());
    return sizes;
}

} // namespace

bool MutterScreenCast::isOffered(const QDBusConnection &bus)
{
    return bus.isConnected() && bus.interface()->isServiceRegistered(castService);
}

MutterScreenCast::MutterScreenCast(const QString &program, std::vector<PortalDisplay> displays,
                                   std::chrono::milliseconds limit)
    : m_displays(std::move(displays))
    , m_connectionName(QStringLiteral("tovek-screencast-%1").arg(++castCount))
    , m_connection(QString())
    , m_frames(program, sizesOf(m_displays))
    , m_images(m_displays.size())
    , m_missing(m_displays.size())
{
    m_frames.onFrame = [this](size_t index, const QImage &frame) { addFrame(index, frame); };
    m_frames.onFailed = [this](const QString &reason) { finish(reason); };
    m_limit.setSingleShot(true);
    m_limit.callOnTimeout(this, [this] { finish(QStringLiteral("it took too long")); });
    m_limit.start(limit);
    // While the process starts. What a bus does not answer would be waited for by the library.
    if (const QByteArray address = sessionBusAddress();
        probeBus(address, busLimit) != BusHealth::silent)
        m_connection =
            QDBusConnection::connectToBus(QString::fromLatin1(address), m_connectionName);
    m_connection.connect(castService, QString(), streamInterface,
                         QStringLiteral("PipeWireStreamAdded"), this,
                         SLOT(streamAdded(uint, QDBusMessage)));
    listMonitors();
    openSession();
}

MutterScreenCast::~MutterScreenCast()
{
    QDBusConnection::disconnectFromBus(m_connectionName);
}

void MutterScreenCast::send(const QDBusMessage &call, Use use)
{
    auto *watcher =
        new QDBusPendingCallWatcher(m_connection.asyncCall(call), this); // until it is over
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, watcher, use = std::move(use)] {
                watcher->deleteLater();
                const QDBusMessage reply = watcher->reply();
                if (reply.type() != QDBusMessage::ReplyMessage)
                    finish(reply.errorMessage());
                else if (!m_isFinished)
                    use(reply);
            });
}

void MutterScreenCast::listMonitors()
{
    const auto service = QStringLiteral("org.gnome.Mutter.DisplayConfig");
    const auto call =
        QDBusMessage::createMethodCall(service, QStringLiteral("/org/gnome/Mutter/DisplayConfig"),
                                       service, QStringLiteral("GetCurrentState"));
    send(call, [this](const QDBusMessage &state) {
        m_connectors = connectorsOf(m_displays, mutterMonitors(state));
        if (m_connectors.isEmpty())
            return finish(QStringLiteral("mutter has other monitors than these"));
        recordWhenKnown();
    });
}

void MutterScreenCast::openSession()
{
    QDBusMessage call = QDBusMessage::createMethodCall(castService, castPath, castService,
                                                       QStringLiteral("CreateSession"));
    call << QVariantMap();
    send(call, [this](const QDBusMessage &reply) {
        m_session = reply.arguments().value(0).value<QDBusObjectPath>().path();
        recordWhenKnown();
    });
}

void MutterScreenCast::recordWhenKnown()
{
    if (m_connectors.isEmpty() || m_session.isEmpty())
        return;
    for (size_t index = 0; index < m_displays.size(); ++index) {
        QDBusMessage record = QDBusMessage::createMethodCall(
            castService, m_session, sessionInterface, QStringLiteral("RecordMonitor"));
        // Otherwise the panel says for five seconds that the screen is shared with somebody.
        record << m_connectors[qsizetype(index)]
               << QVariantMap{{QStringLiteral("cursor-mode"), hiddenCursor},
                              {QStringLiteral("is-recording"), true}};
        send(record, [this, index](const QDBusMessage &reply) {
            m_streams.emplace(reply.arguments().value(0).value<QDBusObjectPath>().path(), index);
        });
    }
    // Answered after those.
    send(QDBusMessage::createMethodCall(castService, m_session, sessionInterface,
                                        QStringLiteral("Start")),
         [](const QDBusMessage &) {});
}

void MutterScreenCast::streamAdded(uint node, const QDBusMessage &signal)
{
    const auto stream = m_streams.find(signal.path());
    if (stream != m_streams.end() && !m_isFinished)
        m_frames.take(stream->second, node);
}

void MutterScreenCast::addFrame(size_t index, const QImage &frame)
{
    m_images[index] = frame;
    if (--m_missing == 0)
        finish({});
}

void MutterScreenCast::finish(const QString &error)
{
    if (std::exchange(m_isFinished, true))
        return;
    m_limit.stop();
    if (!m_session.isEmpty())
        m_connection.send(QDBusMessage::createMethodCall(castService, m_session, sessionInterface,
                                                         QStringLiteral("Stop")));
    if (onFinished)
        onFinished(error.isEmpty() ? std::move(m_images) : std::vector<QImage>(), error);
}

} // namespace tovek
