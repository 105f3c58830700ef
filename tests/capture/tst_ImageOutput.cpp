// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/ImageOutput.h"
#include "capture/SaveLocation.h"
#include "capture/SaveQueue.h"
#include "fakes/FakeClipboard.h"
#include "fakes/FakeClock.h"
#include "foundation/UserDefaults.h"
#include "support/StdoutCapture.h"

#include <QDir>
#include <QPromise>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <thread>

using namespace tovek;

class TestImageOutput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(".*"));
        m_folder = std::make_unique<QTemporaryDir>();
        m_output.reset();
        m_clipboard = std::make_unique<FakeClipboard>();
        m_events.clear();
        m_defaults =
            std::make_unique<UserDefaults>(m_folder->filePath(QStringLiteral("defaults.json")));
        m_defaults->setString(QStringLiteral("saveFolderPath"), m_folder->path());
        CaptureFeedback feedback;
        feedback.toast = [this](const QString &message, const QString &symbol,
                                const std::optional<Screen> &screen) {
            m_events << QStringLiteral("toast %1 %2 %3")
                            .arg(message, symbol, screen ? screen->name : "nowhere");
        };
        feedback.showPreview = [this](const Image &image, std::chrono::seconds time) {
            m_events << QStringLiteral("preview %1x%2 %3 s")
                            .arg(image.bitmap.width())
                            .arg(image.bitmap.height())
                            .arg(time.count());
        };
        feedback.showSavedNotification = [this](const QString &message, const QUrl &file) {
            m_events << QStringLiteral("saved %1").arg(message);
            m_savedFile = file.toLocalFile();
        };
        m_output = std::make_unique<ImageOutput>(*m_clipboard, *m_defaults, m_clock, feedback);
    }

    void copiesTheSelection()
    {
        m_output->copySelection(ready(pattern()), Rect{10, 40, 20, 10}, screen());
        QCOMPARE(m_clipboard->operations, QStringList("png"));
        const QImage copied = QImage::fromData(m_clipboard->lastPng());
        // The top edge of the screen: the first rows.
        QCOMPARE(copied, pattern().copy(20, 0, 40, 20));
        QCOMPARE(copied.dotsPerMeterX(), 5669);
        QCOMPARE(m_events, QStringList("preview 40x20 20 s"));
    }

    void waitsForThePixels()
    {
        QPromise<QImage> promise;
        promise.start();
        m_output->copySelection(promise.future(), Rect{0, 0, 100, 50}, screen());
        m_output->saveSelection(promise.future(), Rect{0, 0, 10, 10}, screen(),
                                m_folder->filePath(QStringLiteral("a.png")));
        QVERIFY(m_clipboard->operations.isEmpty());
        promise.addResult(pattern());
        promise.finish();
        QTRY_COMPARE(m_clipboard->operations, QStringList("png"));
        QCOMPARE(QImage::fromData(m_clipboard->lastPng()), pattern());
        QTRY_COMPARE(QImage(m_folder->filePath(QStringLiteral("a.png"))),
                     pattern().copy(0, 80, 20, 20));
    }

    void waitsForThePixelsWhenItEnds()
    {
        QPromise<QImage> promise;
        promise.start();
        const QString path = m_folder->filePath(QStringLiteral("a.png"));
        m_output->copySelection(promise.future(), Rect{0, 0, 100, 50}, screen());
        m_output->saveSelection(promise.future(), Rect{0, 0, 10, 10}, screen(), path);
        auto saves = m_output->saves();
        std::thread server([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            promise.addResult(pattern());
            promise.finish();
        });
        m_output.reset();
        server.join();
        saves.reset();
        QCOMPARE(m_clipboard->operations, QStringList("png"));
        QCOMPARE(QImage::fromData(m_clipboard->lastPng()), pattern());
        QCOMPARE(QImage(path), pattern().copy(0, 80, 20, 20));
        QVERIFY(m_events.isEmpty());
    }

    void endsWithoutPixelsThatNeverCome()
    {
        QPromise<QImage> promise;
        promise.start();
        m_output->copySelection(promise.future(), Rect{0, 0, 100, 50}, screen());
        m_output.reset();
        QVERIFY(m_clipboard->operations.isEmpty());
    }

    void tellsAFailedCropAndLeavesTheClipboardAlone_data()
    {
        QTest::addColumn<QImage>("pixels");
        QTest::addColumn<Rect>("rect");
        QTest::newRow("nothing on the screen") << pattern() << Rect{200, 0, 10, 10};
        QTest::newRow("empty") << pattern() << Rect{5, 5, 0, 0};
        QTest::newRow("pixels lost") << QImage() << Rect{0, 0, 10, 10};
    }
    void tellsAFailedCropAndLeavesTheClipboardAlone()
    {
        QFETCH(QImage, pixels);
        QFETCH(Rect, rect);
        StdoutCapture log;
        m_output->copySelection(ready(pixels), rect, screen());
        QCOMPARE(log.take(), QByteArray("Failed to crop image\n"));
        QCOMPARE(m_events, QStringList("toast Failed to copy image xmark.circle.fill Left"));
        QVERIFY(m_clipboard->operations.isEmpty());
        m_events.clear();
        m_output->saveSelection(ready(pixels), rect, screen(),
                                m_folder->filePath(QStringLiteral("a.png")));
        QCOMPARE(log.take(), QByteArray("Failed to crop image\n"));
        QCOMPARE(m_events, QStringList("toast Failed to save image xmark.circle.fill Left"));
    }

    void leavesTheClipboardClearedWithoutAnImage()
    {
        QCOMPARE(m_output->copyImage(Image{}).result(), QByteArray());
        QCOMPARE(m_clipboard->lastPng(), QByteArray());
        QCOMPARE(m_events, QStringList("preview 0x0 20 s"));
    }

    void savesWithoutADensity()
    {
        const QString path = m_folder->filePath(QStringLiteral("picture.png"));
        m_output->saveImage(Image{pattern(), Size{100, 50}}, screen(), path);
        QTRY_COMPARE(m_events, QStringList({"preview 200x100 20 s", "saved picture.png"}));
        QCOMPARE(m_savedFile, path);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray png = file.readAll();
        QVERIFY(!png.contains("pHYs"));
        QCOMPARE(QImage::fromData(png), pattern());
        QVERIFY(m_clipboard->operations.isEmpty());
    }

    void tellsAFailedSave()
    {
        StdoutCapture log;
        m_output->saveImage(Image{pattern(), Size{100, 50}}, screen(),
                            m_folder->filePath(QStringLiteral("gone/picture.png")));
        QTRY_COMPARE(m_events, QStringList("toast Failed to save image xmark.circle.fill Left"));
        QCOMPARE(log.take(), QByteArray("Failed to save image: No such file or directory\n"));
    }

    void tellsAnImageThatCannotBeMade()
    {
        StdoutCapture log;
        m_output->saveImage(Image{}, std::nullopt,
                            m_folder->filePath(QStringLiteral("picture.png")));
        QTRY_COMPARE(m_events,
                     QStringList("toast Failed to create image xmark.circle.fill nowhere"));
        QCOMPARE(log.take(), QByteArray());
        QVERIFY(!QFile::exists(m_folder->filePath(QStringLiteral("picture.png"))));
    }

    void keepsTheLaterOfTwoSavesWithOneName()
    {
        const QString path = m_folder->filePath(QStringLiteral("picture.png"));
        QImage large(1500, 1500, QImage::Format_RGB32);
        large.fill(Qt::red);
        m_output->saveImage(Image{large, Size{1500, 1500}}, screen(), path);
        m_output->saveImage(Image{pattern(), Size{100, 50}}, screen(), path);
        QTRY_COMPARE(m_events.size(), 4);
        QCOMPARE(QImage(path), pattern());
    }

    void finishesASaveBeforeItDies()
    {
        const QString path = m_folder->filePath(QStringLiteral("picture.png"));
        m_output->saveImage(Image{pattern(), Size{100, 50}}, screen(), path);
        m_output.reset();
        QCOMPARE(QImage(path), pattern());
        QCoreApplication::processEvents();
        QCOMPARE(m_events, QStringList()); // nobody is left to be told
    }

    void worksWithoutFeedback()
    {
        ImageOutput output(*m_clipboard, *m_defaults, m_clock, {});
        output.copyImage(Image{pattern(), Size{100, 50}}).waitForFinished();
        const QString path = m_folder->filePath(QStringLiteral("picture.png"));
        output.saveImage(Image{pattern(), Size{100, 50}}, screen(), path);
        QTRY_COMPARE(QImage(path), pattern());
    }

    void namesTheFileAfterTheTime()
    {
        m_clock.setNow(QDateTime(QDate(2025, 3, 7), QTime(14, 5, 9)));
        QCOMPARE(m_output->saveLocation(),
                 m_folder->filePath(QStringLiteral("Tovek 2025-03-07 at 14.05.09.png")));
        m_clock.setNow(QDateTime(QDate(2025, 12, 31), QTime(0, 0, 0)));
        QCOMPARE(m_output->saveLocation(),
                 m_folder->filePath(QStringLiteral("Tovek 2025-12-31 at 00.00.00.png")));
    }

    void choosesTheFolder()
    {
        const auto folder = [this] { return QFileInfo(fileAt(m_output->saveLocation())).path(); };
        m_defaults->setString(QStringLiteral("saveFolderPath"), QStringLiteral("/gone/away"));
        QCOMPARE(folder(), QStringLiteral("/gone/away"));
        m_defaults->remove(QStringLiteral("saveFolderPath"));
        QDir home = QDir::home();
        QVERIFY(home.mkpath(QStringLiteral("Downloads")));
        QCOMPARE(folder(), home.filePath(QStringLiteral("Downloads")));
        m_defaults->setString(QStringLiteral("saveFolderPath"), QString());
        QCOMPARE(folder(), home.filePath(QStringLiteral("Downloads")));
        QVERIFY(home.rmdir(QStringLiteral("Downloads")));
        QCOMPARE(folder(), home.path());
    }

private:
    static Screen screen()
    {
        Screen left;
        left.name = QStringLiteral("Left");
        left.frame = {0, 0, 100, 50};
        left.native = {0, 0, 200, 100};
        left.scale = 2;
        return left;
    }
    static QImage pattern()
    {
        QImage image(200, 100, QImage::Format_RGB32);
        for (int y = 0; y < 100; ++y) {
            for (int x = 0; x < 200; ++x)
                image.setPixel(x, y, qRgb(x, y * 2, x ^ y));
        }
        return image;
    }
    static QFuture<QImage> ready(const QImage &image)
    {
        QPromise<QImage> promise;
        promise.start();
        promise.addResult(image);
        promise.finish();
        return promise.future();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<UserDefaults> m_defaults;
    FakeClock m_clock;
    std::unique_ptr<FakeClipboard> m_clipboard;
    QStringList m_events;
    QString m_savedFile;
    std::unique_ptr<ImageOutput> m_output;
};

QTEST_GUILESS_MAIN(TestImageOutput)
#include "tst_ImageOutput.moc"
