// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>

#include <memory>
#include <optional>

namespace tovek::bench {

/// A spot in a corner of every output of a Wayland desktop, below overlays and above all else. It
/// changes its colour before each frame, of which that pixel is copied: as long as nothing covers
/// it, the frame has the new colour. That is as fine as frames are, sixty a second.
class Witness
{
public:
    explicit Witness(const QString &socket);
    ~Witness();
    Witness(const Witness &) = delete;
    Witness &operator=(const Witness &) = delete;

    bool isWorking() const;
    /// Milliseconds until every output is covered, or none is. Absent after five seconds.
    [[nodiscard]] std::optional<double> waitUntilCovered();
    [[nodiscard]] bool waitUntilUncovered();

private:
    struct Globals;
    struct Spot;
    std::optional<double> waitUntil(bool isCovered);
    std::unique_ptr<Globals> m_globals;
};

} // namespace tovek::bench
