// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Speaks the recogniser process's protocol without an engine. The second argument says how:
// "steady" needs 100 ms a line, "hangs" answers no line, "silent" never gets ready, "ends" ends
// at its first line, "boasts" tells of more characters than fit into any memory.

#include "platform/linux/ocr/LineProtocol.h"

#include <string_view>
#include <vector>

using namespace tovek::LineProtocol;

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    const std::string_view way = argv[2];
    const char isReady = 1;
    if (way == "silent")
        ::pause();
    if (::write(0, &isReady, 1) != 1)
        return 1;
    LineRequest request;
    while (readAll(0, &request, sizeof(request))) {
        std::vector<char> grey(std::size_t(request.width) * stripHeight);
        if (way == "ends" || !readAll(0, grey.data(), grey.size()))
            return 1;
        if (way == "hangs")
            ::pause();
        ::usleep(100000);
        Symbol symbol{0, float(request.width), 90, 1, 1, "a"};
        const LineReply reply{way == "boasts" ? 0xffffffff : 1};
        if (::write(0, &reply, sizeof(reply)) != sizeof(reply)
            || ::write(0, &symbol, sizeof(symbol)) != sizeof(symbol))
            return 1;
    }
    return 0;
}
