// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// A copy, a file, a drawing and a text on a virtual desktop, as a person makes them: tour PROGRAM
// FOLDER [SETTINGS]. What the person sees and gets lies in the folder afterwards. The settings that
// an earlier tour left in the last file are this one's, and must still be what they were at its
// end. Ends with 1 at the first step that did not happen.

#include "support/ClipboardReader.h"
#include "support/RunningTovek.h"
#include "support/Wait.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <cstdio>

using namespace tovek;

namespace {

const QRect screen(0, 0, 1280, 800);
const QRect firstWindow(60, 60, 620, 420);
const QRect secondWindow(560, 330, 640, 400);
const QRect selection(140, 80, 480, 300);

class Tour
{
public:
    Tour(const QString &program, const QString &folder, const QString &settings)
        : m_program(program)
        , m_out(folder)
        , m_settings(settings)
    {
    }
    bool run();

private:
    bool step(bool happened, const char *what);
    bool openDesktop();
    bool select();
    bool copyToClipboard();
    bool saveFile();
    bool draw();
    bool copyText();
    bool startTovek();
    bool keepSettings();
    QString out(const char *name) const { return m_out.filePath(QLatin1String(name)); }

    QString m_program;
    QDir m_out;
    QString m_settings; ///< empty: those of every tour, and nobody asks for them afterwards
    TestDesktop m_desktop;
    std::unique_ptr<RunningTovek> m_tovek;
    QImage m_before;
};

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return !path.isEmpty() && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool Tour::step(bool happened, const char *what)
{
    std::printf("%s  %s\n", happened ? "done  " : "FAILED", what);
    std::fflush(stdout);
    return happened;
}

bool Tour::openDesktop()
{
    if (!step(m_desktop.start(), "a desktop of its own: X server, window manager, session bus")) {
        std::printf("        %s\n", qPrintable(m_desktop.error()));
        return false;
    }
    m_tovek = std::make_unique<RunningTovek>(m_desktop, m_program);
    m_tovek->readsText = true;
    return step(m_desktop.showPicture(firstWindow) && m_desktop.showPicture(secondWindow),
                "two windows with pictures and text")
        && startTovek();
}

bool Tour::startTovek()
{
    const QByteArray earlier = bytesOf(m_settings);
    if (earlier.isEmpty())
        return step(m_tovek->start(), "Tovek, waiting for its shortcut");
    const bool isReady = m_tovek->writeSettings(earlier) && m_tovek->startAsItIs()
        && waitUntil([&] { return m_tovek->holds(QLatin1String(RunningTovek::captureText)); });
    return step(isReady, "Tovek, waiting for the shortcut of the settings that it found");
}

bool Tour::keepSettings()
{
    if (m_settings.isEmpty())
        return true;
    const QByteArray stored = bytesOf(m_desktop.configFolder() + "/tovek/defaults.json");
    const QJsonObject now = QJsonDocument::fromJson(stored).object();
    const QJsonObject earlier = QJsonDocument::fromJson(bytesOf(m_settings)).object();
    for (auto it = earlier.begin(); it != earlier.end(); ++it) {
        if (now.value(it.key()) != it.value())
            return step(false, qPrintable("the setting " + it.key() + " is what it was"));
    }
    QFile file(m_settings);
    return step(!now.isEmpty(), "every setting is what it was")
        && step(file.open(QIODevice::WriteOnly) && file.write(stored) == stored.size(),
                qPrintable(m_settings));
}

bool Tour::select()
{
    m_before = m_tovek->eye().lookWhenStill();
    const bool isOpen = m_tovek->open(QLatin1String(RunningTovek::captureScreenshot), {screen});
    if (!step(isOpen, "Super+Shift+C freezes the screen")
        || !step(differentPixels(m_before, m_tovek->eye().lookWhenStill()) == 0,
                 "and changes not one pixel of it"))
        return false;
    m_tovek->hand().drag(selection.topLeft(),
                         selection.topLeft() + QPoint(selection.width(), selection.height()));
    const QPoint far(screen.right() - 5, screen.bottom() - 5);
    const int bright = qGray(m_before.pixel(far));
    const bool isDimmed = waitUntil(
        [&] { return bright == 0 || qGray(m_tovek->eye().pixel(far)) * 2 <= bright + 3; });
    return step(isDimmed, "the mouse drags out a rectangle, the rest darkens");
}

bool Tour::copyToClipboard()
{
    ClipboardReader reader(m_desktop.displayName());
    const bool isGone = m_tovek->hand().tap(QStringLiteral("Return"))
        && waitUntil([&] { return !m_tovek->covers({screen}) && reader.hasOwner(); });
    if (!step(isGone, "Return copies and closes"))
        return false;
    const QByteArray png = reader.read(QStringLiteral("image/png")).value_or(QByteArray());
    QFile file(out("clipboard.png"));
    return step(reader.types() == QStringList{QStringLiteral("image/png")}
                    && differentPixels(QImage::fromData(png), m_before.copy(selection)) == 0,
                "the clipboard holds just those pixels, as PNG")
        && step(file.open(QIODevice::WriteOnly) && file.write(png) == png.size(),
                "out/clipboard.png");
}

bool Tour::saveFile()
{
    const QDir downloads(m_desktop.downloads());
    const auto saved = [&] { return downloads.entryList({QStringLiteral("*.png")}); };
    if (!step(m_tovek->hand().tap(QStringLiteral("Control_L+s")), "Ctrl+S"))
        return false;
    QByteArray png;
    const bool isSaved = waitUntil([&] {
        QFile file(downloads.filePath(saved().value(0)));
        if (!saved().isEmpty() && file.open(QIODevice::ReadOnly))
            png = file.readAll();
        return differentPixels(QImage::fromData(png), m_before.copy(selection)) == 0;
    });
    QFile copy(out("saved.png"));
    return step(
               isSaved,
               qPrintable(QStringLiteral("just those pixels in Downloads, as ") + saved().value(0)))
        && step(copy.open(QIODevice::WriteOnly) && copy.write(png) == png.size(), "out/saved.png");
}

bool Tour::draw()
{
    ClipboardReader reader(m_desktop.displayName());
    reader.clear();
    if (!step(m_tovek->hand().tap(QStringLiteral("r")), "R takes the rectangle"))
        return false;
    const QRect box(100, 80, 200, 120); // in the selection
    m_tovek->hand().drag(selection.topLeft() + box.topLeft(),
                         selection.topLeft() + box.topLeft() + QPoint(box.width(), box.height()));
    const bool isGone = m_tovek->hand().tap(QStringLiteral("Return"))
        && waitUntil([&] { return !m_tovek->covers({screen}) && reader.hasOwner(); });
    const QImage image =
        QImage::fromData(reader.read(QStringLiteral("image/png")).value_or(QByteArray()));
    constexpr QRgb red = 0xffff3b30;
    const bool isDrawn = image.size() == selection.size()
        && image.pixel(box.center().x(), box.top()) == red
        && image.pixel(box.center()) == m_before.copy(selection).pixel(box.center());
    return step(isGone && isDrawn, "the mouse draws one, and the copy holds it")
        && step(image.save(out("drawn.png")), "out/drawn.png");
}

bool Tour::copyText()
{
    ClipboardReader reader(m_desktop.displayName());
    reader.clear();
    Program *window =
        m_desktop.run(QStringLiteral(TOVEK_TEXT_WINDOW),
                      {QStringLiteral("700"), QStringLiteral("60"), QStringLiteral("440"),
                       QStringLiteral("140"), QStringLiteral("DejaVu Sans"), QStringLiteral("13"),
                       QStringLiteral("dark"), QStringLiteral("Three files were changed today."),
                       QStringLiteral("Copy the text of this window!")});
    if (!step(window && window->waitForLine(QStringLiteral("painted")), "a window with text"))
        return false;
    const QPoint from(706, 66);
    const QPoint to(1130, 190);
    const bool isOpen = m_tovek->open(QLatin1String(RunningTovek::captureText), {screen});
    if (!step(isOpen, "Super+Shift+T freezes the screen for its text"))
        return false;
    m_tovek->hand().drag(from, to);
    const bool isRead = waitUntil([&] { return !m_tovek->covers({screen}) && reader.hasOwner(); },
                                  std::chrono::seconds(30));
    const QByteArray text = reader.read(QStringLiteral("UTF8_STRING")).value_or(QByteArray());
    if (!step(isRead && text.contains("Copy the text"), "and copies what is written there:"))
        return false;
    for (const QByteArray &line : text.split('\n'))
        std::printf("            %s\n", line.constData());
    return true;
}

bool Tour::run()
{
    return openDesktop() && select()
        && step(m_tovek->eye().lookWhenStill().save(out("overlay.png")), "out/overlay.png")
        && copyToClipboard() && step(m_tovek->waitUntilGone(), "no window stays behind") && select()
        && saveFile() && step(m_tovek->waitUntilGone(), "no window stays behind") && select()
        && draw() && step(m_tovek->waitUntilGone(), "no window stays behind") && copyText()
        && keepSettings();
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3 || arguments.size() > 4 || !QDir().mkpath(arguments[2])) {
        std::fputs("usage: tour PROGRAM FOLDER [SETTINGS]\n", stderr);
        return 1;
    }
    // What an earlier tour left must not pass for this one's.
    for (const char *name : {"overlay.png", "clipboard.png", "saved.png", "drawn.png"})
        QFile::remove(QDir(arguments[2]).filePath(QLatin1String(name)));
    Tour tour(arguments[1], arguments[2], arguments.value(3));
    const bool isWhole = tour.run();
    std::puts(isWhole ? "The tour is complete." : "The tour failed.");
    return isWhole ? 0 : 1;
}
