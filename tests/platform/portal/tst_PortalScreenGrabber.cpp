// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "fakes/LogCapture.h"
#include "foundation/WhenReady.h"
#include "platform/portal/PortalScreenGrabber.h"
#include "platform/portal/PortalTest.h"
#include "support/Wait.h"

#include <QFile>
#include <QSignalSpy>
#include <QUrl>

#include <cstring>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

const std::vector<PortalDisplay> twoScreens{{11, {0, 0, 100, 80}, {0, 0, 100, 80}},
                                            {22, {100, 0, 60, 90}, {100, 0, 60, 90}}};

/// Keeps the rows that it is given.
class FakeGrowingDisplay : public GrowingDisplay
{
public:
    FakeGrowingDisplay(QSize size, bool keeps) : m_image(size, QImage::Format_RGB32), m_keeps(keeps)
    {
    }
    void addRows(const QImage &rows) override
    {
        for (int y = 0; y < rows.height(); ++y, ++m_rows)
            std::memcpy(m_image.scanLine(m_rows), rows.constScanLine(y), size_t(rows.width()) * 4);
    }
    std::shared_ptr<FrozenDisplay> finished(const QImage &) override
    {
        const bool isWhole = m_keeps && m_rows == m_image.height();
        return isWhole ? std::make_shared<ImageFrozenDisplay>(m_image) : nullptr;
    }

private:
    QImage m_image;
    int m_rows = 0;
    bool m_keeps;
};

} // namespace

class TestPortalScreenGrabber : public PortalTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { needBus(); }
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        begin();
        m_screens = twoScreens;
        m_frozen = m_growing = 0;
        m_grabber = std::make_unique<PortalScreenGrabber>(
            m_portalBus,
            PortalScreenGrabber::Desktop{
                [this] { return m_screens; }, [this](const QImage &image) { return frozen(image); },
                [this](QSize size) {
                    ++m_growing;
                    return std::make_unique<FakeGrowingDisplay>(size, m_keepsRows);
                },
                QStringList(m_folder->path())});
    }
    void cleanup()
    {
        m_grabber.reset();
        end();
    }

    void cutsTheDesktopIntoItsScreens()
    {
        answerWithPicture({});
        const auto content = m_grabber->shareableContent();
        QVERIFY(content);
        QCOMPARE(int(content->displays.size()), 2);
        QCOMPARE(content->displays.at(1), (CaptureDisplay{22, {100, 0, 60, 90}}));
        QCOMPARE(pixels(*content, 0), m_picture.copy(0, 0, 100, 80));
        QCOMPARE(pixels(*content, 1), m_picture.copy(100, 0, 60, 90));
        QVERIFY(!QFile::exists(path()));
        QCOMPARE(m_portal->calls(), (QStringList{"Register", "Screenshot", "Lookup"}));
    }
    void showsWhatItReadBeforeItWasNamed()
    {
        answerLate();
        const auto content = m_grabber->freeze();
        QVERIFY(preparesBefore(content));
        QVERIFY(waitUntil([&] { return content.isFinished(); }));
        QVERIFY(content.result());
        QCOMPARE(m_frozen, 2);
        QCOMPARE(pixels(*content.result(), 0), m_picture.copy(0, 0, 100, 80));
        QCOMPARE(pixels(*content.result(), 1), m_picture.copy(100, 0, 60, 90));
        QVERIFY(!QFile::exists(path()));
    }
    void showsTheRowsThatCameWhileItWasWritten_data()
    {
        QTest::addColumn<bool>("keeps");
        QTest::newRow("brought by rows") << true;
        QTest::newRow("by rows that were lost") << false;
    }
    void showsTheRowsThatCameWhileItWasWritten()
    {
        QFETCH(const bool, keeps);
        m_keepsRows = keeps;
        answerWithPicture({.delay = 2s}); // which makes m_picture
        const auto content = m_grabber->freeze();
        QFile file(path());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        file.close();
        // As the desktop does, by and by, in a new file.
        for (int i = 0; i < 5 && m_growing == 0; ++i) {
            QVERIFY(file.remove());
            QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
            file.write(bytes.first(bytes.size() / 2));
            (void)waitUntil([this] { return m_growing > 0; }, 100ms);
            if (m_growing == 0)
                file.close();
        }
        QCOMPARE(m_growing, 2);
        QVERIFY(!content.isFinished());
        file.write(bytes.mid(bytes.size() / 2));
        file.close();
        QVERIFY(waitUntil([&] { return content.isFinished(); }));
        QVERIFY(content.result());
        QCOMPARE(m_growing, 2);
        QCOMPARE(m_frozen, keeps ? 0 : 2);
        QCOMPARE(pixels(*content.result(), 0), m_picture.copy(0, 0, 100, 80));
        QCOMPARE(pixels(*content.result(), 1), m_picture.copy(100, 0, 60, 90));
    }
    void cutsAnewForScreensThatCameMeanwhile()
    {
        answerLate();
        const auto content = m_grabber->freeze();
        QVERIFY(preparesBefore(content));
        m_screens = {{33, {0, 0, 160, 90}, {0, 0, 160, 90}}};
        QVERIFY(waitUntil([&] { return content.isFinished(); }));
        QVERIFY(content.result());
        QCOMPARE(content.result()->displays, (std::vector<CaptureDisplay>{{33, {0, 0, 160, 90}}}));
        QCOMPARE(pixels(*content.result(), 0), m_picture);
    }
    void readsAnewWhatWasWrittenMeanwhile()
    {
        answerLate();
        const auto content = m_grabber->freeze();
        QVERIFY(preparesBefore(content));
        m_picture.fill(Qt::blue);
        QVERIFY(m_picture.save(path(), "PNG"));
        QVERIFY(waitUntil([&] { return content.isFinished(); }));
        QVERIFY(content.result());
        QCOMPARE(pixels(*content.result(), 0), m_picture.copy(0, 0, 100, 80));
    }
    void lookIsOneForAllWhoAskMeanwhile()
    {
        answerWithPicture({.delay = 50ms});
        const auto one = m_grabber->freeze();
        const auto other = m_grabber->freeze();
        QVERIFY(waitUntil([&] { return one.isFinished() && other.isFinished(); }));
        QVERIFY(one.result() && other.result());
        QCOMPARE(m_portal->calls().count("Screenshot"), 1);
    }
    void takesTheFirstOfTwoAnswers()
    {
        answerWithPicture({.answers = 2});
        QVERIFY(m_grabber->shareableContent());
        QVERIFY(!QFile::exists(path()));
        answerWithPicture({});
        QVERIFY(m_grabber->shareableContent());
    }

    void saysWhyThereIsNone_data()
    {
        QTest::addColumn<PortalScript>("script");
        QTest::addColumn<QString>("reason");
        QTest::newRow("refused") << PortalScript{.code = 2} << "the desktop refused it";
        QTest::newRow("cancelled") << PortalScript{.code = 1} << "it was cancelled";
        QTest::newRow("silent") << PortalScript{.isSilent = true}
                                << "the desktop did not answer in time";
        QTest::newRow("no screenshots") << PortalScript{.offersScreenshots = false}
                                        << "the portal of this desktop cannot do it";
        QTest::newRow("no file") << PortalScript{} << "the desktop gave no file for it";
        QTest::newRow("a file that is not there")
            << PortalScript{.results = {{"uri", "file:///nowhere/a.png"}}}
            << "the desktop's file for it is missing";
    }
    void saysWhyThereIsNone()
    {
        QFETCH(PortalScript, script);
        m_portal->set(script);
        m_grabber->setLimit(300ms);
        LogCapture log;
        QVERIFY(!m_grabber->shareableContent());
        QTEST(m_grabber->failure(), "reason");
        // The next one is not spoilt by it.
        answerWithPicture({});
        m_grabber->setLimit(5s);
        QVERIFY(m_grabber->shareableContent());
        QCOMPARE(m_grabber->failure(), QString());
    }
    void wantsAPictureOfTheseScreens()
    {
        answerWithPicture({}, {300, 90});
        LogCapture log;
        QVERIFY(!m_grabber->shareableContent());
        QCOMPARE(m_grabber->failure(), "the desktop's picture does not show these screens");
    }
    void removesAPictureThatComesTooLate()
    {
        answerWithPicture({.delay = 200ms});
        m_grabber->setLimit(50ms);
        LogCapture log;
        QVERIFY(!m_grabber->shareableContent());
        QVERIFY(QFile::exists(path()));
        QVERIFY(waitUntil([this] { return !QFile::exists(path()); }));
    }
    void endsWithThePortal()
    {
        m_portal->set({.isSilent = true});
        LogCapture log;
        const auto content = m_grabber->freeze();
        QVERIFY(waitUntil([this] { return m_portal->calls().contains("Screenshot"); }));
        m_portal->restart();
        QVERIFY(waitUntil([&] { return content.isFinished(); }));
        QVERIFY(!content.result());
        QCOMPARE(m_grabber->failure(), "the desktop portal ended");
        // The new one is told the name again, before anything else.
        QVERIFY(waitUntil([this] { return m_portal->calls().count("Register") == 2; }));
        answerWithPicture({});
        QVERIFY(m_grabber->shareableContent());
    }
    void doesWithoutAPortal()
    {
        QSignalSpy lost(m_portalBus.get(), &PortalBus::portalLost);
        m_portal.reset();
        QVERIFY(lost.wait());
        QVERIFY(!m_portalBus->isOffered());
        LogCapture log;
        QVERIFY(!m_grabber->shareableContent());
        QCOMPARE(m_grabber->failure(), "no desktop portal runs here");
    }
    void goesWhileItIsAsking()
    {
        m_portal->set({.isSilent = true});
        const auto content = m_grabber->freeze();
        m_grabber.reset();
        QVERIFY(content.isFinished());
        QVERIFY(!content.result());
    }
    void leavesOutNoWindow()
    {
        answerWithPicture({});
        const auto content = m_grabber->shareableContent();
        QVERIFY(content);
        const auto result = m_grabber->capture(*content, content->displays.front(), {1}).result();
        QVERIFY(!result.frozen);
        QCOMPARE(result.error, "windows cannot be left out");
    }

private:
    QString path() const { return m_folder->filePath(QStringLiteral("Screenshot.png")); }

    void answerWithPicture(PortalScript script, QSize size = {160, 90})
    {
        m_picture = QImage(size, QImage::Format_RGB32);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x)
                m_picture.setPixel(x, y, qRgb(x % 256, y, 99));
        }
        QVERIFY(m_picture.save(path(), "PNG"));
        script.results.insert(QStringLiteral("uri"), QUrl::fromLocalFile(path()).toString());
        m_portal->set(script);
    }
    void answerLate() { answerWithPicture({.delay = 700ms}); }
    /// The file is written by and by, as soon as somebody looks for it.
    bool preparesBefore(const QFuture<PortalScreenGrabber::Content> &content)
    {
        for (int i = 0; i < 5 && m_frozen == 0; ++i) {
            if (!m_picture.save(path(), "PNG"))
                return false;
            (void)waitUntil([this] { return m_frozen > 0; }, 100ms);
        }
        return m_frozen == int(m_screens.size()) && !content.isFinished();
    }
    std::shared_ptr<FrozenDisplay> frozen(const QImage &image)
    {
        ++m_frozen;
        return std::make_shared<ImageFrozenDisplay>(image);
    }
    QImage pixels(const ShareableContent &content, size_t display)
    {
        const auto result = m_grabber->capture(content, content.displays.at(display), {}).result();
        return result.frozen ? result.frozen->pixels().result() : QImage();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PortalScreenGrabber> m_grabber;
    std::vector<PortalDisplay> m_screens;
    int m_frozen = 0; ///< displays that were made
    int m_growing = 0; ///< likewise, of rows
    bool m_keepsRows = true;
    QImage m_picture;
};

QTEST_GUILESS_MAIN(TestPortalScreenGrabber)
#include "tst_PortalScreenGrabber.moc"
