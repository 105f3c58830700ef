// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Takes one frame of each of some PipeWire streams. It is a process of its own so that the resident
// program carries neither the library nor its threads, and nothing is connected while it waits.
//
// Argument: the descriptor of the memory that the frames are written to. A line on standard input
// names a stream, by its node, the size that it has to have, and the place of its frame in that
// memory: "NODE WIDTH HEIGHT OFFSET". When the frame is there, "NODE" is written to standard
// output, and a reason to standard error when one of them cannot be had. The end of the input ends
// it.

#include "platform/mutter/FrameCopy.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <pipewire/pipewire.h>
#include <spa/param/video/format-utils.h>
#include <spa/utils/result.h>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

using tovek::copyFrame;
using tovek::FrameLayout;

constexpr std::uint32_t largestSide = 32767;
constexpr std::size_t longestLine = 200;

[[noreturn]] void fail(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    std::fputc('\n', stderr);
    std::exit(1);
}

/// The memory that the frames are written to.
struct Memory
{
    explicit Memory(int descriptor)
    {
        struct stat state
        {
        };
        if (fstat(descriptor, &state) != 0 || state.st_size <= 0)
            fail("descriptor %d is no memory", descriptor);
        size = std::size_t(state.st_size);
        void *mapped = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
        if (mapped == MAP_FAILED)
            fail("there is not enough memory");
        data = static_cast<std::uint8_t *>(mapped);
    }

    std::size_t size = 0;
    std::uint8_t *data = nullptr; // as long as the process
};

struct Wish
{
    std::uint32_t node = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::size_t offset = 0;
};

/// One stream, from which the first complete frame is copied.
class Stream
{
public:
    Stream(pw_core *core, const Wish &wish, const Memory &memory) : m_wish(wish), m_memory(memory)
    {
        m_stream =
            pw_stream_new(core, "tovek",
                          pw_properties_new(PW_KEY_MEDIA_TYPE, "Video", PW_KEY_MEDIA_CATEGORY,
                                            "Capture", PW_KEY_MEDIA_ROLE, "Screen", nullptr));
        if (!m_stream)
            fail("no stream can be made");
        pw_stream_add_listener(m_stream, &m_listener, &events(), this);
        std::uint8_t bytes[1024];
        spa_pod_builder builder{};
        spa_pod_builder_init(&builder, bytes, sizeof bytes);
        const spa_pod *formats = wantedFormats(builder);
        const auto flags =
            pw_stream_flags(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS
                            | PW_STREAM_FLAG_DONT_RECONNECT | PW_STREAM_FLAG_NO_CONVERT);
        const int result =
            pw_stream_connect(m_stream, PW_DIRECTION_INPUT, wish.node, flags, &formats, 1);
        if (result < 0)
            fail("stream %u: %s", wish.node, spa_strerror(result));
    }
    ~Stream() { pw_stream_destroy(m_stream); }
    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;

    /// PipeWire 1.4 leaves the stream of a source that is gone paused, as if another might come.
    void sourceGone(std::uint32_t node) const
    {
        if (node == m_wish.node && !m_isDone)
            fail("stream %u has ended", node);
    }

private:
    static const pw_stream_events &events()
    {
        static const pw_stream_events table = [] {
            pw_stream_events made{};
            made.version = PW_VERSION_STREAM_EVENTS;
            made.state_changed = [](void *self, pw_stream_state, pw_stream_state state,
                                    const char *error) {
                static_cast<Stream *>(self)->stateChanged(state, error);
            };
            made.param_changed = [](void *self, std::uint32_t id, const spa_pod *value) {
                if (id == SPA_PARAM_Format && value)
                    static_cast<Stream *>(self)->formatChanged(value);
            };
            made.process = [](void *self) { static_cast<Stream *>(self)->takeFrames(); };
            return made;
        }();
        return table;
    }

    /// Of memory that can be mapped: without modifiers, no buffer of the graphics card is offered.
    static const spa_pod *wantedFormats(spa_pod_builder &builder)
    {
        const spa_rectangle smallest{1, 1}, likely{1920, 1080}, largest{largestSide, largestSide};
        const spa_fraction slowest{0, 1}, fastest{1000, 1};
        return static_cast<const spa_pod *>(spa_pod_builder_add_object(
            &builder, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat, SPA_FORMAT_mediaType,
            SPA_POD_Id(SPA_MEDIA_TYPE_video), SPA_FORMAT_mediaSubtype,
            SPA_POD_Id(SPA_MEDIA_SUBTYPE_raw), SPA_FORMAT_VIDEO_format,
            SPA_POD_CHOICE_ENUM_Id(5, SPA_VIDEO_FORMAT_BGRx, SPA_VIDEO_FORMAT_BGRx,
                                   SPA_VIDEO_FORMAT_BGRA, SPA_VIDEO_FORMAT_RGBx,
                                   SPA_VIDEO_FORMAT_RGBA),
            SPA_FORMAT_VIDEO_size, SPA_POD_CHOICE_RANGE_Rectangle(&likely, &smallest, &largest),
            SPA_FORMAT_VIDEO_framerate,
            SPA_POD_CHOICE_RANGE_Fraction(&slowest, &slowest, &fastest)));
    }

    void stateChanged(pw_stream_state state, const char *error) const
    {
        if (state == PW_STREAM_STATE_ERROR)
            fail("stream %u: %s", m_wish.node, error ? error : "it failed");
        if (state == PW_STREAM_STATE_UNCONNECTED && !m_isDone)
            fail("stream %u has ended", m_wish.node);
    }

    void formatChanged(const spa_pod *value)
    {
        spa_video_info_raw format{};
        if (spa_format_video_raw_parse(value, &format) < 0)
            fail("stream %u has no format", m_wish.node);
        if (format.size.width != m_wish.width || format.size.height != m_wish.height)
            fail("stream %u shows %u x %u pixels, not %u x %u", m_wish.node, format.size.width,
                 format.size.height, m_wish.width, m_wish.height);
        const bool isRgb =
            format.format == SPA_VIDEO_FORMAT_RGBx || format.format == SPA_VIDEO_FORMAT_RGBA;
        m_order = isRgb ? FrameLayout::Order::rgb : FrameLayout::Order::bgr;

        std::uint8_t bytes[1024];
        spa_pod_builder builder{};
        spa_pod_builder_init(&builder, bytes, sizeof bytes);
        const int kinds = 1 << SPA_DATA_MemPtr | 1 << SPA_DATA_MemFd;
        const spa_pod *wanted[] = {
            static_cast<const spa_pod *>(spa_pod_builder_add_object(
                &builder, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers,
                SPA_PARAM_BUFFERS_dataType, SPA_POD_CHOICE_FLAGS_Int(kinds))),
            static_cast<const spa_pod *>(spa_pod_builder_add_object(
                &builder, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type,
                SPA_POD_Id(SPA_META_Header), SPA_PARAM_META_size,
                SPA_POD_Int(int(sizeof(spa_meta_header))))),
        };
        pw_stream_update_params(m_stream, wanted, 2);
    }

    void takeFrames()
    {
        while (pw_buffer *buffer = pw_stream_dequeue_buffer(m_stream)) {
            if (!m_isDone && take(*buffer->buffer)) {
                m_isDone = true;
                std::printf("%u\n", m_wish.node);
                std::fflush(stdout);
            }
            pw_stream_queue_buffer(m_stream, buffer);
        }
    }

    /// False where it is no complete frame: one tells no more than where the pointer is.
    bool take(const spa_buffer &buffer) const
    {
        if (buffer.n_datas < 1 || !buffer.datas[0].data)
            return false;
        const spa_data &data = buffer.datas[0];
        const auto *header = static_cast<const spa_meta_header *>(
            spa_buffer_find_meta_data(&buffer, SPA_META_Header, sizeof(spa_meta_header)));
        if (data.chunk->size == 0 || data.chunk->flags & SPA_CHUNK_FLAG_CORRUPTED
            || (header && header->flags & SPA_META_HEADER_FLAG_CORRUPTED))
            return false;
        const FrameLayout layout{data.maxsize, data.chunk->offset, data.chunk->stride,
                                 m_wish.width, m_wish.height,      m_order};
        if (!layout.isWhole())
            fail("stream %u has frames of another size than it says", m_wish.node);
        copyFrame(layout, static_cast<const std::uint8_t *>(data.data),
                  m_memory.data + m_wish.offset);
        return true;
    }

    const Wish m_wish;
    const Memory &m_memory;
    pw_stream *m_stream = nullptr;
    spa_hook m_listener{};
    FrameLayout::Order m_order = FrameLayout::Order::bgr;
    bool m_isDone = false;
};

/// The connection, and the streams that were asked for.
class Frames
{
public:
    explicit Frames(int memory)
        : m_memory(memory)
        , m_loop(pw_main_loop_new(nullptr))
        , m_context(m_loop ? pw_context_new(pw_main_loop_get_loop(m_loop), nullptr, 0) : nullptr)
        , m_core(m_context ? pw_context_connect(m_context, nullptr, 0) : nullptr)
    {
        if (!m_core)
            fail("PipeWire does not answer: %s", spa_strerror(-errno));
        static const pw_core_events events = [] {
            pw_core_events made{};
            made.version = PW_VERSION_CORE_EVENTS;
            made.error = [](void *, std::uint32_t id, int, int result, const char *message) {
                if (id == PW_ID_CORE)
                    fail("PipeWire: %s (%s)", message, spa_strerror(result));
            };
            return made;
        }();
        pw_core_add_listener(m_core, &m_listener, &events, this);
        watchSources();
        const auto read = [](void *self, int, std::uint32_t) {
            static_cast<Frames *>(self)->readInput();
        };
        if (!pw_loop_add_io(pw_main_loop_get_loop(m_loop), STDIN_FILENO, SPA_IO_IN | SPA_IO_HUP,
                            false, read, this))
            fail("the input cannot be watched");
    }

    void run() { pw_main_loop_run(m_loop); }

private:
    void watchSources()
    {
        static const pw_registry_events events = [] {
            pw_registry_events made{};
            made.version = PW_VERSION_REGISTRY_EVENTS;
            made.global_remove = [](void *self, std::uint32_t id) {
                for (const auto &stream : static_cast<Frames *>(self)->m_streams)
                    stream->sourceGone(id);
            };
            return made;
        }();
        m_registry = pw_core_get_registry(m_core, PW_VERSION_REGISTRY, 0);
        if (m_registry)
            pw_registry_add_listener(m_registry, &m_registryListener, &events, this);
    }
    void readInput()
    {
        char bytes[512];
        const ssize_t count = read(STDIN_FILENO, bytes, sizeof bytes);
        if (count < 0 && errno == EINTR)
            return;
        if (count <= 0)
            pw_main_loop_quit(m_loop);
        m_input.append(bytes, std::size_t(std::max<ssize_t>(count, 0)));
        for (std::size_t end = m_input.find('\n'); end != std::string::npos;
             end = m_input.find('\n')) {
            add(m_input.substr(0, end));
            m_input.erase(0, end + 1);
        }
        if (m_input.size() > longestLine)
            fail("that is no stream");
    }

    void add(const std::string &line)
    {
        Wish wish;
        if (std::sscanf(line.c_str(), "%u %u %u %zu", &wish.node, &wish.width, &wish.height,
                        &wish.offset)
                != 4
            || wish.width > largestSide || wish.height > largestSide || wish.offset > m_memory.size
            || std::size_t(wish.width) * wish.height * 4 > m_memory.size - wish.offset)
            fail("that is no stream: %s", line.c_str());
        m_streams.push_back(std::make_unique<Stream>(m_core, wish, m_memory));
    }

    Memory m_memory;
    pw_main_loop *m_loop; // these as long as the process
    pw_context *m_context;
    pw_core *m_core;
    pw_registry *m_registry = nullptr;
    spa_hook m_listener{}, m_registryListener{};
    std::string m_input;
    std::vector<std::unique_ptr<Stream>> m_streams;
};

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2)
        return 2;
    pw_init(&argc, &argv);
    Frames frames(std::atoi(argv[1]));
    frames.run();
    // The system takes all of it back quicker than it could be told, one by one.
    std::fflush(stdout);
    _exit(0);
}
