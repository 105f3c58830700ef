// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Loaded into a program before all else: gives it no memory in large pieces, or no threads, while
// the file that it shares with the test says so (Scarcity.h).

#include "faults/Scarcity.h"

#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

extern "C" {
void *__libc_malloc(size_t bytes);
void *__libc_calloc(size_t count, size_t bytes);
void *__libc_realloc(void *memory, size_t bytes);
void *__libc_memalign(size_t alignment, size_t bytes);
}

namespace {

using tovek::ScarcityOrders;

const ScarcityOrders *orders = nullptr;

void *mapped(void *at, size_t bytes, int protection, int flags, int file, off_t offset)
{
    return reinterpret_cast<void *>(syscall(SYS_mmap, at, bytes, protection, flags, file, offset));
}

__attribute__((constructor)) void readOrders()
{
    const char *const path = std::getenv("TOVEK_SCARCITY");
    const int file = path ? open(path, O_RDONLY | O_CLOEXEC) : -1;
    if (file < 0)
        return;
    void *const memory = mapped(nullptr, sizeof(ScarcityOrders), PROT_READ, MAP_SHARED, file, 0);
    if (memory != MAP_FAILED)
        orders = static_cast<const ScarcityOrders *>(memory);
    close(file);
}

bool isRefused(size_t bytes)
{
    const size_t least = orders ? orders->leastRefused.load() : 0;
    if (least == 0 || bytes < least)
        return false;
    errno = ENOMEM;
    return true;
}

} // namespace

extern "C" {

void *malloc(size_t bytes)
{
    return isRefused(bytes) ? nullptr : __libc_malloc(bytes);
}

void *calloc(size_t count, size_t bytes)
{
    return isRefused(count * bytes) ? nullptr : __libc_calloc(count, bytes);
}

void *realloc(void *memory, size_t bytes)
{
    return isRefused(bytes) ? nullptr : __libc_realloc(memory, bytes);
}

void *memalign(size_t alignment, size_t bytes)
{
    return isRefused(bytes) ? nullptr : __libc_memalign(alignment, bytes);
}

void *aligned_alloc(size_t alignment, size_t bytes)
{
    return memalign(alignment, bytes);
}

int posix_memalign(void **memory, size_t alignment, size_t bytes)
{
    void *const found = memalign(alignment, bytes);
    if (!found)
        return ENOMEM;
    *memory = found;
    return 0;
}

void *mmap(void *at, size_t bytes, int protection, int flags, int file, off_t offset)
{
    return isRefused(bytes) ? MAP_FAILED : mapped(at, bytes, protection, flags, file, offset);
}

void *mmap64(void *at, size_t bytes, int protection, int flags, int file, off_t offset)
{
    return mmap(at, bytes, protection, flags, file, offset);
}

int pthread_create(pthread_t *thread, const pthread_attr_t *attributes, void *(*start)(void *),
                   void *argument)
{
    using Create = int (*)(pthread_t *, const pthread_attr_t *, void *(*)(void *), void *);
    static const auto create = reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"));
    if (orders && orders->hasNoThreads)
        return EAGAIN;
    return create(thread, attributes, start, argument);
}
}
