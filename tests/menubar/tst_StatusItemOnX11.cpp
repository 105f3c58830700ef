// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/UserDefaults.h"
#include "menubar/StatusBarController.h"
#include "platform/linux/QtClock.h"
#include "platform/x11/tray/X11TrayItem.h"
#include "support/Eye.h"
#include "support/Hand.h"
#include "support/TestDesktop.h"
#include "support/Wait.h"
#include "support/XConnection.h"

#include <QApplication>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

using namespace std::chrono_literals;
using namespace tovek;

namespace {

TestDesktop *desktop = nullptr;

QImage redSquare(const QString &, const QColor &, double points, double scale)
{
    QImage image(qRound(points * scale), qRound(points * scale),
                 QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::red);
    return image;
}

} // namespace

/// Takes what is dropped on it.
class DropTarget : public QWidget
{
public:
    DropTarget() { setAcceptDrops(true); }
    /// The source tells of a move only when it has had the answer to the one before.
    bool isAnswerHeard() const { return m_moves > 1; }
    QStringList formats;
    Qt::DropActions actions;
    QString file;
    QImage image;

protected:
    void dragEnterEvent(QDragEnterEvent *event) override { event->acceptProposedAction(); }
    void dragMoveEvent(QDragMoveEvent *event) override
    {
        ++m_moves;
        event->acceptProposedAction();
    }
    void dropEvent(QDropEvent *event) override
    {
        formats = event->mimeData()->formats();
        actions = event->possibleActions();
        file = event->mimeData()->urls().value(0).toLocalFile();
        image = QImage(file);
        event->acceptProposedAction();
    }

private:
    int m_moves = 0;
};

/// The status item in a real panel, under a real mouse.
class TestStatusItemOnX11 : public QObject
{
    Q_OBJECT

private:
    struct Setup
    {
        Setup()
        {
            controller.performDrag = [this](const DragOut &out) { drags.push_back(out); };
            controller.setup();
        }
        void preview()
        {
            Image image{QImage(400, 100, QImage::Format_RGB32), {400, 100}};
            image.bitmap.fill(Qt::blue);
            controller.showPreview(image, 20s);
        }
        /// How many pixels of the item have this colour.
        int count(QRgb color) const
        {
            const QRect place = tray->geometry();
            if (place.isEmpty())
                return 0;
            const QImage look = Eye(desktop->displayName()).look(place);
            int found = 0;
            for (int y = 0; y < look.height(); ++y) {
                for (int x = 0; x < look.width(); ++x)
                    found += (look.pixel(x, y) | 0xff000000) == color;
            }
            return found;
        }
        /// And until the panel has found a place for it.
        bool waitForPreview() const
        {
            QRect last;
            int looksAlike = 0;
            return waitUntil([&] {
                const QRect place = tray->geometry();
                looksAlike = place == last && count(qRgb(0, 0, 255)) > 800 ? looksAlike + 1 : 0;
                last = place;
                QTest::qWait(50);
                return looksAlike > 4;
            });
        }
        bool waitForIcon() const
        {
            return waitUntil([this] { return count(qRgb(255, 0, 0)) >= 200; });
        }
        QTemporaryDir home;
        UserDefaults defaults{home.filePath(QStringLiteral("defaults.json"))};
        QtClock clock;
        std::unique_ptr<Tray> tray = X11TrayItem::create();
        std::vector<DragOut> drags;
        StatusBarController controller{*tray, clock, defaults, redSquare};
    };
    Program *panel = nullptr;

    static Program *startPanel()
    {
        return desktop->run(QStringLiteral("trayer"),
                            {"--edge", "top", "--align", "right", "--widthtype", "request",
                             "--height", "24", "--SetPartialStrut", "true", "--expand", "true"});
    }

private Q_SLOTS:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("trayer")).isEmpty())
            QSKIP("trayer is not installed");
        panel = startPanel();
        QVERIFY(panel);
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void showsItsIconInThePanel()
    {
        Setup s;
        QVERIFY(s.waitForIcon());
        QVERIFY(s.tray->canDrag());
    }

    void opensItsMenuBelowTheItem()
    {
        Setup s;
        QVERIFY(s.waitForIcon());
        const QRect place = s.tray->geometry();
        Hand hand(desktop->displayName());
        hand.click(place.center());
        QVERIFY(waitUntil([&] { return s.controller.menu() && s.controller.menu()->isVisible(); }));
        QCOMPARE(s.controller.menu()->y(), place.y() + place.height() + 5);
        QVERIFY(hand.tap(QStringLiteral("Escape")));
        QVERIFY(waitUntil([&] { return !s.controller.menu(); }));
    }

    void tellsAWobbleFromADrag()
    {
        Setup s;
        QVERIFY(s.waitForIcon());
        s.preview();
        QVERIFY(s.waitForPreview());
        QVERIFY(s.tray->geometry().width() >= 72);
        const QPoint at = s.tray->geometry().center();
        Hand hand(desktop->displayName());
        hand.move(at);
        hand.press();
        hand.move(at + QPoint(2, 0));
        hand.release();
        QVERIFY(waitUntil([&] { return s.controller.menu() && s.controller.menu()->isVisible(); }));
        QVERIFY(s.drags.empty());
        QVERIFY(hand.tap(QStringLiteral("Escape")));
        QVERIFY(waitUntil([&] { return !s.controller.menu(); }));

        hand.move(at);
        hand.press();
        hand.move(at + QPoint(4, 3));
        QVERIFY(waitUntil([&] { return !s.drags.empty(); }));
        hand.release();
        QVERIFY(!s.controller.menu());
        QVERIFY(s.waitForIcon());
    }

    void takesNoDrops()
    {
        Setup s;
        QVERIFY(s.waitForIcon());
        auto *const window = qobject_cast<QWindow *>(s.tray->dragSource());
        QVERIFY(window);
        const XConnection x(desktop->displayName());
        QVERIFY(x.property(xcb_window_t(window->winId()), x.atom("XdndAware")).isEmpty());
    }

    void dropsAFileAsACopyAndNothingElse()
    {
        Setup s;
        s.controller.performDrag = StatusBarController::dragFile;
        QVERIFY(s.waitForIcon());
        s.preview();
        QVERIFY(s.waitForPreview());
        DropTarget target;
        target.setGeometry(300, 300, 300, 200);
        target.show();
        QVERIFY(QTest::qWaitForWindowExposed(&target));
        Hand hand(desktop->displayName());
        const QPoint at = s.tray->geometry().center();
        // The drag runs a loop of its own: the hand goes on from inside it, like a person's, who
        // moves until the target has answered and only then lets go.
        QTimer onward;
        QPoint place(400, 390);
        QObject::connect(&onward, &QTimer::timeout, &target, [&] {
            if (!target.isAnswerHeard())
                return hand.move(place += QPoint(1, 1));
            onward.stop();
            hand.release();
        });
        hand.move(at);
        hand.press();
        hand.move(at + QPoint(0, 5));
        onward.start(100ms);
        QVERIFY(waitUntil([&] { return !target.image.isNull(); }));
        QCOMPARE(target.formats, QStringList{"text/uri-list"});
        QCOMPARE(target.actions, Qt::DropActions(Qt::CopyAction));
        QCOMPARE(target.image.size(), QSize(400, 100));
        QVERIFY(waitUntil([&] { return !s.controller.isInPreviewMode(); }));
        QVERIFY(QFile::exists(target.file));
        QVERIFY(waitUntil([&] { return !QFile::exists(target.file); }));
    }

    void hidesAndComesBack()
    {
        Setup s;
        QVERIFY(s.waitForIcon());
        s.controller.setVisible(false);
        QVERIFY(s.tray->geometry().isEmpty());
        s.controller.setVisible(true);
        QVERIFY(s.waitForIcon());
    }

    void survivesThePanel()
    {
        Setup s;
        QVERIFY(s.waitForIcon());
        panel->stop();
        QVERIFY(waitUntil([&] { return !s.tray->hasHost(); }));
        QVERIFY(s.tray->geometry().isEmpty());
        panel = startPanel();
        QVERIFY(panel);
        QVERIFY(waitUntil([&] { return s.tray->hasHost(); }));
        QVERIFY(s.waitForIcon());
    }
};

int main(int argc, char **argv)
{
    if (const QString reason = TestDesktop::missing(); !reason.isEmpty()) {
        std::printf("%s\n", qPrintable(reason));
        return 77;
    }
    TestDesktop testDesktop;
    if (!testDesktop.start())
        qFatal("%s", qPrintable(testDesktop.error()));
    desktop = &testDesktop;
    qputenv("DISPLAY", testDesktop.displayName().toUtf8());
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication application(argc, argv);
    TestStatusItemOnX11 test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_StatusItemOnX11.moc"
