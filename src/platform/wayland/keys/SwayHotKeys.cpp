// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/keys/SwayHotKeys.h"

#include "foundation/Log.h"
#include "platform/KeyboardLayout.h"
#include "platform/linux/KeyCodes.h"
#include "platform/wayland/keys/SwayBindings.h"

#include <QDir>
#include <QHash>
#include <QJsonObject>
#include <QTimer>

#include <algorithm>
#include <unistd.h>
#include <wordexp.h>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto reconnectDelay = 1s;
constexpr int mostAttempts = 5;
constexpr int deepestInclude = 8;

const QString downMark = QStringLiteral("down");
const QString upMark = QStringLiteral("up");

/// The key as sway's commands write it, once for each key of a keyboard that it stands for.
QStringList swayKeys(KeyCombo combo)
{
    QString modifiers;
    if (combo.modifiers & ComboModifier::control)
        modifiers += QLatin1String("Ctrl+");
    if (combo.modifiers & ComboModifier::option)
        modifiers += QLatin1String("Mod1+");
    if (combo.modifiers & ComboModifier::shift)
        modifiers += QLatin1String("Shift+");
    if (combo.modifiers & ComboModifier::command)
        modifiers += QLatin1String("Mod4+");
    QStringList keys;
    for (const int evdev : evdevCodes(int(combo.keyCode)))
        keys.append(modifiers + QString::number(evdev + windowSystemKeyOffset));
    return keys;
}

QStringList filesOf(const QString &pattern)
{
    wordexp_t words{};
    QStringList files;
    if (wordexp(pattern.toLocal8Bit().constData(), &words, WRDE_NOCMD) == 0) {
        for (size_t i = 0; i < words.we_wordc; ++i)
            files.append(QFile::decodeName(words.we_wordv[i]));
    }
    wordfree(&words);
    return files;
}

} // namespace

std::unique_ptr<SwayHotKeys> SwayHotKeys::create(const QString &socketPath,
                                                 const KeyboardLayout &layout)
{
    // The constructor is private.
    std::unique_ptr<SwayHotKeys> keys(new SwayHotKeys(socketPath, layout));
    return keys->connectToSway() ? std::move(keys) : nullptr;
}

SwayHotKeys::SwayHotKeys(QString socketPath, const KeyboardLayout &layout)
    : m_socketPath(std::move(socketPath))
    , m_layout(layout)
    , m_rawKeys([this](KeyCombo combo, bool isDown) { return onRawKey && onRawKey(combo, isDown); })
{
}

SwayHotKeys::~SwayHotKeys()
{
    while (!m_grabs.empty())
        SwayHotKeys::release(m_grabs.begin()->first);
    for (const auto &[number, combo] : m_leaving)
        unbind(combo);
}

int SwayHotKeys::grab(quint32 id, KeyCombo combo)
{
    Q_ASSERT(!m_grabs.contains(id));
    if (evdevCodes(int(combo.keyCode)).empty())
        return noSuchKey;
    const bool isOurs = std::any_of(m_grabs.begin(), m_grabs.end(),
                                    [&](const auto &entry) { return entry.second.combo == combo; });
    const Grab grab{combo, ++m_lastNumber};
    if (isOurs || !(isLeaving(combo) || bind(grab)))
        return heldElsewhere;
    m_grabs.emplace(id, grab);
    return 0;
}

void SwayHotKeys::release(quint32 id)
{
    const auto found = m_grabs.find(id);
    if (found == m_grabs.end())
        return;
    const auto [combo, number] = found->second;
    m_grabs.erase(found);
    // sway still uses the binding of a key that is down, and has been seen to run another in its
    // place (1.10): it stays until the key is up.
    if (m_repeats.release(number))
        m_leaving.emplace(number, combo);
    else if (!isLeaving(combo))
        unbind(combo);
}

bool SwayHotKeys::isTaken(KeyCombo combo)
{
    const auto answer = m_commands ? m_commands->ask(SwayIpc::Type::config) : std::nullopt;
    if (!answer)
        return false;
    QHash<QString, QString> variables;
    return isBoundInFile(answer->object().value(QLatin1String("config")).toString(), combo,
                         variables, 0);
}

void SwayHotKeys::startDispatching()
{
    m_isDispatching = true;
    watchEvents();
    dispatch();
}

bool SwayHotKeys::connectToSway()
{
    m_commands = SwayIpc::create(m_socketPath);
    m_events = SwayIpc::create(m_socketPath);
    // A reload of the configuration, which forgets our bindings, is told as one of workspaces.
    return m_commands && m_events
        && m_events->ask(SwayIpc::Type::subscribe, R"(["binding","workspace"])");
}

void SwayHotKeys::watchEvents()
{
    m_notifier.reset();
    if (!m_isDispatching || !m_events)
        return;
    m_notifier =
        std::make_unique<QSocketNotifier>(m_events->fileDescriptor(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, &m_context,
                     [this] { dispatch(); });
}

void SwayHotKeys::reconnect()
{
    if (!connectToSway()) {
        lost();
        return;
    }
    m_attempts = 0;
    bindAll();
    watchEvents();
}

void SwayHotKeys::lost()
{
    m_commands.reset();
    // It may be what called us.
    if (m_notifier) {
        m_notifier->setEnabled(false);
        m_notifier.release()->deleteLater();
    }
    m_events.reset();
    if (m_attempts++ == 0)
        logLine(QStringLiteral("Lost the connection to sway: shortcuts do not work"));
    if (m_attempts <= mostAttempts)
        QTimer::singleShot(reconnectDelay, &m_context, [this] { reconnect(); });
}

void SwayHotKeys::dispatch()
{
    if (!m_events)
        return;
    // A callback may change the grabs, or run a main loop of its own.
    for (const SwayIpc::Message &message : m_events->take()) {
        const QJsonObject event = QJsonDocument::fromJson(message.payload).object();
        const QString change = event.value(QLatin1String("change")).toString();
        if (message.type == SwayIpc::Type::bindingEvent)
            handleBinding(event.value(QLatin1String("binding"))
                              .toObject()
                              .value(QLatin1String("command"))
                              .toString());
        else if (message.type == SwayIpc::Type::workspaceEvent && change == QLatin1String("reload"))
            bindAll();
    }
    if (m_events && !m_events->isConnected())
        lost();
}

void SwayHotKeys::handleBinding(const QString &command)
{
    const bool isDown = command.endsWith(downMark);
    for (auto leaving = m_leaving.begin(); leaving != m_leaving.end(); ++leaving) {
        if (!command.startsWith(mark(leaving->first)))
            continue;
        if (!isDown)
            unbindLeaving(leaving);
        return;
    }
    for (const auto &[id, grab] : m_grabs) {
        if (!command.startsWith(mark(grab.number)))
            continue;
        const quint32 meant = id; // a callback may end the grab
        if (isDown && m_repeats.press(grab.number) && onPressed)
            onPressed(meant);
        else if (!isDown && m_repeats.release(grab.number) && onReleased)
            onReleased(meant);
        return;
    }
}

void SwayHotKeys::unbindLeaving(std::map<quint32, KeyCombo>::iterator leaving)
{
    const KeyCombo combo = leaving->second;
    m_leaving.erase(leaving);
    unbind(combo);
    for (const auto &[id, grab] : m_grabs) {
        if (grab.combo == combo)
            (void)bind(grab); // it has been free until now
    }
}

bool SwayHotKeys::isLeaving(KeyCombo combo) const
{
    return std::any_of(m_leaving.begin(), m_leaving.end(),
                       [&](const auto &entry) { return entry.second == combo; });
}

bool SwayHotKeys::run(const QString &command)
{
    return m_commands && m_commands->run(command);
}

void SwayHotKeys::bindAll()
{
    m_leaving.clear();
    for (const auto &[id, grab] : m_grabs) {
        if (!bind(grab))
            logLine(QStringLiteral("sway refuses to bind %1 again")
                        .arg(swayKeys(grab.combo).join(QLatin1String(", "))));
    }
}

bool SwayHotKeys::bind(const Grab &grab)
{
    const QStringList keys = swayKeys(grab.combo);
    return std::all_of(keys.begin(), keys.end(), [&](const QString &key) {
        const auto pressed = [&](const char *option) {
            return run(QStringLiteral("bindcode --no-warn %1 %2 %3%4")
                           .arg(QLatin1String(option), key, mark(grab.number), downMark));
        };
        // Older ones take an option that they do not know for a key.
        m_knowsNoRepeat = m_knowsNoRepeat && pressed("--no-repeat");
        return (m_knowsNoRepeat || pressed(""))
            && run(QStringLiteral("bindcode --no-warn --release %1 %2%3")
                       .arg(key, mark(grab.number), upMark));
    });
}

void SwayHotKeys::unbind(KeyCombo combo)
{
    for (const QString &key : swayKeys(combo)) {
        run(QStringLiteral("unbindcode ") + key);
        run(QStringLiteral("unbindcode --release ") + key);
    }
}

/// What tells our binding, of this process, from others that do nothing.
QString SwayHotKeys::mark(quint32 number) const
{
    return QStringLiteral("nop tovek %1 %2 ").arg(getpid()).arg(number);
}

bool SwayHotKeys::isBoundInFile(const QString &text, KeyCombo combo,
                                QHash<QString, QString> &variables, int depth) const
{
    const SwayConfiguration configuration = parseSwayConfiguration(text, variables);
    const bool isBoundHere = std::any_of(
        configuration.bindings.begin(), configuration.bindings.end(),
        [&](const SwayBinding &binding) { return isBoundTo(binding, combo, m_layout); });
    if (isBoundHere || depth >= deepestInclude)
        return isBoundHere;
    for (const QString &pattern : configuration.includes) {
        for (const QString &name : filesOf(pattern)) {
            QFile file(name);
            if (file.open(QIODevice::ReadOnly)
                && isBoundInFile(QString::fromUtf8(file.readAll()), combo, variables, depth + 1))
                return true;
        }
    }
    return false;
}

} // namespace tovek
