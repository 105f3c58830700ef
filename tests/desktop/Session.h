// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/ClipboardReader.h"
#include "support/RunningTovek.h"
#include "support/Wait.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>

namespace tovek {

/// A desktop with a picture all over each monitor, the program under test, and someone who uses
/// it. Places are native pixels, y down.
struct Session
{
    explicit Session(DesktopPlan desktopPlan = {}, double screenScale = 1)
        : plan(std::move(desktopPlan))
        , scale(screenScale)
        , desktop(plan)
    {
    }

    QList<QRect> monitors() const
    {
        if (plan.monitors.empty())
            return {QRect(QPoint(), plan.size)};
        return {plan.monitors.begin(), plan.monitors.end()};
    }

    /// Everything but the program.
    [[nodiscard]] bool startDesktop()
    {
        if (!desktop.start())
            return fail(desktop.error());
        for (const QRect &monitor : monitors())
            picture = desktop.showPicture(monitor.adjusted(0, roomAbove, 0, 0));
        tovek = std::make_unique<RunningTovek>(desktop, qEnvironmentVariable("TOVEK_PROGRAM"));
        tovek->readsText = readsText;
        return picture != nullptr || fail(QStringLiteral("no picture came"));
    }
    /// Puts the selected part of a fresh capture on the clipboard, in one go. True once the
    /// overlays have gone again.
    [[nodiscard]] bool copy(QPoint from, QPoint to)
    {
        if (!tovek->open(QLatin1String(RunningTovek::captureImage), monitors()))
            return false;
        select(from, to);
        return isClosed();
    }
    [[nodiscard]] bool start(const QJsonObject &settings = {})
    {
        return startDesktop() && (tovek->start(scale, settings) || fail(tovek->error()));
    }

    /// Empties the clipboard, remembers the screen as it is, and opens the overlays over it.
    [[nodiscard]] bool open(const char *chord = RunningTovek::captureScreenshot)
    {
        ClipboardReader(desktop.displayName()).clear();
        before = tovek->waitUntilGone() ? tovek->eye().lookWhenStill() : QImage();
        return !before.isNull() && tovek->open(QLatin1String(chord), monitors());
    }
    /// As `open`, the screen below being as it was at the first time: no wait for the toast to go.
    [[nodiscard]] bool openAgain()
    {
        if (before.isNull())
            return open();
        ClipboardReader(desktop.displayName()).clear();
        // A save may be there before the overlays have gone, which take the keys to themselves.
        return isClosed()
            && tovek->open(QLatin1String(RunningTovek::captureScreenshot), monitors());
    }
    /// Drags from one pixel to another, where the selection ends without it.
    void select(QPoint from, QPoint to) { tovek->hand().drag(from, to); }
    [[nodiscard]] bool tap(const char *chord) { return tovek->hand().tap(QLatin1String(chord)); }
    [[nodiscard]] bool isClosed()
    {
        return waitUntil([&] {
            const QList<QRect> all = monitors();
            return std::none_of(all.begin(), all.end(),
                                [&](QRect monitor) { return tovek->isShownOn(monitor); });
        });
    }

    /// The PNG that the clipboard holds once the overlays have gone; empty when there is none.
    QByteArray pasted()
    {
        ClipboardReader reader(desktop.displayName());
        if (!isClosed() || !waitUntil([&] { return reader.hasOwner(); }))
            return {};
        return reader.read(QStringLiteral("image/png")).value_or(QByteArray());
    }
    QStringList savedNames() const
    {
        return QDir(desktop.downloads()).entryList({QStringLiteral("*.png")}, QDir::Files);
    }
    /// The one PNG in Downloads once all of it is there; empty when it does not come.
    QByteArray saved() const
    {
        QByteArray bytes;
        const auto isWhole = [&] {
            QFile file(QDir(desktop.downloads()).filePath(savedNames().value(0)));
            bytes = savedNames().size() == 1 && file.open(QIODevice::ReadOnly) ? file.readAll()
                                                                               : QByteArray();
            return !QImage::fromData(bytes).isNull();
        };
        return waitUntil(isWhole) ? bytes : QByteArray();
    }
    /// The part of the screen between two pixels as it was before the overlays came.
    QImage expected(QPoint from, QPoint to) const
    {
        const QPoint least(std::min(from.x(), to.x()), std::min(from.y(), to.y()));
        const QPoint size(std::abs(from.x() - to.x()), std::abs(from.y() - to.y()));
        return before.copy(QRect(least, QSize(size.x(), size.y())));
    }
    bool fail(const QString &reason)
    {
        error = reason;
        return false;
    }

    DesktopPlan plan;
    double scale;
    bool readsText = false; ///< true where that is tested, and where everything is to be at work
    int roomAbove = 0; ///< without a picture; openbox shows a panel only where none covers all
    TestDesktop desktop;
    std::unique_ptr<RunningTovek> tovek;
    Program *picture = nullptr;
    QImage before;
    QString error;
};

} // namespace tovek
