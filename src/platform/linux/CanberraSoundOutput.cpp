// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/CanberraSoundOutput.h"

#include "foundation/Workers.h"

#include <QDeadlineTimer>
#include <QLibrary>

#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>

namespace tovek {

namespace {

// The part of libcanberra's interface that is used here; it has been stable since version 0.
struct Context;
struct Properties;
using Finished = void (*)(Context *, uint32_t id, int error, void *data);

struct Canberra
{
    int (*contextCreate)(Context **) = nullptr;
    int (*contextDestroy)(Context *) = nullptr;
    int (*contextChangePropsFull)(Context *, Properties *) = nullptr;
    int (*contextCacheFull)(Context *, Properties *) = nullptr;
    int (*contextPlayFull)(Context *, uint32_t, Properties *, Finished, void *) = nullptr;
    int (*contextCancel)(Context *, uint32_t) = nullptr;
    int (*proplistCreate)(Properties **) = nullptr;
    int (*proplistDestroy)(Properties *) = nullptr;
    int (*proplistSets)(Properties *, const char *, const char *) = nullptr;
    const char *(*strerror)(int) = nullptr;
};

/// Null, and the reason in `error`, where the library is not installed.
const Canberra *canberra(QString &error)
{
    static QLibrary library(QStringLiteral("canberra"), 0); // stays loaded: it keeps a thread
    static Canberra functions;
    static const bool isComplete = [] {
        const auto resolve = [](auto &function, const char *name) {
            function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(
                library.resolve(name));
            return function != nullptr;
        };
        return resolve(functions.contextCreate, "ca_context_create")
            && resolve(functions.contextDestroy, "ca_context_destroy")
            && resolve(functions.contextChangePropsFull, "ca_context_change_props_full")
            && resolve(functions.contextCacheFull, "ca_context_cache_full")
            && resolve(functions.contextPlayFull, "ca_context_play_full")
            && resolve(functions.contextCancel, "ca_context_cancel")
            && resolve(functions.proplistCreate, "ca_proplist_create")
            && resolve(functions.proplistDestroy, "ca_proplist_destroy")
            && resolve(functions.proplistSets, "ca_proplist_sets")
            && resolve(functions.strerror, "ca_strerror");
    }();
    if (!isComplete)
        error = library.errorString();
    return isComplete ? &functions : nullptr;
}

constexpr uint32_t soundId = 1;

/// A sound in the hands of the library. One thread at a time.
class CanberraSound
{
public:
    explicit CanberraSound(const Canberra &functions) : m_canberra(functions) { }

    ~CanberraSound()
    {
        if (m_sound)
            m_canberra.proplistDestroy(m_sound);
        if (m_context)
            m_canberra.contextDestroy(m_context);
        if (m_file >= 0)
            ::close(m_file);
    }
    CanberraSound(const CanberraSound &) = delete;
    CanberraSound &operator=(const CanberraSound &) = delete;

    bool load(const QByteArray &data, QString &error)
    {
        // The library takes files only, and the sound is part of the program: a file in memory.
        m_file = ::memfd_create("tovek-copy-sound", MFD_CLOEXEC);
        if (m_file < 0 || ::write(m_file, data.constData(), size_t(data.size())) != data.size()) {
            error = qt_error_string();
            return false;
        }
        const QByteArray path = "/proc/self/fd/" + QByteArray::number(m_file);
        if (check(m_canberra.contextCreate(&m_context), error)
            && check(m_canberra.proplistCreate(&m_sound), error)) {
            setProperty("application.name", "Tovek");
            setProperty("application.id", "org.tovek.Tovek");
            m_canberra.contextChangePropsFull(m_context, m_sound);
            setProperty("event.id", "tovek-copy");
            setProperty("event.description", "Screenshot copied");
            setProperty("media.role", "event");
            setProperty("media.filename", path.constData());
            // The server keeps the samples, so that a play is a message and no transfer.
            setProperty("canberra.cache-control", "permanent");
            setProperty("canberra.enable", "1");
            return cache(error);
        }
        return false;
    }

    void playFromStart()
    {
        m_canberra.contextCancel(m_context, soundId);
        m_canberra.contextPlayFull(m_context, soundId, m_sound, nullptr, nullptr);
    }

private:
    /// False for data that is no sound. A sound server that is missing is no failure: it may come.
    bool cache(QString &error)
    {
        constexpr int invalid = -2;
        constexpr int corrupt = -7;
        const int result = m_canberra.contextCacheFull(m_context, m_sound);
        return (result != invalid && result != corrupt) || check(result, error);
    }

    bool check(int result, QString &error) const
    {
        if (result != 0)
            error = QString::fromUtf8(m_canberra.strerror(result));
        return result == 0;
    }

    void setProperty(const char *key, const char *value)
    {
        m_canberra.proplistSets(m_sound, key, value);
    }

    const Canberra &m_canberra;
    Context *m_context = nullptr;
    Properties *m_sound = nullptr;
    int m_file = -1;
};

std::unique_ptr<CanberraSound> load(const QByteArray &data, QString &error)
{
    const Canberra *functions = canberra(error);
    if (!functions)
        return nullptr;
    auto sound = std::make_unique<CanberraSound>(*functions);
    return sound->load(data, error) ? std::move(sound) : nullptr;
}

constexpr std::chrono::milliseconds endLimit(200);
/// A sound confirms what a person has just done.
constexpr std::chrono::seconds latestPlay(2);

class CanberraSoundPlayer : public SoundPlayer
{
public:
    CanberraSoundPlayer(const QByteArray &data, std::function<void(const QString &)> onFailed,
                        std::function<bool()> areEventSoundsEnabled)
        : m_areEventSoundsEnabled(std::move(areEventSoundsEnabled))
        , m_state(std::make_shared<State>())
    {
        m_thread.start([state = m_state, data, onFailed = std::move(onFailed)] {
            QString error;
            state->sound = load(data, error);
            if (!state->sound)
                onFailed(error);
        });
    }

    ~CanberraSoundPlayer() override
    {
        m_thread.start([state = m_state] { state->sound.reset(); });
        // Left behind with a sound server that has stopped: its own end would wait for it.
        if (!m_thread.waitForAll(endLimit))
            m_thread.leaveBehind();
    }

    void playFromStart() override
    {
        if (m_areEventSoundsEnabled && !m_areEventSoundsEnabled())
            return;
        m_thread.start([state = m_state, limit = QDeadlineTimer(latestPlay)] {
            if (state->sound && !limit.hasExpired())
                state->sound->playFromStart();
        });
    }

private:
    /// The thread's.
    struct State
    {
        std::unique_ptr<CanberraSound> sound;
    };

    const std::function<bool()> m_areEventSoundsEnabled;
    std::shared_ptr<State> m_state;
    Workers m_thread{1};
};

} // namespace

CanberraSoundOutput::CanberraSoundOutput(std::function<bool()> areEventSoundsEnabled)
    : m_areEventSoundsEnabled(std::move(areEventSoundsEnabled))
{
}

std::unique_ptr<SoundPlayer>
CanberraSoundOutput::makePlayer(const QByteArray &data,
                                std::function<void(const QString &error)> onFailed)
{
    return std::make_unique<CanberraSoundPlayer>(data, std::move(onFailed),
                                                 m_areEventSoundsEnabled);
}

} // namespace tovek
