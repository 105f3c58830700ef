// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/WriteAll.h"

#include <cerrno>
#include <unistd.h>

namespace tovek {

int writeAll(int descriptor, const QByteArray &bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t written =
            ::write(descriptor, bytes.constData() + done, size_t(bytes.size() - done));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return written < 0 ? errno : EIO;
        done += written;
    }
    return 0;
}

} // namespace tovek
