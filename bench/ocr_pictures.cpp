// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Draws pictures of screens that the recogniser was never tuned on, with the truth about their
// words beside them, in the form that score_ocr.py reads.
//
// ocr_pictures FOLDER
// ocr_pictures FOLDER TEXT...   whole screens instead, filled from text files

#include "OcrSheet.h"

#include <QDir>
#include <QGuiApplication>

#include <functional>

namespace {

void drawSettings(Sheet &sheet)
{
    const Theme &theme = sheet.theme();
    sheet.fill({0, 0, 190, 420}, theme.panel);
    const char *sections[]{"Keyboard", "Printers", "Date & Time", "Accessibility", "Storage"};
    for (int i = 0; i < 5; ++i) {
        if (i == 2)
            sheet.fill({8, 30.0 + 34 * i, 174, 28}, theme.accent, 6);
        sheet.text({20, 49.0 + 34 * i}, sections[i], 14, i == 2 ? theme.onAccent : theme.ink);
    }
    sheet.text({220, 52}, "Date & Time", 22, theme.ink, QFont::Bold);
    const struct
    {
        const char *name, *detail, *value;
    } rows[]{
        {"Set automatically", "Needs a connection to a time server", "On"},
        {"Time zone", "Changes with your location while you travel", "Lisbon (UTC+0)"},
        {"Hour format", "Also used by the lock screen", "24-hour"},
        {"First day of the week", "Calendars begin with this day", "Monday"},
        {"Show week numbers", "Counted from the first Thursday in January", "Off"},
    };
    double y = 96;
    for (const auto &row : rows) {
        sheet.text({220, y}, row.name, 14, theme.ink);
        sheet.text({220, y + 19}, row.detail, 12, theme.faint);
        sheet.text({560, y + 8}, row.value, 14, theme.ink);
        sheet.fill({220, y + 32, 460, 1}, theme.panel);
        y += 60;
    }
}

void drawChat(Sheet &sheet)
{
    const Theme &theme = sheet.theme();
    const struct
    {
        bool isOurs;
        const char *name, *time;
        QStringList lines;
    } messages[]{
        {false,
         "Ines Moreau",
         "09:14",
         {"Did the courier bring the second parcel?",
          "The tracking page still says \"out for delivery\"."}},
        {true, "You", "09:16", {"Not yet, I will ring them at ten."}},
        {false,
         "Bartosz K.",
         "09:21",
         {"It's at the front desk, signed by Helga :)",
          "Room 4.12 if anybody wants to open it now"}},
        {true, "You", "09:22", {"Great, thanks! Leaving in 5 min."}},
        {false, "Ines Moreau", "09:40", {"Weight is 3.8 kg, please bring the trolley."}},
    };
    double y = 16;
    for (const auto &message : messages) {
        const double x = message.isOurs ? 250 : 20;
        const double height = 34 + 20 * double(message.lines.size());
        const QColor ink = message.isOurs ? theme.onAccent : theme.ink;
        sheet.fill({x, y, 330, height}, message.isOurs ? theme.accent : theme.panel, 10);
        const double end = sheet.text({x + 12, y + 20}, message.name, 12,
                                      message.isOurs ? theme.onAccent : theme.faint, QFont::Bold);
        sheet.text({end + 10, y + 20}, message.time, 11,
                   message.isOurs ? theme.onAccent : theme.faint);
        for (qsizetype i = 0; i < message.lines.size(); ++i)
            sheet.text({x + 12, y + 41 + 20 * double(i)}, message.lines[i], 14, ink);
        y += height + 12;
    }
}

/// Rows of cells under a head; every second row on a tint.
void drawGrid(Sheet &sheet, const QList<double> &columns, const QList<QStringList> &rows,
              int pixels)
{
    const Theme &theme = sheet.theme();
    const double rowHeight = pixels * 2;
    double y = 12;
    for (qsizetype row = 0; row < rows.size(); ++row) {
        if (row % 2 == 0)
            sheet.fill({0, y, 760, rowHeight}, theme.panel);
        for (qsizetype column = 0; column < rows[row].size(); ++column)
            sheet.text({columns[column], y + pixels * 1.4}, rows[row][column], pixels,
                       row == 0 ? theme.faint : theme.ink, row == 0 ? QFont::Bold : QFont::Normal);
        y += rowHeight;
    }
}

void drawFiles(Sheet &sheet)
{
    drawGrid(sheet, {20, 330, 430, 620},
             {{"Name", "Size", "Modified", "Kind"},
              {"budget-2031-final.ods", "48.2 KB", "12 Mar 2031, 17:05", "Spreadsheet"},
              {"Garden plan (old).svg", "1.1 MB", "3 Feb 2031, 08:47", "Drawing"},
              {"minutes_of_the_meeting.odt", "22.9 KB", "28 Jan 2031, 11:30", "Document"},
              {"IMG_7741.jpeg", "6.4 MB", "19 Dec 2030, 20:12", "Photograph"},
              {"backup.tar.xz", "914 MB", "1 Dec 2030, 02:00", "Archive"},
              {"readme.txt", "2 KB", "30 Nov 2030, 09:59", "Plain text"},
              {"Voice memo 16.opus", "780 KB", "22 Nov 2030, 14:21", "Audio"}},
             14);
}

void drawTable(Sheet &sheet)
{
    drawGrid(sheet, {20, 130, 290, 390, 490, 600},
             {{"Invoice", "Customer", "Net", "VAT", "Total", "Status"},
              {"R-20871", "Olsen & Daughters", "1,250.00", "312.50", "1,562.50", "Paid"},
              {"R-20872", "Quarry Street Bakery", "86.40", "6.05", "92.45", "Overdue"},
              {"R-20873", "Fjord Ferries", "13,900.00", "3,475.00", "17,375.00", "Sent"},
              {"R-20874", "Dr. Vazquez", "420.75", "0.00", "420.75", "Draft"},
              {"R-20875", "Hollow Oak Press", "77.10", "19.28", "96.38", "Paid"},
              {"R-20876", "Municipal Library", "2,048.00", "512.00", "2,560.00", "Cancelled"}},
             13);
}

void drawCode(Sheet &sheet)
{
    const char *lines[]{
        "def running_mean(samples, width=5):",
        "    \"\"\"Mean of the last `width` values.\"\"\"",
        "    window = []",
        "    for index, value in enumerate(samples):",
        "        window.append(value)",
        "        if len(window) > width:",
        "            window.pop(0)",
        "        yield index, sum(window) / len(window)",
        "",
        "if __name__ == \"__main__\":",
        "    numbers = [3.5, 4, 18, 0.25, 7]",
        "    for i, mean in running_mean(numbers):",
        "        print(f\"{i:>4} {mean:.2f}\")",
    };
    double y = 30;
    for (const char *line : lines) {
        sheet.text({24, y}, line, 15, sheet.theme().ink);
        y += 22;
    }
}

void drawArticle(Sheet &sheet)
{
    const Theme &theme = sheet.theme();
    sheet.text({30, 54}, "How tides shape a salt marsh", 28, theme.ink, QFont::Bold);
    sheet.text({30, 80}, "By Ruth Adeyemi, 7 October, 6 minutes to read", 13, theme.faint);
    const char *lines[]{
        "Twice a day the creeks fill from the seaward end, and the water slows down as",
        "it spreads between the stems. What it carries settles there: first the sand, then",
        "the silt, and at slack water the finest clay. A few millimetres a year are enough",
        "to keep the surface above a rising sea, provided that nobody cuts off the supply.",
        "Where a dyke was built, the land behind it has sunk by as much as two metres.",
        "Visitors notice the colours first: purple in August, rust-red by late September.",
    };
    double y = 116;
    for (const char *line : lines) {
        sheet.text({30, y}, line, 16, theme.ink);
        y += 26;
    }
}

struct Plan
{
    const char *name;
    QSize size;
    int scale;
    const Theme &theme;
    const char *family;
    std::function<void(Sheet &)> draw;
};

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList texts = application.arguments().mid(2);
    if (argc < 2 || !QDir().mkpath(argv[1])) {
        std::fputs("usage: ocr_pictures FOLDER [TEXT...]\n", stderr);
        return 1;
    }
    // clang-format off
    const std::vector<Plan> screens{
        {"page-4k",         {3840, 2160}, 1, light, "DejaVu Sans",
         [&texts](Sheet &sheet) { drawPage(sheet, texts); }},
        {"terminal-full",   {1920, 1080}, 1, dark,  "DejaVu Sans Mono",
         [&texts](Sheet &sheet) { drawFullTerminal(sheet, texts); }},
    };
    const std::vector<Plan> plans{
        {"settings-light",  {720, 420}, 1, light, "Nimbus Sans",       drawSettings},
        {"settings-dark-2", {720, 420}, 2, dark,  "URW Gothic",        drawSettings},
        {"chat-light-2",    {600, 420}, 2, light, "Noto Sans Display", drawChat},
        {"chat-dark",       {600, 420}, 1, dark,  "Noto Sans",         drawChat},
        {"files-light",     {760, 260}, 1, light, "Liberation Sans",   drawFiles},
        {"files-dark-2",    {760, 260}, 2, dark,  "Nimbus Sans",       drawFiles},
        {"table-light",     {760, 210}, 1, light, "DejaVu Sans",       drawTable},
        {"code-dark",       {560, 320}, 1, dark,  "Nimbus Mono PS",    drawCode},
        {"code-light-2",    {560, 320}, 2, light, "Liberation Mono",   drawCode},
        {"article-light",   {700, 280}, 1, light, "P052",              drawArticle},
        {"terminal-dark",   {760, 400}, 1, dark,  "Liberation Mono",   drawTerminal},
        {"terminal-light",  {760, 400}, 1, light, "DejaVu Sans Mono",  drawTerminal},
        {"source-light",    {620, 360}, 1, light, "DejaVu Sans Mono",  drawSource},
        {"source-dark",     {620, 360}, 1, dark,  "Noto Sans Mono",    drawSource},
        {"source-dark-2",   {620, 360}, 2, dark,  "Nimbus Mono PS",    drawSource},
        {"chips-light",     {640, 200}, 1, light, "Noto Sans",         drawChips},
        {"chips-dark",      {640, 200}, 1, dark,  "Liberation Sans",   drawChips},
        {"toolbar-light",   {700, 330}, 1, light, "Nimbus Sans",       drawToolbar},
        {"toolbar-dark-2",  {700, 330}, 2, dark,  "DejaVu Sans",       drawToolbar},
        {"numbers-light",   {640, 250}, 1, light, "Noto Sans",         drawNumbers},
        {"numbers-dark",    {640, 250}, 1, dark,  "Liberation Sans Narrow", drawNumbers},
    };
    // clang-format on
    for (const Plan &plan : texts.isEmpty() ? plans : screens) {
        Sheet sheet(plan.size, plan.scale, plan.theme, QLatin1String(plan.family));
        plan.draw(sheet);
        if (!sheet.save(QDir(argv[1]).filePath(QLatin1String(plan.name)))) {
            std::fprintf(stderr, "%s cannot be written.\n", plan.name);
            return 1;
        }
    }
    return 0;
}
