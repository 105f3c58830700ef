// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/UpdateFeed.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// Whatever comes from the network, the parser ends, and gives out only what it promises.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace tovek;
    const auto answer = readFeed(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    const auto *feed = std::get_if<UpdateFeed>(&answer);
    if (!feed)
        return 0;
    bool isKept = feed->date.isValid() && !feed->items.isEmpty();
    for (const UpdateItem &item : feed->items) {
        isKept = isKept && !item.packages.isEmpty();
        for (const UpdatePackage &package : item.packages)
            isKept = isKept && package.url.scheme() == QLatin1String("https") && package.length > 0
                && package.length <= largestPackage && package.signature.size() == 64;
    }
    if (!isKept)
        std::abort();
    return 0;
}
