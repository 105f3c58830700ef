// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The tools' share of the pictures that ocr_pictures draws: terminals, source text, buttons, rows
// of icons with labels, numbers.

#include "OcrSheet.h"

#include <QtMath>

namespace {

void drawLines(Sheet &sheet, const QStringList &lines, int pixels, double step)
{
    double y = 12 + pixels;
    for (const QString &line : lines) {
        sheet.text({14, y}, line, pixels, sheet.theme().ink);
        y += step;
    }
}

/// Line drawings as toolbars and lists have them, in a square of `size`.
void drawIcon(Sheet &sheet, int kind, QPointF at, double size, QColor color)
{
    QPainter &painter = sheet.painter();
    painter.setPen(QPen(color, size / 10, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    const QRectF box(at, QSizeF(size, size));
    const QPointF c = box.center();
    switch (kind % 8) {
    case 0: // a sheet
        painter.drawRect(box.adjusted(size / 6, 0, -size / 6, 0));
        painter.drawLine(QPointF(c.x() - size / 6, c.y()), QPointF(c.x() + size / 6, c.y()));
        break;
    case 1: // a folder
        painter.drawRoundedRect(box.adjusted(0, size / 5, 0, -size / 10), 2, 2);
        painter.drawLine(box.topLeft() + QPointF(1, size / 8),
                         box.topLeft() + QPointF(size / 2.5, size / 8));
        break;
    case 2: // a lens
        painter.drawEllipse(box.adjusted(0, 0, -size / 3, -size / 3));
        painter.drawLine(c + QPointF(size / 8, size / 8), box.bottomRight());
        break;
    case 3: // a wheel
        painter.drawEllipse(c, size / 4, size / 4);
        for (int i = 0; i < 8; ++i) {
            const QPointF ray(qCos(i * M_PI / 4), qSin(i * M_PI / 4));
            painter.drawLine(c + ray * size * 0.35, c + ray * size * 0.5);
        }
        break;
    case 4: // three lines
        for (int i = 0; i < 3; ++i)
            painter.drawLine(QPointF(box.left(), box.top() + size * (0.2 + 0.3 * i)),
                             QPointF(box.right(), box.top() + size * (0.2 + 0.3 * i)));
        break;
    case 5: // an arrow down to a line
        painter.drawLine(QPointF(c.x(), box.top()), QPointF(c.x(), box.bottom() - size / 3));
        painter.drawLine(c + QPointF(-size / 4, 0), QPointF(c.x(), box.bottom() - size / 3));
        painter.drawLine(c + QPointF(size / 4, 0), QPointF(c.x(), box.bottom() - size / 3));
        painter.drawLine(box.bottomLeft(), box.bottomRight());
        break;
    case 6: // a disc with a bar
        painter.drawEllipse(box);
        painter.drawLine(c - QPointF(0, size / 5), c + QPointF(0, size / 5));
        break;
    default: // a tick
        painter.drawLine(QPointF(box.left(), c.y()),
                         QPointF(c.x() - size / 8, box.bottom() - size / 5));
        painter.drawLine(QPointF(c.x() - size / 8, box.bottom() - size / 5),
                         QPointF(box.right(), box.top() + size / 5));
        break;
    }
}

} // namespace

void drawTerminal(Sheet &sheet)
{
    drawLines(sheet,
              {"nadia@harbour:~/ledger$ git log --oneline --graph -5",
               "* 9f03d1c (HEAD -> main, tag: v2.10.0) Round totals once",
               "* 60ab77e Merge branch 'fix/utf-8'", "* d41c0b8 Read /etc/ledger.d/*.conf in order",
               "nadia@harbour:~/ledger$ make -j8 CFLAGS=\"-O2 -Wall\" 2>&1 | tail -n 3",
               "cc -O2 -Wall -c -o build/totals.o src/totals.c",
               "src/totals.c:118:21: warning: unused variable 'i10' [-Wunused-variable]",
               "make: *** [Makefile:42: build/totals.o] Error 1",
               "nadia@harbour:~/ledger$ ls -la --time-style=long-iso",
               "drwxr-xr-x  9 nadia staff    4096 2031-04-10 08:15 .",
               "-rw-r--r--  1 nadia staff   18012 2031-04-09 21:07 CHANGES.md",
               "-rwxr-xr-x  1 nadia staff     730 2030-11-30 10:01 run_all.sh",
               "lrwxrwxrwx  1 nadia staff      11 2030-10-01 00:30 latest -> ./build/107",
               "nadia@harbour:~/ledger$ rsync -avz --delete --exclude='*.o' ./ backup:/srv/l",
               "sent 20,480 bytes  received 1,011 bytes  14,327.33 bytes/sec",
               "nadia@harbour:~/ledger$ ping -c 1 10.0.0.138"},
              14, 23);
}

void drawSource(Sheet &sheet)
{
    drawLines(sheet,
              {"// Sorts the rows and drops those that are empty.", "template <typename T>",
               "std::vector<T> tidy(std::vector<T> rows, int limit = 100)", "{",
               "    if (rows.empty() || limit <= 0)", "        return {};",
               "    std::sort(rows.begin(), rows.end());",
               "    for (auto it = rows.begin(); it != rows.end(); ++it) {",
               "        const int index = int(it - rows.begin());",
               "        total += it->size() * 2 - offset[index];",
               "        flags |= (1 << 4) & ~mask;",
               "        names[\"key_\" + id] = value ? *value : 0.5;",
               "        if (!found && index % 10 == 0)",
               "            std::printf(\"%d: %s\\n\", index, it->c_str());", "    }",
               "    return rows;", "}"},
              14, 20);
}

void drawChips(Sheet &sheet)
{
    const Theme &theme = sheet.theme();
    const QStringList labels{"OK",  "Cancel", "All",  "New",  "2",   "Go",  "Reply",
                             "12+", "Ad",     "Beta", "Edit", "PDF", "Off", "Save",
                             "No",  "Yes",    "1x",   "Help", "3D",  "HD"};
    double x = 16;
    double y = 20;
    for (qsizetype i = 0; i < labels.size(); ++i) {
        const int pixels = 11 + int(i % 3);
        const double width = 16 + double(labels[i].size()) * pixels * 0.62;
        const bool isFilled = i % 2 == 0;
        if (isFilled) {
            sheet.fill({x, y, width, 24}, i % 4 == 0 ? theme.accent : theme.panel, i % 3 ? 12 : 4);
        } else {
            sheet.painter().setPen(QPen(theme.faint, 1));
            sheet.painter().setBrush(Qt::NoBrush);
            sheet.painter().drawRoundedRect(QRectF(x + 0.5, y + 0.5, width, 23), 6, 6);
        }
        sheet.text({x + 8, y + 16.5}, labels[i], pixels,
                   isFilled && i % 4 == 0 ? theme.onAccent : theme.ink);
        x += width + 14;
        if (x > 540) {
            x = 16;
            y += 42;
        }
    }
}

void drawToolbar(Sheet &sheet)
{
    const Theme &theme = sheet.theme();
    const QStringList tools{"New", "Open", "Search", "Options", "List", "Fetch", "Info", "Done"};
    sheet.fill({0, 0, 700, 40}, theme.panel);
    double x = 12;
    for (int i = 0; i < 8; ++i) {
        drawIcon(sheet, i, {x, 12}, 16, theme.ink);
        x = sheet.text({x + 22, 25}, tools[i], 13, theme.ink) + 16;
    }
    const QStringList files{"Reports",   "by date", "I/O errors",    "4 drafts",
                            "Quarter 3", "A to Z",  "jpeg pictures", "my notes"};
    for (int i = 0; i < 8; ++i) {
        const double y = 54 + 32 * i;
        drawIcon(sheet, i + 1, {16, y}, 16, theme.faint);
        sheet.text({40, y + 13}, files[i], 14, theme.ink);
        drawIcon(sheet, i + 3, {220, y}, 14, theme.accent);
        sheet.text({238, y + 13}, "shared with " + QString::number(3 * i + 1) + " people", 12,
                   theme.faint);
        sheet.fill({430, y + 4, 8, 8}, theme.accent, 4);
        sheet.text({446, y + 13}, i % 2 ? "online" : "away since 10:0" + QString::number(i), 13,
                   theme.ink);
    }
}

void drawNumbers(Sheet &sheet)
{
    const Theme &theme = sheet.theme();
    const QList<QStringList> rows{
        {"Id", "Start", "Rate", "Change", "Load", "Address"},
        {"0x1F0A", "07:00:01", "1,010.10", "+0.7%", "0.01", "192.168.0.101"},
        {"0x20B1", "11:11:58", "981.00", "-1.1%", "1.10", "10.10.1.17"},
        {"0xC0DE", "12:30:00", "6,500.55", "+10.0%", "11.8", "172.16.0.5"},
        {"0x0007", "18:45:31", "70.01", "-0.05%", "0.00", "127.0.0.1"},
        {"0x9B6E", "23:59:59", "3,141.59", "+2.71%", "7.77", "8.8.4.4"},
        {"0x1000", "00:00:00", "100.00", "0.0%", "100", "0.0.0.0"}};
    const double columns[]{16, 110, 210, 310, 400, 480};
    for (int row = 0; row < int(rows.size()); ++row) {
        for (int column = 0; column < 6; ++column)
            sheet.text({columns[column], 30.0 + 32 * row}, rows[row][column], 13,
                       row == 0 ? theme.faint : theme.ink, row == 0 ? QFont::Bold : QFont::Normal);
    }
}
