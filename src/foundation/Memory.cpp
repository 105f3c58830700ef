// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/Memory.h"

#include <cstdlib>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace tovek {

void shareHeap()
{
#ifdef __GLIBC__
    mallopt(M_ARENA_MAX, 1);
#endif
}

void releaseMemory()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

} // namespace tovek
