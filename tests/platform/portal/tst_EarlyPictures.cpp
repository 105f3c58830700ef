// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/EarlyPictures.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

using namespace tovek;

class TestEarlyPictures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_pictures = std::make_unique<EarlyPictures>(QStringList{m_folder->path(), "/no/such"});
        m_heard.reset();
        m_pictures->onRead = [this](const PortalPicture &read) { m_heard = read; };
        start();
    }

    void readsWhatIsWrittenAndLeavesIt()
    {
        const PortalPicture early = written(Qt::red);
        QCOMPARE(early.image.pixelColor(0, 0), QColor(Qt::red));
        QVERIFY(QFile::exists(path()));
    }
    void takesWhatWasReadAndRemovesTheFile()
    {
        const PortalPicture taken = takePortalPicture(uri(), marked(written(Qt::red)));
        QCOMPARE(taken.image.pixelColor(0, 0), QColor(Qt::green)); // it was not read again
        QVERIFY(!QFile::exists(path()));
    }
    void readsAgainWhatWasWrittenSince()
    {
        const PortalPicture early = marked(written(Qt::red));
        QVERIFY(write(Qt::blue));
        QCOMPARE(takePortalPicture(uri(), early).image.pixelColor(0, 0), QColor(Qt::blue));
    }
    void readsAgainWhatTookItsPlace()
    {
        const PortalPicture early = marked(written(Qt::red));
        const QString other = m_folder->filePath(QStringLiteral("other"));
        QVERIFY(QFile::copy(path(), other));
        QCOMPARE(rename(qPrintable(other), qPrintable(path())), 0);
        QCOMPARE(takePortalPicture(uri(), early).image.pixelColor(0, 0), QColor(Qt::red));
    }
    void takesNothingThatIsALinkByNow()
    {
        const PortalPicture early = written(Qt::red);
        const QString other = m_folder->filePath(QStringLiteral("other"));
        QVERIFY(QFile::rename(path(), other) && QFile::link(other, path()));
        QVERIFY(takePortalPicture(uri(), early).image.isNull());
        QVERIFY(QFile::exists(other));
    }

    void knowsOnlyWhatWasWrittenMeanwhile()
    {
        m_pictures->stop();
        QVERIFY(write(Qt::red));
        start();
        QVERIFY(!m_pictures->take(uri()));
        QVERIFY(write(Qt::red));
        m_pictures->stop();
        QVERIFY(!m_pictures->take(uri()));
    }
    void hearsNothingWhereItWasStoppedInTime()
    {
        const QFuture<void> started = m_pictures->start();
        m_pictures->stop();
        QTRY_VERIFY(started.isFinished());
        QVERIFY(write(Qt::red));
        QVERIFY(!m_pictures->take(uri()));
    }
    void hasNoPictureOfHalfAFile()
    {
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("\x89PNG\r\n\x1a\n");
        file.close();
        QVERIFY(read().image.isNull());
    }
    void readsAFileWhileItIsWritten()
    {
        const QByteArray bytes = bytesOf(picture(Qt::red));
        QFile file(path());
        QVERIFY(begin(file, bytes.first(60)));
        QTest::qWait(20);
        QVERIFY(!m_heard);
        file.write(bytes.mid(60));
        QTRY_VERIFY(m_heard); // nobody has closed it
        QCOMPARE(m_heard->image.pixelColor(0, 0), QColor(Qt::red));
        file.close();
        QCOMPARE(takePortalPicture(uri(), marked(*m_heard)).image.pixelColor(0, 0),
                 QColor(Qt::green)); // it was not read again
    }
    void tellsOfRowsWhileTheOthersAreWritten()
    {
        QImage expected(300, 300, QImage::Format_RGB32);
        for (int y = 0; y < 300; ++y) {
            for (int x = 0; x < 300; ++x)
                expected.setPixel(x, y, qRgb((x * y) % 251, (x * 7) ^ y, x + y));
        }
        QImage image;
        int told = 0;
        m_pictures->onRows = [&](const QImage &read, int rows) {
            image = read;
            told = rows;
        };
        const QByteArray bytes = bytesOf(expected);
        QFile file(path());
        QVERIFY(begin(file, bytes.first(bytes.size() / 2)));
        QTRY_VERIFY(told > 0);
        QVERIFY(told < 300);
        QCOMPARE(image.copy(0, 0, 300, told), expected.copy(0, 0, 300, told));
        QVERIFY(!m_heard);
        file.write(bytes.mid(bytes.size() / 2));
        QTRY_VERIFY(m_heard);
        QCOMPARE(m_heard->image.constBits(), image.constBits());
        QCOMPARE(image, expected);
    }
    void readsAnotherKindOnceItIsClosed()
    {
        QFile file(path());
        QVERIFY(begin(file, bytesOf(grey())));
        QTest::qWait(20);
        QVERIFY(!m_heard);
        file.close();
        QTRY_VERIFY(m_heard);
        QCOMPARE(m_heard->image.pixelColor(0, 0), grey().pixelColor(0, 0));
    }
    void takesWhatSomebodyKeepsOpen()
    {
        QFile file(path());
        QVERIFY(begin(file, bytesOf(grey())));
        QCOMPARE(read().image.pixelColor(0, 0), grey().pixelColor(0, 0));
    }
    void tellsNothingOfWhatNobodyWants()
    {
        const QByteArray bytes = bytesOf(picture(Qt::red));
        QFile file(path());
        QVERIFY(begin(file, bytes.first(60)));
        QTest::qWait(20);
        m_pictures->stop();
        file.write(bytes.mid(60));
        file.close();
        QTest::qWait(50);
        QVERIFY(!m_heard);
    }
    void readsFewOfMany()
    {
        for (int i = 0; i < 9; ++i)
            QVERIFY(picture(Qt::red).save(m_folder->filePath(QStringLiteral("%1.png").arg(i))));
        int found = 0;
        for (int i = 0; i < 9; ++i) {
            const QString file = m_folder->filePath(QStringLiteral("%1.png").arg(i));
            found += m_pictures->take(QUrl::fromLocalFile(file).toString()).has_value();
        }
        QCOMPARE(found, 2);
    }

private:
    void start() const
    {
        const QFuture<void> started = m_pictures->start();
        QTRY_VERIFY(started.isFinished());
    }
    QString path() const { return m_folder->filePath(QStringLiteral("Screenshot 1.png")); }
    QString uri() const { return QUrl::fromLocalFile(path()).toString(QUrl::FullyEncoded); }
    static QImage picture(Qt::GlobalColor color)
    {
        QImage image(8, 8, QImage::Format_RGB32);
        image.fill(color);
        return image;
    }
    /// A kind that desktops do not write.
    static QImage grey()
    {
        QImage image(8, 8, QImage::Format_Grayscale8);
        image.fill(99);
        return image;
    }
    static QByteArray bytesOf(const QImage &image)
    {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        return buffer.open(QIODevice::WriteOnly) && image.save(&buffer, "PNG") ? bytes
                                                                               : QByteArray();
    }
    static bool begin(QFile &file, const QByteArray &bytes)
    {
        return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)
            && file.write(bytes) == bytes.size();
    }
    bool write(Qt::GlobalColor color) const { return picture(color).save(path(), "PNG"); }
    PortalPicture read() const
    {
        auto future = m_pictures->take(uri());
        if (!future)
            return {};
        future->waitForFinished();
        return future->result();
    }
    PortalPicture written(Qt::GlobalColor color) const
    {
        return write(color) ? read() : PortalPicture();
    }
    /// To be told from what is in the file.
    static PortalPicture marked(PortalPicture picture)
    {
        picture.image.fill(Qt::green);
        return picture;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<EarlyPictures> m_pictures;
    std::optional<PortalPicture> m_heard;
};

QTEST_GUILESS_MAIN(TestEarlyPictures)
#include "tst_EarlyPictures.moc"
