// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/wayland/WaylandConnection.h"

#include <QObject>
#include <QRect>
#include <QString>

struct zxdg_output_manager_v1;
struct zxdg_output_v1;

namespace tovek {

/// In which compositors count scales.
inline constexpr int scaleFractions = 120;

/// An output of the compositor as the user sees it: `native` is the way it is turned.
struct WaylandOutput
{
    uint32_t id = 0; ///< of its global; never given twice
    wl_output *handle = nullptr; ///< on our own connection
    QString name; ///< "DP-1"
    QString description;
    QSize native; ///< pixels
    int32_t transform = WL_OUTPUT_TRANSFORM_NORMAL; ///< from its panel's own orientation
    QRect logical; ///< points, y down, in the space of the desktop
    QRect layout; ///< its place in that space, which may count in something else than points
    double scale = 1; ///< pixels per point

    bool operator==(const WaylandOutput &) const = default;
};

/// The pixels per point of an output. The compositor tells the size in points rounded to whole
/// ones, so the scale is the fraction of 120 that both sides agree with and that is nearest.
double outputScale(QSize native, QSize logical);

/// The outputs in the compositor's order. Main thread only.
class WaylandOutputs : public QObject
{
    Q_OBJECT

public:
    explicit WaylandOutputs(std::shared_ptr<WaylandConnection> connection);
    ~WaylandOutputs() override;
    /// Those of which everything is known.
    std::vector<WaylandOutput> list() const;

Q_SIGNALS:
    void changed();

private:
    struct Entry;
    friend struct OutputEvents;
    void add(const WaylandGlobal &global);
    void remove(const WaylandGlobal &global);
    void announce();

    std::shared_ptr<WaylandConnection> m_connection;
    zxdg_output_manager_v1 *m_manager;
    std::vector<std::unique_ptr<Entry>> m_entries;
    std::vector<WaylandOutput> m_announced;
    bool m_isAnnouncing = false;
};

} // namespace tovek
