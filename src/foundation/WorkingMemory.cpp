// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/WorkingMemory.h"

#include "foundation/Memory.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>
#ifdef __linux__
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace tovek {

#ifdef __linux__
namespace {

/// Pages in a row that were not there, between two that were: the system brings so many along with
/// each page anyway.
constexpr std::uintptr_t smallGap = 16;
/// Nobody has worked for so long that what the last work needed does not matter any more.
constexpr size_t mostRanges = 4096;

/// One mapping, as the system describes it in /proc/self/smaps.
struct Mapping
{
    std::uintptr_t begin = 0, end = 0;
    bool isReadOnlyFile = false;

    /// The first of the lines about a mapping; the others leave this as it is.
    bool readHead(const char *line)
    {
        char access[8] = "", path[2] = "";
        unsigned long from = 0, to = 0;
        if (std::sscanf(line, "%lx-%lx %4s %*s %*s %*s %1s", &from, &to, access, path) < 3)
            return false;
        begin = from;
        end = to;
        isReadOnlyFile = access[0] == 'r' && access[1] == '-' && path[0] == '/';
        return true;
    }
};

struct CloseFile
{
    void operator()(std::FILE *file) const { std::fclose(file); }
};

/// Calls `use` with each mapping that holds nothing but what is in its file. Some libraries patch
/// their own code when they start, and the linker the tables that it protects afterwards; such
/// pages are not the file's any more.
template <typename Use>
void forUnchangedFiles(Use use)
{
    const std::unique_ptr<std::FILE, CloseFile> maps(std::fopen("/proc/self/smaps", "re"));
    Mapping mapping;
    for (std::array<char, 512> line; maps && std::fgets(line.data(), line.size(), maps.get());) {
        unsigned long changed = 0;
        if (!mapping.readHead(line.data()) && mapping.isReadOnlyFile
            && std::sscanf(line.data(), "Anonymous: %lu kB", &changed) == 1 && changed == 0)
            use(mapping);
    }
}

/// Tells which pages of this process are in memory.
class PageMap
{
public:
    PageMap() : m_file(open("/proc/self/pagemap", O_RDONLY | O_CLOEXEC)) { }
    ~PageMap()
    {
        if (m_file >= 0)
            close(m_file);
    }
    PageMap(const PageMap &) = delete;
    PageMap &operator=(const PageMap &) = delete;

    /// Calls `use` with the number of each page in memory between the two, first to last.
    template <typename Use>
    void forPresent(std::uintptr_t from, std::uintptr_t to, Use use)
    {
        std::array<std::uint64_t, 512> entries;
        while (m_file >= 0 && from < to) {
            const size_t count = std::min<std::uintptr_t>(to - from, entries.size());
            const ssize_t bytes = pread(m_file, entries.data(), count * sizeof entries[0],
                                        off_t(from * sizeof entries[0]));
            if (bytes <= 0)
                return;
            for (size_t i = 0; i < size_t(bytes) / sizeof entries[0]; ++i) {
                if (entries[i] >> 63)
                    use(from + i);
            }
            from += count;
        }
    }

private:
    int m_file;
};

} // namespace

void WorkingMemory::release()
{
    releaseMemory();
    const auto pageSize = std::uintptr_t(sysconf(_SC_PAGESIZE));
    PageMap pages;
    if (m_released.size() > mostRanges)
        m_released.clear();
    forUnchangedFiles([&](const Mapping &mapping) {
        const size_t before = m_released.size();
        pages.forPresent(
            mapping.begin / pageSize, mapping.end / pageSize, [&](std::uintptr_t page) {
                const std::uintptr_t at = page * pageSize;
                if (m_released.size() > before && at - m_released.back().end <= smallGap * pageSize)
                    m_released.back().end = at + pageSize;
                else
                    m_released.push_back({at, at + pageSize});
            });
        madvise(reinterpret_cast<void *>(mapping.begin), mapping.end - mapping.begin,
                MADV_DONTNEED);
    });
}

void WorkingMemory::recall()
{
#ifdef MADV_POPULATE_READ
    if (m_released.empty())
        return;
    try {
        std::thread([released = std::exchange(m_released, {})] {
            for (const Range &range : released)
                madvise(reinterpret_cast<void *>(range.begin), range.end - range.begin,
                        MADV_POPULATE_READ);
        }).detach();
    } catch (const std::system_error &) {
        // Without a thread, work takes back by itself what it needs.
    }
#endif
}
#else
void WorkingMemory::release()
{
    releaseMemory();
}

void WorkingMemory::recall() { }
#endif

} // namespace tovek
