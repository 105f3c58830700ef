// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/UserDesktop.h"

#include <QImage>
#include <QJsonDocument>

#include <vector>

namespace tovek {

/// An output of a Wayland test desktop. They lie side by side from the left.
struct WaylandMonitor
{
    QSize native{1280, 800}; ///< of the panel, before it is turned
    double scale = 1;
    QString transform = QStringLiteral("normal"); ///< as sway writes it
};

struct WaylandPlan
{
    std::vector<WaylandMonitor> monitors{{}};
    bool hasXWayland = false;
    enum class Compositor { sway, kwin };
    Compositor compositor = Compositor::sway; ///< KWin has outputs of one kind only
    bool isInstalled = true; ///< the program under test; KWin shows others nothing
};

/// A Wayland desktop of a test's own: sway or KWin without a screen, a session bus, and a home that
/// nobody else uses. Everything in it ends with it. Sway refuses to run as root.
class WaylandDesktop : public UserDesktop
{
public:
    explicit WaylandDesktop(WaylandPlan plan = {});
    ~WaylandDesktop();

    /// The reason why this desktop cannot run on this machine; empty when it can.
    static QString missing(const WaylandPlan &plan = {});

    [[nodiscard]] bool start();

    /// The compositor's socket, for a connection of the test itself.
    QString socket() const;
    /// A message to sway, such as `{"output HEADLESS-2 scale 1.5"}` or `{"-t", "get_tree"}`; null
    /// when it refuses.
    QJsonDocument tell(const QStringList &message);

    /// The size of an output in points, as sway rounds it.
    static QSize pointsOf(const WaylandMonitor &monitor);
    /// Of its XWayland; empty until that is there.
    QString xDisplay();
    static QString monitorName(int index); ///< of sway
    QString outputName(int index) const;
    /// Has a picture cover an output.
    [[nodiscard]] bool showPicture(int output, const QString &path);
    /// The pixels of an output as Format_RGB32, with the pointer.
    QImage look(int monitor = 0);
    /// Waits until two looks are alike, and gives that picture; null at the deadline.
    QImage lookWhenStill(int monitor = 0);
    /// The titles of the windows, from anywhere in the tree.
    QStringList windowTitles();

private:
    bool isKWin() const { return m_plan.compositor == WaylandPlan::Compositor::kwin; }
    bool startSway();
    bool hasBackground();
    bool startKWin();
    bool install(const QString &name, const QByteArray &desktopFile);
    /// KWin lets each program do what its desktop file says: ours too, as it is packaged.
    bool installForKWin();

    QImage lookAtKWin(const QString &output);

    WaylandPlan m_plan;
    Program *m_kwinEye = nullptr;
};

} // namespace tovek
