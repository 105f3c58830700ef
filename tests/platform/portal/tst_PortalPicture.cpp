// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/portal/PortalPicture.h"

#include <QTest>
#include <QUrl>

#include <sys/stat.h>
#include <unistd.h>

using namespace tovek;

class TestPortalPicture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_image = QImage(60, 40, QImage::Format_RGB32);
        m_image.fill(0xff204060);
        m_image.setPixel(59, 39, 0xffabcdef);
        QVERIFY(m_image.save(path(), "PNG"));
    }

    void readsAndRemovesIt()
    {
        const PortalPicture picture = takePortalPicture(uri());
        QCOMPARE(picture.error, QString());
        QCOMPARE(picture.image, m_image);
        QVERIFY(!QFile::exists(path()));
    }
    void readsAFileNamedInFourSlashes()
    {
        const PortalPicture picture = takePortalPicture(QStringLiteral("file:///") + path());
        QCOMPARE(picture.image, m_image);
    }
    void readsKindsThatDesktopsDoNotWrite()
    {
        m_image = m_image.convertToFormat(QImage::Format_Indexed8);
        QVERIFY(m_image.save(path(), "PNG"));
        QCOMPARE(takePortalPicture(uri()).image, m_image.convertToFormat(QImage::Format_RGB32));
    }
    void removesItUnread()
    {
        dropPortalPicture(uri());
        QVERIFY(!QFile::exists(path()));
    }

    void saysThatItIsMissing()
    {
        QVERIFY(QFile::remove(path()));
        refuses("missing");
    }
    void touchesNoLink()
    {
        const QString target = path() + QStringLiteral("-target");
        QVERIFY(QFile::rename(path(), target));
        QVERIFY(QFile::link(target, path()));
        refuses("is a link");
        QVERIFY(QFile::exists(target) && QFile::exists(path()));
    }
    void touchesNoFileWithAnotherName()
    {
        const QString other = path() + QStringLiteral("-other");
        QCOMPARE(::link(qPrintable(path()), qPrintable(other)), 0);
        refuses("is a link");
        QVERIFY(QFile::exists(other) && QFile::exists(path()));
    }
    void waitsForNoPipe()
    {
        QVERIFY(QFile::remove(path()));
        QCOMPARE(mkfifo(qPrintable(path()), 0600), 0);
        refuses("no file");
        QVERIFY(QFile::exists(path()));
    }
    void touchesNobodyElsesFile()
    {
        if (geteuid() != 0)
            QSKIP("Only root can give a file away");
        QCOMPARE(chown(qPrintable(path()), 65534, 65534), 0);
        refuses("belongs to somebody else");
        QVERIFY(QFile::exists(path()));
    }
    void takesNoHalfPicture()
    {
        QFile file(path());
        QVERIFY(file.resize(file.size() / 2));
        refuses("damaged");
        QVERIFY(!QFile::exists(path()));
    }
    void takesNothingThatIsNoPicture()
    {
        QFile file(path());
        QVERIFY(file.open(QFile::WriteOnly));
        file.write("not a picture");
        file.close();
        refuses("damaged");
    }
    void takesNoAddressButAFile_data()
    {
        QTest::addColumn<QString>("uri");
        QTest::newRow("none") << "";
        QTest::newRow("elsewhere") << "https://example.org/a.png";
        QTest::newRow("another machine") << "file://example.org/a.png";
        QTest::newRow("a path") << "/tmp/a.png";
    }
    void takesNoAddressButAFile()
    {
        QFETCH(QString, uri);
        const PortalPicture picture = takePortalPicture(uri);
        QVERIFY(picture.image.isNull());
        QVERIFY(picture.error.contains("gave no file"));
    }

private:
    QString path() const { return m_folder->filePath(QStringLiteral("Screenshot from now.png")); }
    QString uri() const { return QUrl::fromLocalFile(path()).toString(QUrl::FullyEncoded); }
    void refuses(const char *reason)
    {
        const PortalPicture picture = takePortalPicture(uri());
        QVERIFY(picture.image.isNull());
        QVERIFY2(picture.error.contains(QLatin1String(reason)), qPrintable(picture.error));
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QImage m_image;
};

QTEST_APPLESS_MAIN(TestPortalPicture)
#include "tst_PortalPicture.moc"
