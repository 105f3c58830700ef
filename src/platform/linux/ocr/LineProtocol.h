// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <unistd.h>

/// What the program and its recogniser processes say to each other over a socket. Both ends are
/// one build on one machine, so plain memory is sent. The process begins with one byte, 1 when it
/// is ready; then each LineRequest with its rows of grey values is answered by a LineReply with
/// its symbols.
namespace tovek::LineProtocol {

inline constexpr std::uint32_t stripHeight = 36;
inline constexpr std::uint32_t widestStrip = 1U << 15;
inline constexpr std::uint32_t mostLines = 64;

/// With which of the process's models a line is read: all, the English one, all others.
enum Models : std::uint32_t { all, english, native };

/// What a process is started with in place of languages that tells scripts instead of letters: a
/// request's lines are answered with the script's name as the one symbol, or with none.
inline constexpr const char *scriptsOnly = "osd";

struct LineRequest
{
    std::uint32_t width = 0;
    std::uint32_t models = 0; ///< one of those above
    std::uint32_t lines = 1; ///< so many times stripHeight rows of `width` bytes follow
};

struct LineReply
{
    std::uint32_t count = 0; ///< so many symbols follow
};

struct Symbol
{
    float left = 0;
    float right = 0;
    float confidence = 0;
    std::uint8_t startsWord = 0;
    std::uint8_t length = 0; ///< bytes of UTF-8
    char text[26] = {};
};

/// False at the end of the stream and on errors.
inline bool readAll(int fd, void *to, std::size_t size)
{
    auto *at = static_cast<char *>(to);
    while (size > 0) {
        const ssize_t got = ::read(fd, at, size);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        at += got;
        size -= std::size_t(got);
    }
    return true;
}

} // namespace tovek::LineProtocol
