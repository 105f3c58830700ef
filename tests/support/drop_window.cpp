// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// A window, orange on its left half and green on its right, into which files can be dropped: writes
// the size of each and its first bytes, as hexadecimal digits, to standard output; "nothing" for a
// drop without a file in it.

#include <QDropEvent>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>
#include <QRasterWindow>
#include <QUrl>

#include <cstdio>

class DropWindow : public QRasterWindow
{
protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.fillRect(QRect(QPoint(), size()), QColor(0x20, 0x60, 0x20));
        painter.fillRect(0, 0, width() / 2, height(), QColor(0xc0, 0x60, 0x20));
    }
    bool event(QEvent *event) override
    {
        switch (event->type()) {
        case QEvent::DragMove:
            std::printf("over\n");
            std::fflush(stdout);
            [[fallthrough]];
        case QEvent::DragEnter:
            static_cast<QDropEvent *>(event)->acceptProposedAction();
            event->accept();
            return true;
        case QEvent::Drop:
            take(*static_cast<QDropEvent *>(event));
            return true;
        default:
            return QRasterWindow::event(event);
        }
    }

private:
    static void take(QDropEvent &drop)
    {
        bool isEmpty = true;
        for (const QUrl &url : drop.mimeData()->urls()) {
            QFile file(url.toLocalFile());
            if (!file.open(QIODevice::ReadOnly))
                continue;
            std::printf("%lld %s\n", file.size(), file.read(8).toHex().constData());
            isEmpty = false;
        }
        if (isEmpty)
            std::printf("nothing\n");
        std::fflush(stdout);
        drop.acceptProposedAction();
    }
};

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    DropWindow window;
    window.setTitle(QStringLiteral("drop here"));
    window.resize(400, 300);
    window.show();
    return QGuiApplication::exec();
}
