// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/UserDesktop.h"

#include <QDBusConnection>
#include <QImage>

namespace tovek {

/// A GNOME desktop of a test's own: the shell without a screen, with two monitors, XWayland, its
/// buses and services, and a home that nobody else uses. Takes some seconds to start.
class GnomeDesktop : public UserDesktop
{
public:
    GnomeDesktop();
    ~GnomeDesktop();

    /// The reason why this desktop cannot run on this machine; empty when it can.
    static QString missing();
    static QList<QRect> monitors() { return {{0, 0, 1600, 1200}, {1600, 0, 1280, 800}}; }

    struct Setup
    {
        /// Of the monitors, from left to right; the nearest that the desktop offers are taken.
        /// Empty: as the desktop starts, all of them 1.
        QList<double> scales;
        enum class Layout { inPoints, inPixels } layout = Layout::inPoints;
        bool hasXWayland = true;
        QImage background; ///< null: of one colour
    };
    [[nodiscard]] bool start() { return start(Setup()); }
    [[nodiscard]] bool start(const Setup &setup);
    /// As somebody in the desktop's settings.
    [[nodiscard]] bool setScales(const QList<double> &scales);
    /// Where a monitor lies, in units of the layout.
    QRect place(qsizetype monitor) const;
    double pixelsPerUnit(qsizetype monitor) const;
    QStringList pictures() const;

    /// What a script in the shell says.
    QString evaluate(const QString &script) const;
    QString focusedTitle() const;
    /// The windows that no window manager places and that are to be seen, by their titles. The
    /// desktop knows of a window, and of its focus, before it has anything to show or to send keys
    /// to.
    QStringList unmanagedTitles() const;
    /// Of those with this title that are shown.
    int windowCount(const QString &title) const;
    /// The whole desktop as the shell sees it.
    QImage look();
    /// A monitor in its own pixels.
    QImage lookAt(qsizetype monitor);
    /// As the user, in the desktop's store of answers.
    bool permitScreenshots(const QString &appId) const;
    bool act(const QString &action) const;

    void key(int evdevCode, bool isDown) const;
    void tap(int evdevCode) const;
    void moveTo(QPoint at);
    void button(bool isDown) const;

private:
    bool startShell();
    bool applyScales();
    /// The nearest that the desktop offers in its state for monitors of this size.
    static double nearestScale(double wanted, QSize size, const QString &state);
    QImage takeLook(const QString &method, const QVariantList &arguments);
    bool startHand();
    void callHand(const QString &method, const QVariantList &arguments) const;

    QDBusConnection m_bus;
    Setup m_setup;
    QString m_hand; ///< the session of remote control
    int m_pictures = 0;
};

} // namespace tovek
