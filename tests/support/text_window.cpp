// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// A window without a frame that shows lines of text, as programs of a toolkit do, and tells where
// each word stands.
//
// text_window X Y WIDTH HEIGHT FAMILY PIXELS light|dark LINE...
// Output: "word X Y WIDTH HEIGHT TEXT" in pixels of the screen, one line a word; then "painted".

#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>
#include <QTimer>

#include <cstdio>

namespace {

constexpr int margin = 24;

class TextWindow : public QRasterWindow
{
public:
    TextWindow(const QFont &font, bool isDark, const QStringList &lines)
        : m_font(font)
        , m_isDark(isDark)
        , m_lines(lines)
    {
        setFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.fillRect(QRect(QPoint(), size()), m_isDark ? QColor(36, 38, 42) : Qt::white);
        painter.setFont(m_font);
        painter.setPen(m_isDark ? QColor(225, 225, 225) : QColor(25, 25, 25));
        const QFontMetrics metrics(m_font);
        for (int i = 0; i < m_lines.size(); ++i)
            painter.drawText(margin, baseline(i, metrics), m_lines[i]);
        if (!m_isTold)
            QTimer::singleShot(100, this, [this] { tell(); });
        m_isTold = true;
    }

private:
    static int baseline(int line, const QFontMetrics &metrics)
    {
        return margin + metrics.ascent() + line * metrics.height() * 3 / 2;
    }
    void tell()
    {
        const QFontMetrics metrics(m_font);
        for (int i = 0; i < m_lines.size(); ++i) {
            int from = 0;
            for (const QString &word : m_lines[i].split(' ')) {
                const int left = metrics.horizontalAdvance(m_lines[i].left(from));
                std::printf("word %d %d %d %d %s\n", x() + margin + left,
                            y() + baseline(i, metrics) - metrics.ascent(),
                            metrics.horizontalAdvance(word), metrics.height(), qPrintable(word));
                from += int(word.size()) + 1;
            }
        }
        std::puts("painted");
        std::fflush(stdout);
    }

    QFont m_font;
    bool m_isDark;
    QStringList m_lines;
    bool m_isTold = false;
};

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() < 9) {
        std::fputs("usage: text_window X Y WIDTH HEIGHT FAMILY PIXELS light|dark LINE...\n",
                   stderr);
        return 1;
    }
    QFont font(arguments[5]);
    font.setPixelSize(arguments[6].toInt());
    TextWindow window(font, arguments[7] == QLatin1String("dark"), arguments.mid(8));
    window.setGeometry(arguments[1].toInt(), arguments[2].toInt(), arguments[3].toInt(),
                       arguments[4].toInt());
    window.show();
    return QGuiApplication::exec();
}
