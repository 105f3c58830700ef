// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "desktop/Session.h"

#include <QDirIterator>

namespace tovek {

/// A session with a panel at the top, for what all kinds of status item have in common.
struct StatusItemSession : Session
{
    static constexpr int panelHeight = 24;

    using Session::Session;

    /// Everything but panel and program. The temporary folder is the test's own.
    [[nodiscard]] bool prepare()
    {
        roomAbove = 2 * panelHeight;
        temporary = desktop.home() + QStringLiteral("/tmp");
        if (!startDesktop() || !QDir().mkpath(temporary))
            return false;
        tovek->variables[QStringLiteral("TMPDIR")] = temporary;
        return true;
    }

    /// The open menu's place; empty while there is none.
    QRect menu() const
    {
        for (const SeenWindow &window : tovek->eye().windows()) {
            if (window.isUnmanaged && window.windowClass == QStringLiteral("tovek")
                && window.title.isEmpty())
                return window.native;
        }
        return {};
    }
    /// Opens the menu by a click.
    [[nodiscard]] bool openMenu(QPoint at)
    {
        tovek->hand().click(at);
        return waitUntil([this] { return !menu().isEmpty(); });
    }

    /// How many pixels of a picture are not of the colour of its corner.
    static int inked(const QImage &image)
    {
        const QRgb ground = image.isNull() ? 0 : image.pixel(0, 0);
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QRgb pixel = image.pixel(x, y);
                count += std::abs(qRed(pixel) - qRed(ground))
                        + std::abs(qGreen(pixel) - qGreen(ground))
                        + std::abs(qBlue(pixel) - qBlue(ground))
                    > 40;
            }
        }
        return count;
    }

    /// Files that wait to be dropped somewhere.
    QStringList temporaryFiles() const
    {
        QStringList files;
        QDirIterator found(temporary, {QStringLiteral("Screenshot *.png")}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (found.hasNext())
            files.append(found.next());
        return files;
    }

    /// Opens a file manager on an empty folder, and remembers the screen with it.
    [[nodiscard]] bool startFileManager()
    {
        dropped = QDir(desktop.home() + QStringLiteral("/dropped"));
        QDir().mkpath(dropped.path());
        if (!desktop.run(QStringLiteral("thunar"), {dropped.path()})
            || !waitUntil([this] { return !fileManager().isEmpty(); }, std::chrono::seconds(20)))
            return false;
        tovek->hand().move({20, plan.size.height() - 20});
        before = tovek->eye().lookWhenStill();
        return !before.isNull();
    }
    /// With the button down and the drag begun: drops its file into the file manager.
    void dropIntoFileManager()
    {
        // Away from the list of places at its left.
        const QPoint target = fileManager().topLeft()
            + QPoint(fileManager().width() * 2 / 3, fileManager().height() * 2 / 3);
        const QPoint from = tovek->eye().pointer();
        constexpr int steps = 30;
        for (int step = 1; step <= 2 * steps; ++step) {
            // The two programs agree while the pointer moves, at its end by a pixel to and fro.
            const QPoint to =
                step < steps ? from + (target - from) * step / steps : target + QPoint(step % 2, 0);
            tovek->hand().move(to);
            const QDeadlineTimer pause(20);
            (void)waitUntil([&] { return pause.hasExpired(); });
        }
        tovek->hand().release();
    }

    QString temporary;
    QDir dropped;

private:
    QRect fileManager() const
    {
        for (const SeenWindow &window : tovek->eye().windows()) {
            if (window.windowClass == QStringLiteral("Thunar"))
                return window.native;
        }
        return {};
    }
};

} // namespace tovek
