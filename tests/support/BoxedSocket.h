// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <memory>

namespace tovek {

/// A Wayland socket at which a compositor offers ordinary windows and no more, as newer ones do to
/// programs in a sandbox: no layers, no pictures, no clipboard without the focus.
class BoxedSocket
{
public:
    /// Listens at `path`, for whoever may open it; `compositor` is the path of the true socket.
    BoxedSocket(const QString &path, const QString &compositor);
    ~BoxedSocket();
    BoxedSocket(const BoxedSocket &) = delete;
    BoxedSocket &operator=(const BoxedSocket &) = delete;

    bool isListening() const;

private:
    struct Listener;
    std::unique_ptr<Listener> m_listener;
};

} // namespace tovek
