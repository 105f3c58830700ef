// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The whole screens that ocr_pictures draws from a text: what they take to read is what somebody
// waits for who sweeps over everything.

#include "OcrSheet.h"

namespace {

constexpr double margin = 20;

QStringList linesOf(const QStringList &files)
{
    QStringList lines;
    for (const QString &path : files) {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            lines += QString::fromUtf8(file.readAll()).split('\n');
    }
    return lines;
}

} // namespace

void drawPage(Sheet &sheet, const QStringList &files)
{
    constexpr int pixels = 13;
    constexpr int columns = 4;
    const QStringList words = linesOf(files).join(' ').split(' ', Qt::SkipEmptyParts);
    const double step = (sheet.size().width() - margin) / columns;
    qsizetype next = 0;
    for (int column = 0; column < columns; ++column) {
        const double left = margin + column * step;
        for (double y = margin + pixels; y < sheet.size().height() - margin; y += 18) {
            QString line;
            while (!words.isEmpty()) {
                const QString longer = (line + ' ' + words[next % words.size()]).trimmed();
                if (sheet.widthOf(longer, pixels) > step - margin && !line.isEmpty())
                    break;
                line = longer;
                ++next;
            }
            sheet.text({left, y}, line, pixels, sheet.theme().ink);
        }
    }
}

void drawFullTerminal(Sheet &sheet, const QStringList &files)
{
    constexpr int pixels = 14;
    constexpr int rowHeight = 17;
    const QStringList lines = linesOf(files);
    const int cell = qRound(sheet.widthOf(QStringLiteral("n"), pixels));
    const int columns = sheet.size().width() / cell;
    const int rows = sheet.size().height() / rowHeight;
    for (int row = 0; row < rows && !lines.isEmpty(); ++row) {
        // Side by side, as the output of a tool that fills the width.
        QString line;
        for (int part = 0; line.size() < columns; ++part)
            line += lines[(row + part * rows) % lines.size()].trimmed() + QStringLiteral("  ");
        line.truncate(columns);
        sheet.cells({0, rowHeight * (row + 1) - 4.0}, line, pixels, sheet.theme().ink, cell);
    }
}
