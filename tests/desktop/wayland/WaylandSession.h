// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/Picture.h"
#include "support/Pixels.h"
#include "support/Wait.h"
#include "support/WaylandDesktop.h"
#include "support/WaylandHand.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <functional>

namespace tovek {

/// A Wayland desktop with a picture on each output, the program under test, and someone who uses
/// it. Places are pixels of an output, y down, unless they are said to be points.
struct WaylandSession
{
    explicit WaylandSession(WaylandPlan desktopPlan = {})
        : plan(std::move(desktopPlan))
        , desktop(plan)
    {
    }

    [[nodiscard]] bool start()
    {
        if (!desktop.start())
            return fail(desktop.error());
        QSize extent(0, 0);
        for (const WaylandMonitor &monitor : plan.monitors) {
            const QSize points = desktop.pointsOf(monitor);
            extent = {extent.width() + points.width(), std::max(extent.height(), points.height())};
        }
        hand = std::make_unique<WaylandHand>(desktop.socket(), extent);
        if (!hand->isWorking())
            return fail(QStringLiteral("no input can be injected"));
        if (!showPictures())
            return fail(QStringLiteral("no picture came"));
        QDir().mkpath(desktop.configFolder() + QStringLiteral("/tovek"));
        desktop.writeFile(desktop.configFolder() + QStringLiteral("/tovek/defaults.json"),
                          QJsonDocument(settings).toJson());
        if (beforeTheProgram && !beforeTheProgram())
            return fail(QStringLiteral("what the program needs does not start"));
        if (!readsText)
            variables[QStringLiteral("TESSDATA_PREFIX")] = desktop.home() + "/no-models";
        tovek = desktop.run(qEnvironmentVariable("TOVEK_PROGRAM"), {QStringLiteral("--background")},
                            variables);
        return (tovek && waitUntil([&] { return act("no-such-action"); }))
            || fail(QStringLiteral("the program does not start"));
    }

    /// Each pixel of each output unlike its neighbours, whatever the scale.
    [[nodiscard]] bool showPictures(bool isInverted = false)
    {
        for (size_t i = 0; i < plan.monitors.size(); ++i) {
            const QSize native = desktop.look(int(i)).size();
            QImage picture(native, QImage::Format_RGB32);
            for (int y = 0; y < native.height(); ++y) {
                auto *row = reinterpret_cast<QRgb *>(picture.scanLine(y));
                for (int x = 0; x < native.width(); ++x)
                    row[x] = pictureColor(uint32_t(x), uint32_t(y));
            }
            if (isInverted)
                picture.invertPixels();
            const QString path = QStringLiteral("%1/picture%2%3.png")
                                     .arg(desktop.home())
                                     .arg(i)
                                     .arg(isInverted ? "-inverted" : "");
            QBuffer png;
            png.open(QIODevice::WriteOnly);
            constexpr int uncompressed = 100;
            picture.save(&png, "PNG", uncompressed);
            if (!desktop.writeFile(path, png.data()) || !desktop.showPicture(int(i), path)
                || !waitUntil([&] { return isFine(desktop.look(int(i))); }))
                return false;
        }
        return true;
    }

    /// A command from outside; true once the program has begun to carry it out.
    [[nodiscard]] bool act(const char *action)
    {
        return !desktop
                    .output(QStringLiteral("gdbus"),
                            {QStringLiteral("call"), QStringLiteral("--session"),
                             QStringLiteral("--dest"), QStringLiteral("org.tovek.Tovek"),
                             QStringLiteral("--object-path"), QStringLiteral("/org/tovek/Tovek"),
                             QStringLiteral("--method"),
                             QStringLiteral("org.freedesktop.Application.ActivateAction"),
                             QString::fromLatin1(action), QStringLiteral("[]"),
                             QStringLiteral("{}")})
                    .isEmpty();
    }

    /// Moves the pointer to a pixel of an output.
    void point(int monitor, QPointF at) { hand->move(pointsAt(monitor, at)); }
    QPointF pointsAt(int monitor, QPointF at) const
    {
        double left = 0;
        for (int i = 0; i < monitor; ++i)
            left += desktop.pointsOf(plan.monitors[size_t(i)]).width();
        return at / plan.monitors[size_t(monitor)].scale + QPointF(left, 0);
    }

    /// Opens the overlays; the pointer waits in the corner of an output, where the cross tells that
    /// its own is there.
    [[nodiscard]] bool open(const char *action = "start-capture", int output = 0)
    {
        desktop.output(QStringLiteral("wl-copy"), {QStringLiteral("--clear")});
        m_waitingOn = output;
        point(output, corner);
        if (!isAsBefore())
            return false;
        m_arrow = pointer();
        return act(action) && waitUntil([&] { return showsCross(); });
    }
    /// The same a moment after a copy: its toast may be on the screen still, and is not to be in
    /// the next picture.
    [[nodiscard]] bool openAgain(const char *action = "start-capture")
    {
        desktop.output(QStringLiteral("wl-copy"), {QStringLiteral("--clear")});
        point(m_waitingOn, corner);
        return waitUntil([&] { return pointer() == m_arrow; }) && act(action)
            && waitUntil([&] { return showsCross(); });
    }
    void select(int monitor, QPointF from, QPointF to)
    {
        hand->drag(pointsAt(monitor, from), pointsAt(monitor, to));
    }
    [[nodiscard]] bool tap(const char *chord) { return hand->tap(QLatin1String(chord)); }
    /// An arrow, or the cross while the screens are frozen.
    QImage pointer() { return desktop.look(m_waitingOn).copy(pointerArea()); }
    /// Where the pointer's picture lies at `open`.
    static QRect pointerArea() { return {0, 0, 160, 160}; }
    /// Two pictures of an output, but for the pointer in its corner.
    static int differences(QImage one, QImage other)
    {
        for (QImage *image : {&one, &other}) {
            for (int y = 0; y < pointerArea().height(); ++y)
                std::fill_n(reinterpret_cast<QRgb *>(image->scanLine(y)), pointerArea().width(), 0);
        }
        return differentPixels(one, other);
    }
    /// The PNG on the clipboard; null when it does not come.
    QImage pasted()
    {
        QByteArray png;
        const bool came = waitUntil([&] {
            png = desktop.output(QStringLiteral("wl-paste"),
                                 {QStringLiteral("-t"), QStringLiteral("image/png")});
            return !png.isEmpty();
        });
        return came ? QImage::fromData(png) : QImage();
    }
    QImage expected(int monitor, QRectF part) const
    {
        return before[monitor].copy(part.toAlignedRect());
    }
    /// The pointer's hot spot when it waits, in pixels. Nearer to its corner KWin lights that up.
    static constexpr QPointF corner{80, 80};

    bool fail(const QString &reason)
    {
        error = reason;
        return false;
    }

    WaylandPlan plan;
    /// A preview would lie over what is compared.
    QJsonObject settings{{QStringLiteral("highlightText"), false},
                         {QStringLiteral("showInMenuBar"), false}};
    std::function<bool()> beforeTheProgram; ///< on the desktop, which is ready then
    std::map<QString, QString> variables; ///< of the program's environment
    bool readsText = false; ///< whether it finds the models to recognise text with
    WaylandDesktop desktop;
    std::unique_ptr<WaylandHand> hand;
    Program *tovek = nullptr;
    QList<QImage> before; ///< the outputs when overlays were first asked for
    QString error;

private:
    /// For longer than the arrow is hidden while the picture is taken.
    bool showsCross()
    {
        for (int look = 0; look < 8; ++look) {
            if (pointer() == m_arrow)
                return false;
        }
        return true;
    }

    QImage m_arrow;
    int m_waitingOn = 0;
    /// Nothing of an earlier capture is to be seen any more, its toast neither.
    bool isAsBefore()
    {
        for (int i = 0; i < int(plan.monitors.size()); ++i) {
            if (before.size() <= i)
                before.append(desktop.lookWhenStill(i));
            if (!waitUntil([&] { return differences(desktop.look(i), before[i]) == 0; }))
                return false;
        }
        return true;
    }
    /// Not the plain colour from before the picture.
    static bool isFine(const QImage &picture)
    {
        int changes = 0;
        for (int x = 1; x < picture.width(); ++x)
            changes += picture.pixel(x, picture.height() - 2)
                != picture.pixel(x - 1, picture.height() - 2);
        return changes > picture.width() / 2;
    }
};

} // namespace tovek
