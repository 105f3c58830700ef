// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QFile>
#include <QFontInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>

#include <cstdio>

struct Theme
{
    QColor paper, panel, ink, faint, accent, onAccent;
};

// clang-format off
inline const Theme light{0xffffff, 0xf1f1f4, 0x22252a, 0x6a707a, 0x2f6fde, 0xffffff};
inline const Theme dark {0x1f2126, 0x2b2e35, 0xe3e5e9, 0x9aa1ad, 0x3c6fd1, 0xf4f6fa};
// clang-format on

/// A picture being drawn, in units of its scale, and the words on it.
class Sheet
{
public:
    Sheet(QSize size, int scale, const Theme &theme, const QString &family)
        : m_image(size * scale, QImage::Format_RGB32)
        , m_scale(scale)
        , m_theme(theme)
        , m_family(family)
    {
        m_image.fill(theme.paper);
        m_painter.begin(&m_image);
        m_painter.scale(scale, scale);
        m_painter.setRenderHint(QPainter::Antialiasing);
        if (!QFontInfo(font(12)).family().startsWith(family))
            std::fprintf(stderr, "The font %s is not installed.\n", qPrintable(family));
    }

    const Theme &theme() const { return m_theme; }
    QPainter &painter() { return m_painter; }
    QSize size() const { return m_image.size() / m_scale; }
    double widthOf(const QString &line, int pixels) const
    {
        return QFontMetricsF(font(pixels), &m_image).horizontalAdvance(line);
    }
    void fill(const QRectF &rect, QColor color, double radius = 0)
    {
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(color);
        m_painter.drawRoundedRect(rect, radius, radius);
    }
    /// Where the line ends.
    double text(QPointF baseline, const QString &line, int pixels, QColor color,
                int weight = QFont::Normal)
    {
        const QFont used = font(pixels, weight);
        const QFontMetricsF metrics(used, &m_image);
        m_painter.setFont(used);
        m_painter.setPen(color);
        m_painter.drawText(baseline, line);
        qsizetype from = 0;
        for (const QString &word : line.split(' ')) {
            const double left = baseline.x() + metrics.horizontalAdvance(line.left(from));
            const QRectF cell(left, baseline.y() - metrics.ascent(),
                              metrics.horizontalAdvance(word), metrics.height());
            const QRectF ink = metrics.tightBoundingRect(word).translated(left, baseline.y());
            if (!word.isEmpty())
                m_words.append(
                    QJsonObject{{"text", word}, {"box", pixelsOf(ink)}, {"cell", pixelsOf(cell)}});
            from += word.size() + 1;
        }
        return baseline.x() + metrics.horizontalAdvance(line);
    }
    /// A character a cell, as terminals draw them.
    void cells(QPointF baseline, const QString &line, int pixels, QColor color, int cell)
    {
        const QFont used = font(pixels);
        const QFontMetricsF metrics(used, &m_image);
        m_painter.setFont(used);
        m_painter.setPen(color);
        for (qsizetype i = 0; i < line.size(); ++i)
            m_painter.drawText(baseline + QPointF(double(i) * cell, 0), line.mid(i, 1));
        qsizetype from = 0;
        for (const QString &word : line.split(' ')) {
            const QJsonArray box =
                pixelsOf({baseline.x() + double(from) * cell, baseline.y() - metrics.ascent(),
                          double(word.size()) * cell, metrics.height()});
            if (!word.isEmpty())
                m_words.append(QJsonObject{{"text", word}, {"box", box}, {"cell", box}});
            from += word.size() + 1;
        }
    }
    [[nodiscard]] bool save(const QString &path)
    {
        m_painter.end();
        QFile file(path + ".json");
        return m_image.save(path + ".png") && file.open(QIODevice::WriteOnly)
            && file.write(QJsonDocument(QJsonObject{{"words", m_words}}).toJson()) > 0;
    }

private:
    QFont font(int pixels, int weight = QFont::Normal) const
    {
        QFont font(m_family);
        font.setPixelSize(pixels);
        font.setWeight(QFont::Weight(weight));
        return font;
    }
    QJsonArray pixelsOf(const QRectF &rect) const
    {
        return {rect.x() * m_scale, rect.y() * m_scale, rect.width() * m_scale,
                rect.height() * m_scale};
    }

    QImage m_image;
    QPainter m_painter;
    int m_scale;
    Theme m_theme;
    QString m_family;
    QJsonArray m_words;
};

// ocr_pages.cpp, from the words and lines of text files
void drawPage(Sheet &sheet, const QStringList &files);
void drawFullTerminal(Sheet &sheet, const QStringList &files);

// ocr_tools.cpp
void drawTerminal(Sheet &sheet);
void drawSource(Sheet &sheet);
void drawChips(Sheet &sheet);
void drawToolbar(Sheet &sheet);
void drawNumbers(Sheet &sheet);
