// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// tovek-screencast on a PipeWire of the test's own, with streams that no desktop makes on demand.

#include "platform/mutter/ScreenCastFrames.h"
#include "support/Skip.h"
#include "support/TestBus.h"
#include "support/Wait.h"

#include <QTest>

#include <atomic>
#include <csignal>
#include <pipewire/pipewire.h>
#include <spa/param/video/format-utils.h>
#include <unistd.h>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

constexpr QSize frameSize(60, 40);
constexpr int padding = 16; // bytes between rows
constexpr int stride = frameSize.width() * 4 + padding;
constexpr auto patience = 20s;

enum class Sending { frames, emptyOnes };

/// A stream of frames of one colour, the first of which are none: one is empty, and the next two
/// are said to be damaged.
class Source
{
public:
    Source(spa_video_format format, QRgb color, Sending sending)
        : m_format(format)
        , m_color(color)
        , m_sending(sending)
        , m_loop(pw_thread_loop_new("source", nullptr))
        , m_context(pw_context_new(pw_thread_loop_get_loop(m_loop), nullptr, 0))
    {
        pw_thread_loop_start(m_loop);
        pw_thread_loop_lock(m_loop);
        m_core = pw_context_connect(m_context, nullptr, 0);
        m_stream = pw_stream_new(m_core, "source", pw_properties_new(nullptr, nullptr));
        pw_stream_add_listener(m_stream, &m_listener, &events(), this);
        spa_pod_builder builder{};
        spa_pod_builder_init(&builder, m_bytes, sizeof m_bytes);
        spa_rectangle size{uint32_t(frameSize.width()), uint32_t(frameSize.height())};
        spa_fraction rate{0, 1};
        const auto *offered = static_cast<const spa_pod *>(spa_pod_builder_add_object(
            &builder, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat, SPA_FORMAT_mediaType,
            SPA_POD_Id(SPA_MEDIA_TYPE_video), SPA_FORMAT_mediaSubtype,
            SPA_POD_Id(SPA_MEDIA_SUBTYPE_raw), SPA_FORMAT_VIDEO_format, SPA_POD_Id(format),
            SPA_FORMAT_VIDEO_size, SPA_POD_Rectangle(&size), SPA_FORMAT_VIDEO_framerate,
            SPA_POD_Fraction(&rate)));
        pw_stream_connect(m_stream, PW_DIRECTION_OUTPUT, PW_ID_ANY,
                          pw_stream_flags(PW_STREAM_FLAG_DRIVER | PW_STREAM_FLAG_MAP_BUFFERS),
                          &offered, 1);
        m_timer = pw_loop_add_timer(
            pw_thread_loop_get_loop(m_loop),
            [](void *self, uint64_t) { static_cast<Source *>(self)->send(); }, this);
        timespec soon{0, 10'000'000};
        pw_loop_update_timer(pw_thread_loop_get_loop(m_loop), m_timer, &soon, &soon, false);
        pw_thread_loop_unlock(m_loop);
    }
    ~Source()
    {
        pw_thread_loop_stop(m_loop);
        pw_stream_destroy(m_stream);
        pw_core_disconnect(m_core);
        pw_context_destroy(m_context);
        pw_thread_loop_destroy(m_loop);
    }
    Source(const Source &) = delete;
    Source &operator=(const Source &) = delete;

    /// Absent until the daemon knows it.
    quint32 node() const { return m_node; }
    int sent() const { return m_sent; }

private:
    static const pw_stream_events &events()
    {
        static const pw_stream_events table = [] {
            pw_stream_events made{};
            made.version = PW_VERSION_STREAM_EVENTS;
            made.state_changed = [](void *self, pw_stream_state, pw_stream_state state,
                                    const char *) {
                auto *source = static_cast<Source *>(self);
                source->m_isStreaming = state == PW_STREAM_STATE_STREAMING;
                if (state == PW_STREAM_STATE_PAUSED)
                    source->m_node = pw_stream_get_node_id(source->m_stream);
            };
            made.param_changed = [](void *self, uint32_t id, const spa_pod *value) {
                if (id == SPA_PARAM_Format && value)
                    static_cast<Source *>(self)->offerBuffers();
            };
            return made;
        }();
        return table;
    }

    void offerBuffers()
    {
        spa_pod_builder builder{};
        spa_pod_builder_init(&builder, m_bytes, sizeof m_bytes);
        const spa_pod *offered[] = {
            static_cast<const spa_pod *>(spa_pod_builder_add_object(
                &builder, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers,
                SPA_PARAM_BUFFERS_buffers, SPA_POD_Int(4), SPA_PARAM_BUFFERS_blocks, SPA_POD_Int(1),
                SPA_PARAM_BUFFERS_size, SPA_POD_Int(stride * frameSize.height()),
                SPA_PARAM_BUFFERS_stride, SPA_POD_Int(stride))),
            static_cast<const spa_pod *>(spa_pod_builder_add_object(
                &builder, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type,
                SPA_POD_Id(SPA_META_Header), SPA_PARAM_META_size,
                SPA_POD_Int(int(sizeof(spa_meta_header))))),
        };
        pw_stream_update_params(m_stream, offered, 2);
    }

    void send()
    {
        pw_buffer *buffer = m_isStreaming ? pw_stream_dequeue_buffer(m_stream) : nullptr;
        if (!buffer)
            return;
        const int number = m_sent++;
        const bool isWhole = number >= 3 && m_sending == Sending::frames;
        spa_data &data = buffer->buffer->datas[0];
        fill(static_cast<uchar *>(data.data), isWhole ? m_color : 0xffbad000);
        data.chunk->offset = 0;
        data.chunk->stride = stride;
        data.chunk->size = number == 0 || m_sending == Sending::emptyOnes
            ? 0
            : uint32_t(stride * frameSize.height());
        data.chunk->flags = number == 1 ? SPA_CHUNK_FLAG_CORRUPTED : SPA_CHUNK_FLAG_NONE;
        auto *header = static_cast<spa_meta_header *>(
            spa_buffer_find_meta_data(buffer->buffer, SPA_META_Header, sizeof(spa_meta_header)));
        if (header)
            header->flags = number == 2 ? SPA_META_HEADER_FLAG_CORRUPTED : 0;
        pw_stream_queue_buffer(m_stream, buffer);
    }
    void fill(uchar *data, QRgb color) const
    {
        const bool isRgb = m_format == SPA_VIDEO_FORMAT_RGBx || m_format == SPA_VIDEO_FORMAT_RGBA;
        for (int y = 0; y < frameSize.height(); ++y) {
            for (int x = 0; x < frameSize.width(); ++x) {
                uchar *pixel = data + y * stride + x * 4;
                pixel[isRgb ? 0 : 2] = uchar(qRed(color));
                pixel[1] = uchar(qGreen(color));
                pixel[isRgb ? 2 : 0] = uchar(qBlue(color));
                pixel[3] = 7;
            }
        }
    }

    const spa_video_format m_format;
    const QRgb m_color;
    const Sending m_sending;
    uint8_t m_bytes[1024] = {};
    pw_thread_loop *m_loop;
    pw_context *m_context;
    pw_core *m_core = nullptr;
    pw_stream *m_stream = nullptr;
    spa_source *m_timer = nullptr;
    spa_hook m_listener{};
    bool m_isStreaming = false;
    std::atomic<quint32> m_node = SPA_ID_INVALID;
    std::atomic<int> m_sent = 0;
};

/// A process that this one started; 0 when there is none of that name.
pid_t childNamed(const char *name)
{
    const QByteArray start = QByteArray("(") + name + ") ";
    for (const QString &entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        QFile file(QStringLiteral("/proc/%1/stat").arg(entry));
        if (entry.toInt() == 0 || !file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray stat = file.readAll();
        const qsizetype at = stat.indexOf(start);
        if (at > 0 && stat.mid(at + start.size()).split(' ').value(1).toInt() == getpid())
            return entry.toInt();
    }
    return 0;
}

QImage filled(QRgb color)
{
    QImage image(frameSize, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

} // namespace

class TestScreenCastFrames : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        for (const char *name : {"dbus-daemon", "pipewire", "wireplumber"}) {
            if (QStandardPaths::findExecutable(QLatin1String(name)).isEmpty())
                QSKIP(qPrintable(QLatin1String(name) + QStringLiteral(" is not installed")));
        }
        QVERIFY(m_bus.start());
        qputenv("XDG_RUNTIME_DIR", m_folder.path().toUtf8());
        qputenv("HOME", m_folder.path().toUtf8());
        start(m_daemon, QStringLiteral("pipewire"));
        QVERIFY(waitUntil([this] { return QFile::exists(m_folder.filePath("pipewire-0")); }));
        start(m_manager, QStringLiteral("wireplumber"));
        pw_init(nullptr, nullptr);
    }
    void cleanupTestCase()
    {
        for (QProcess *process : {&m_manager, &m_daemon}) {
            process->kill();
            process->waitForFinished();
        }
    }

    void takesTheFirstWholeFrame_data()
    {
        QTest::addColumn<int>("format");
        QTest::newRow("BGRx") << int(SPA_VIDEO_FORMAT_BGRx);
        QTest::newRow("BGRA") << int(SPA_VIDEO_FORMAT_BGRA);
        QTest::newRow("RGBx") << int(SPA_VIDEO_FORMAT_RGBx);
        QTest::newRow("RGBA") << int(SPA_VIDEO_FORMAT_RGBA);
    }
    void takesTheFirstWholeFrame()
    {
        QFETCH(int, format);
        const Source source(spa_video_format(format), 0xff804020, Sending::frames);
        QTRY_VERIFY(source.node() != SPA_ID_INVALID);
        ScreenCastFrames frames(ScreenCastFrames::program(), {frameSize});
        watch(frames);
        frames.take(0, source.node());
        QVERIFY(waitUntil([this] { return !m_frames.empty() || !m_failure.isNull(); }, patience));
        QCOMPARE(m_failure, QString());
        QCOMPARE(m_frames.at(0), filled(0xff804020));
        QVERIFY(source.sent() >= 4);
    }

    void keepsStreamsApart()
    {
        const Source one(SPA_VIDEO_FORMAT_BGRx, 0xff112233, Sending::frames);
        const Source two(SPA_VIDEO_FORMAT_RGBx, 0xff445566, Sending::frames);
        QTRY_VERIFY(one.node() != SPA_ID_INVALID && two.node() != SPA_ID_INVALID);
        ScreenCastFrames frames(ScreenCastFrames::program(), {frameSize, frameSize});
        watch(frames);
        frames.take(0, two.node());
        frames.take(1, one.node());
        QVERIFY(
            waitUntil([this] { return m_frames.size() == 2 || !m_failure.isNull(); }, patience));
        QCOMPARE(m_failure, QString());
        QCOMPARE(m_frames.at(0), filled(0xff445566));
        QCOMPARE(m_frames.at(1), filled(0xff112233));
    }

    void refusesAnotherSize()
    {
        const Source source(SPA_VIDEO_FORMAT_BGRx, 0xff804020, Sending::frames);
        QTRY_VERIFY(source.node() != SPA_ID_INVALID);
        ScreenCastFrames frames(ScreenCastFrames::program(), {frameSize.transposed()});
        watch(frames);
        frames.take(0, source.node());
        QVERIFY(waitUntil([this] { return !m_failure.isNull(); }, patience));
        QVERIFY2(m_failure.endsWith("shows 60 x 40 pixels, not 40 x 60"), qPrintable(m_failure));
        QVERIFY(m_frames.empty());
    }

    void failsWhenAStreamEndsWithoutAFrame()
    {
        auto source =
            std::make_unique<Source>(SPA_VIDEO_FORMAT_BGRx, 0xff804020, Sending::emptyOnes);
        QTRY_VERIFY(source->node() != SPA_ID_INVALID);
        ScreenCastFrames frames(ScreenCastFrames::program(), {frameSize});
        watch(frames);
        frames.take(0, source->node());
        QVERIFY(waitUntil([&] { return source->sent() > 3; }, patience));
        QVERIFY(m_frames.empty() && m_failure.isNull());
        source.reset();
        QVERIFY(waitUntil([this] { return !m_failure.isNull(); }, patience));
        QVERIFY2(m_failure.startsWith("stream "), qPrintable(m_failure));
        QVERIFY(m_frames.empty());
    }

    void doesNotWaitForTheEndOfItsProcess()
    {
        // With a number as its only argument, this hangs.
        auto frames = std::make_unique<ScreenCastFrames>(
            QStandardPaths::findExecutable(QStringLiteral("sleep")), std::vector{frameSize});
        QTRY_VERIFY(childNamed("sleep") > 0);
        const pid_t process = childNamed("sleep");
        frames.reset();
        // Nobody has asked yet how it ended.
        QCOMPARE(kill(process, 0), 0);
        QTRY_VERIFY(kill(process, 0) != 0);
    }

    /// The last: no other one is started.
    void saysThatThereIsNoPipeWire()
    {
        m_daemon.kill();
        QVERIFY(m_daemon.waitForFinished());
        ScreenCastFrames frames(ScreenCastFrames::program(), {frameSize});
        watch(frames);
        QVERIFY(waitUntil([this] { return !m_failure.isNull(); }, patience));
        QVERIFY2(m_failure.startsWith("PipeWire does not answer"), qPrintable(m_failure));
    }

private:
    void watch(ScreenCastFrames &frames)
    {
        m_frames.clear();
        m_failure = QString();
        frames.onFrame = [this](size_t index, const QImage &frame) { m_frames[index] = frame; };
        frames.onFailed = [this](const QString &reason) { m_failure = reason; };
    }
    static void start(QProcess &process, const QString &program)
    {
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(program, QStringList());
        QVERIFY(process.waitForStarted());
    }

    QTemporaryDir m_folder;
    TestBus m_bus;
    QProcess m_daemon, m_manager;
    std::map<size_t, QImage> m_frames;
    QString m_failure;
};

QTEST_GUILESS_MAIN(TestScreenCastFrames)
#include "tst_ScreenCastFrames.moc"
