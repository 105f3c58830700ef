// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/capture/KWinFrontmostApp.h"

#include "platform/linux/SessionBus.h"
#include "platform/wayland/WaylandOutputs.h"
#include "platform/wayland/capture/WaylandScreenGrabber.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QEventLoop>
#include <QTemporaryFile>
#include <QTimer>
#include <QWindow>

#include <chrono>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto frameLimit = 1s;
const QString kwinName = QStringLiteral("org.kde.KWin");
const QString answerPath = QStringLiteral("/org/tovek/ActiveWindow");
const QString answerInterface = QStringLiteral("org.tovek.ActiveWindow");

/// KWin 5 calls windows clients. The desktop below them and panels can be active, too.
constexpr char script[] = R"(
var active = workspace.activeWindow || workspace.activeClient;
var frame = active && !active.desktopWindow && !active.dock ? active.frameGeometry : null;
callDBus("%1", "%2", "%3", "Tell",
         frame ? [frame.x, frame.y, frame.width, frame.height].join(" ") : "");
)";

QDBusMessage kwinCall(const QString &path, const char *interface, const char *method)
{
    return QDBusMessage::createMethodCall(
        kwinName, path, QStringLiteral("org.kde.kwin.") + QLatin1String(interface),
        QLatin1String(method));
}

/// Where the script tells what it found.
class FrameReceiver : public QDBusVirtualObject
{
public:
    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override
    {
        if (message.member() != QLatin1String("Tell"))
            return false;
        const QStringList numbers =
            message.arguments().value(0).toString().split(QLatin1Char(' '), Qt::SkipEmptyParts);
        if (numbers.size() == 4)
            frame = QRectF(numbers[0].toDouble(), numbers[1].toDouble(), numbers[2].toDouble(),
                           numbers[3].toDouble());
        told.quit();
        return true;
    }

    QEventLoop told;
    std::optional<QRectF> frame;
};

/// Runs a script in KWin for as long as this lives.
class KWinScript
{
public:
    KWinScript(QDBusConnection bus, const QString &text) : m_bus(std::move(bus))
    {
        if (!m_file.open() || m_file.write(text.toUtf8()) < 0 || !m_file.flush())
            return;
        QDBusMessage load = kwinCall(QStringLiteral("/Scripting"), "Scripting", "loadScript");
        load.setArguments({m_file.fileName(), m_file.fileName()});
        const QDBusMessage reply = m_bus.call(load, QDBus::Block, int(frameLimit / 1ms));
        const int id = reply.arguments().value(0, -1).toInt();
        m_isLoaded = reply.type() == QDBusMessage::ReplyMessage && id >= 0;
        if (!m_isLoaded)
            return;
        // KWin 5 has its scripts elsewhere; who is not there does nothing.
        for (const char *path : {"/%1", "/Scripting/Script%1"})
            m_bus.send(kwinCall(QString::fromLatin1(path).arg(id), "Script", "run"));
    }
    ~KWinScript()
    {
        QDBusMessage unload = kwinCall(QStringLiteral("/Scripting"), "Scripting", "unloadScript");
        unload.setArguments({m_file.fileName()});
        if (m_isLoaded)
            m_bus.send(unload);
    }
    KWinScript(const KWinScript &) = delete;
    KWinScript &operator=(const KWinScript &) = delete;

    bool isLoaded() const { return m_isLoaded; }

private:
    QDBusConnection m_bus;
    QTemporaryFile m_file;
    bool m_isLoaded = false;
};

} // namespace

std::unique_ptr<KWinFrontmostApp> KWinFrontmostApp::create(std::shared_ptr<WaylandOutputs> outputs)
{
    const QDBusConnection bus = SessionBus::current();
    if (!bus.isConnected() || !bus.interface()->isServiceRegistered(kwinName))
        return nullptr;
    return std::unique_ptr<KWinFrontmostApp>(new KWinFrontmostApp(std::move(outputs)));
}

KWinFrontmostApp::KWinFrontmostApp(std::shared_ptr<WaylandOutputs> outputs)
    : m_outputs(std::move(outputs))
{
}

std::optional<QRect> KWinFrontmostApp::activeWindowFrame() const
{
    QDBusConnection bus = SessionBus::current();
    FrameReceiver receiver;
    if (!bus.registerVirtualObject(answerPath, &receiver))
        return std::nullopt;
    const KWinScript asking(
        bus, QString::fromLatin1(script).arg(bus.baseService(), answerPath, answerInterface));
    if (asking.isLoaded()) {
        QTimer::singleShot(frameLimit, &receiver.told, &QEventLoop::quit);
        receiver.told.exec(QEventLoop::ExcludeUserInputEvents);
    }
    bus.unregisterObject(answerPath);
    return receiver.frame ? nativeRectOf(*receiver.frame, m_outputs->list()) : std::nullopt;
}

void KWinFrontmostApp::bringForward(QWindow &window)
{
    window.raise();
    window.requestActivate();
}

} // namespace tovek
