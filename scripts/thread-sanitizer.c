// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// QProcess starts a program with clone(CLONE_VM | CLONE_VFORK): until then the child runs in its
// parent's memory. gcc 12's thread sanitizer (libtsan 2) takes each clone for a fork, and ends its
// "ignore this thread's locks" once for the child and once for the parent, which here is the same
// counter twice. From then on it is -1: no lock of the thread that started the program is seen any
// more, and everything that those locks protect is reported as a race. Linked into what
// scripts/sanitized builds, this gives the child memory of its own.

#define _GNU_SOURCE
#include <sched.h>
#include <stdarg.h>
#include <sys/types.h>

int __interceptor_clone(int (*run)(void *), void *stack, int flags, void *argument,
                        pid_t *parentThread, void *storage, pid_t *childThread);

int clone(int (*run)(void *), void *stack, int flags, void *argument, ...)
{
    va_list rest;
    va_start(rest, argument);
    pid_t *const parentThread = va_arg(rest, pid_t *);
    void *const storage = va_arg(rest, void *);
    pid_t *const childThread = va_arg(rest, pid_t *);
    va_end(rest);
    if (flags & CLONE_VFORK)
        flags &= ~CLONE_VM;
    return __interceptor_clone(run, stack, flags, argument, parentThread, storage, childThread);
}
