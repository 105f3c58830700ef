// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/ControllerFixture.h"
#include "fakes/LogCapture.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

TextRegion word(const char *text, double y)
{
    return {QString::fromLatin1(text), {0.1, y, 0.1, 0.1}};
}

/// A selection whose words come when the test says so.
struct SlowText
{
    explicit SlowText(CaptureMode mode = CaptureMode::normal)
    {
        f.recognize = [this](const Image &, const SelectionText::Use &tell) {
            tellPart = tell;
            promise = std::make_unique<QPromise<std::vector<TextRegion>>>();
            promise->start();
            return promise->future();
        };
        f.controller->startCapture(mode);
        select({10, 10}, {60, 60});
    }
    SelectionOverlayView *view() { return f.controller->overlayWindows().at(0)->selectionView(); }
    void select(QPoint from, QPoint to)
    {
        QTest::mousePress(view(), Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, to, to, Qt::NoButton, Qt::LeftButton, {});
        QCoreApplication::sendEvent(view(), &move);
        QTest::mouseRelease(view(), Qt::LeftButton, {}, to);
    }
    void finish(const std::vector<TextRegion> &regions)
    {
        promise->addResult(regions);
        promise->finish();
    }
    QString shown()
    {
        QStringList texts;
        for (const TextRegion &region : view()->textRegionOverlay()->selection().textRegions)
            texts += region.text;
        return texts.join(' ');
    }

    ControllerFixture f;
    SelectionText::Use tellPart;
    std::unique_ptr<QPromise<std::vector<TextRegion>>> promise;
};

} // namespace

/// What becomes of a selection: a copy, a file, a text, or word of its failure.
class TestCaptureResults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void confirmsACopyBeforeTheWork()
    {
        ControllerFixture f;
        f.screens.mouse = {450, 10};
        f.controller->startCapture(CaptureMode::normal);
        // 100 x 50 points at the top left corner of the screen at scale 2.
        f.overlay().onCopyImage({0, 150, 100, 50});
        QCOMPARE(
            f.events.mid(0, 2),
            (QStringList{"toast Image copied to clipboard [checkmark.circle.fill] on 2, 0 open",
                         "sound"}));
        QTRY_COMPARE(f.events.size(), 3);
        QCOMPARE(f.events.last(), QStringLiteral("preview 200x100 for 20"));
        QTRY_VERIFY(!f.clipboard.lastPng().isEmpty());
        const QImage copied = QImage::fromData(f.clipboard.lastPng());
        QCOMPARE(copied.convertToFormat(QImage::Format_RGB32),
                 ControllerFixture::numbered({600, 400}).copy(0, 0, 200, 100));
        QCOMPARE(copied.dotsPerMeterX(), qRound(144 / 0.0254));
    }

    void copiesAtOnceInCopyImageMode()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::copyImage);
        f.overlay().onSelectionComplete({10, 20, 30, 40});
        QVERIFY(!f.controller->isCapturing());
        QTRY_VERIFY(!f.clipboard.lastPng().isEmpty());
        QCOMPARE(QImage::fromData(f.clipboard.lastPng()).size(), QSize(30, 40));
        QVERIFY(f.recognised.isEmpty());
    }

    void logsTheSelection()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::normal);
        LogCapture log;
        f.overlay().onSelectionComplete({10, 20, 30, 40});
        QCOMPARE(log.lines(),
                 QStringList{"Selection complete: (10, 20, 30, 40) on screen Screen 1"});
    }

    void savesUnderTheNameOfTheToast()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::normal);
        f.overlay().onSaveImage({10, 20, 30, 40});
        const QString name = QStringLiteral("Tovek 2025-03-07 at 14.05.09.png");
        QCOMPARE(
            f.events.first(),
            QStringLiteral("toast Saved to %1 [checkmark.circle.fill] on 1, 0 open").arg(name));
        QTRY_COMPARE(f.events.size(), 4);
        QCOMPARE(f.events.mid(1),
                 (QStringList{"sound", "preview 30x40 for 20",
                              QStringLiteral("notification %1 %1").arg(name)}));
        const QImage saved(f.folder.filePath(name));
        QCOMPARE(saved.convertToFormat(QImage::Format_RGB32),
                 ControllerFixture::numbered({400, 300}).copy(10, 240, 30, 40));
    }

    void tellsOfAFailedSaveAfterTheSuccess()
    {
        ControllerFixture f;
        f.defaults.setString(QStringLiteral("saveFolderPath"),
                             f.folder.filePath(QStringLiteral("missing")));
        LogCapture log;
        f.controller->startCapture(CaptureMode::normal);
        f.overlay().onSaveImage({10, 20, 30, 40});
        QTRY_COMPARE(f.events.size(), 3);
        QCOMPARE(f.events.last(),
                 QStringLiteral("toast Failed to save image [xmark.circle.fill] on 1, 0 open"));
        QVERIFY(log.lines().last().startsWith(QStringLiteral("Failed to save image: ")));
    }

    void failsToCopyASelectionBesideTheScreen()
    {
        ControllerFixture f;
        LogCapture log;
        f.controller->startCapture(CaptureMode::normal);
        f.overlay().onCopyImage({500, 20, 30, 40});
        QTRY_COMPARE(f.events.size(), 3);
        QCOMPARE(f.events.last(),
                 QStringLiteral("toast Failed to copy image [xmark.circle.fill] on 1, 0 open"));
        QCOMPARE(log.lines().last(), QStringLiteral("Failed to crop image"));
        QVERIFY(f.clipboard.lastPng().isEmpty());
    }

    void copiesAnAnnotatedImageAsItIs()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::normal);
        f.overlay(1).onCopyAnnotatedImage({ControllerFixture::numbered({20, 10}), {20, 10}});
        QCOMPARE(
            f.events.first(),
            QStringLiteral("toast Image copied to clipboard [checkmark.circle.fill] on 1, 0 open"));
        QTRY_VERIFY(!f.clipboard.lastPng().isEmpty());
        QCOMPARE(QImage::fromData(f.clipboard.lastPng()).size(), QSize(20, 10));
    }

    void savesAnAnnotatedImageAsItIs()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::normal);
        f.overlay().onSaveAnnotatedImage({ControllerFixture::numbered({20, 10}), {20, 10}});
        QTRY_COMPARE(f.events.size(), 4);
        QCOMPARE(
            QImage(f.folder.filePath(QStringLiteral("Tovek 2025-03-07 at 14.05.09.png"))).size(),
            QSize(20, 10));
    }

    void staysOpenWithoutTextInNormalMode()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::normal);
        f.overlay().onSelectionComplete({10, 20, 30, 40});
        QCOMPARE(f.recognised, QList{QSize(30, 40)});
        f.clock.advance(1s);
        QVERIFY(f.controller->isCapturing());
        QVERIFY(f.events.isEmpty());
    }

    void endsWithoutTextInCopyTextMode()
    {
        ControllerFixture f;
        f.controller->startCapture(CaptureMode::copyText);
        f.overlay().onSelectionComplete({10, 20, 30, 40});
        QCOMPARE(f.events, QStringList{"toast No text detected [xmark.circle.fill] on 1, 2 open"});
        f.clock.advance(49ms);
        QVERIFY(f.controller->isCapturing());
        f.clock.advance(1ms);
        QVERIFY(!f.controller->isCapturing());
    }

    void copiesAllTextInCopyTextMode()
    {
        ControllerFixture f;
        f.regions = {word("to", 0.8), word("be", 0.79), word("or", 0.5)};
        f.controller->startCapture(CaptureMode::copyText);
        f.overlay().onSelectionComplete({10, 20, 30, 40});
        QCOMPARE(f.clipboard.lastText(), QStringLiteral("to be\nor"));
        QVERIFY(f.events.isEmpty());
        f.clock.advance(50ms);
        QCOMPARE(f.events, QStringList{"toast Text copied to clipboard [doc.text] on 1, 0 open"});
        QVERIFY(!f.controller->isCapturing());
    }

    /// Each letter is an event: m a package is missing, n another, c the text is copied and its
    /// toast comes up, g that goes, s another text is read, e its capture is cancelled, x there is
    /// no text in what is to be copied.
    void tellsOnceWhatToInstall_data()
    {
        QTest::addColumn<QString>("events");
        QTest::addColumn<QStringList>("told");
        const QString plain = QStringLiteral("toast Text copied to clipboard [doc.text]");
        const QString advice = QStringLiteral("Text copied to clipboard. Install tesseract-ocr-%1");
        const QString m = advice.arg("rus to read Cyrillic");
        const QString n = advice.arg("ara to read Arabic");
        const QString toast = QStringLiteral("toast %1 [doc.text]");
        const QString extended = QStringLiteral("Text copied to clipboard -> %1");
        QTest::newRow("nothing") << "sc" << QStringList{plain};
        QTest::newRow("known before") << "smc" << QStringList{toast.arg(m)};
        QTest::newRow("known while the toast is up")
            << "scm" << QStringList{plain, extended.arg(m)};
        QTest::newRow("known too late") << "scgm" << QStringList{plain};
        QTest::newRow("too late, and again") << "scgmsmc" << QStringList{plain, toast.arg(m)};
        QTest::newRow("once, early") << "smcgsmc" << QStringList{toast.arg(m), plain};
        QTest::newRow("once, late") << "scmgscm" << QStringList{plain, extended.arg(m), plain};
        QTest::newRow("twice of one text") << "smmc" << QStringList{toast.arg(m)};
        QTest::newRow("each package")
            << "smcgscn" << QStringList{toast.arg(m), plain, extended.arg(n)};
        QTest::newRow("of a cancelled capture") << "sme" << QStringList{};
        QTest::newRow("after a cancelled capture") << "sem" << QStringList{};
        QTest::newRow("not of another text") << "smesc" << QStringList{plain};
        QTest::newRow("with its own text") << "smesmc" << QStringList{toast.arg(m)};
        const QString none = QStringLiteral("toast No text detected [xmark.circle.fill]");
        const QString noneExtended =
            QStringLiteral("No text detected -> No text detected. Install tesseract-ocr-rus "
                           "to read Cyrillic");
        QTest::newRow("no text") << "x" << QStringList{none};
        QTest::newRow("no text, for want of it") << "xm" << QStringList{none, noneExtended};
        QTest::newRow("no text, and told before") << "smcgxm" << QStringList{toast.arg(m), none};
    }
    void tellsOnceWhatToInstall()
    {
        QFETCH(QString, events);
        ControllerFixture f;
        f.regions = {word("word", 0.8)};
        for (const QChar event : events) {
            switch (event.toLatin1()) {
            case 's':
                f.controller->startCapture(CaptureMode::normal);
                f.overlay().onSelectionComplete({10, 20, 30, 40});
                break;
            case 'm':
                f.miss.last()({"tesseract-ocr-rus", "Cyrillic"});
                break;
            case 'n':
                f.miss.last()({"tesseract-ocr-ara", "Arabic"});
                break;
            case 'c':
                f.overlay().onCopySelectedText(f.regions);
                f.clock.advance(200ms);
                f.isToastUp = true;
                break;
            case 'g':
                f.isToastUp = false;
                break;
            case 'x':
                f.isToastUp = true;
                f.regions.clear();
                f.controller->startCapture(CaptureMode::copyText);
                f.overlay().onSelectionComplete({10, 20, 30, 40});
                f.clock.advance(200ms);
                break;
            default:
                f.overlay().onCancel();
                f.clock.advance(200ms);
            }
        }
        QTEST(f.events.replaceInStrings(QRegularExpression(" on 1, . open"), QString()), "told");
    }

    void doesNotTellOfAnEarlierTextInTheToastOfALater()
    {
        ControllerFixture f;
        f.regions = {word("word", 0.8)};
        for (int i = 0; i < 2; ++i) {
            f.controller->startCapture(CaptureMode::copyText);
            f.overlay().onSelectionComplete({10, 20, 30, 40});
            f.clock.advance(200ms);
        }
        QCOMPARE(f.events.size(), 2);
        f.miss.first()({"tesseract-ocr-rus", "Cyrillic"});
        QCOMPARE(f.events.size(), 2);
        f.miss.last()({"tesseract-ocr-rus", "Cyrillic"});
        QCOMPARE(f.events.size(), 3);
    }

    void readsTheSelectionsOfTwoScreensSideBySide()
    {
        ControllerFixture f;
        std::vector<QPromise<std::vector<TextRegion>>> readers;
        readers.reserve(2);
        f.recognize = [&](const Image &, const SelectionText::Use &) {
            readers.emplace_back().start();
            return readers.back().future();
        };
        f.controller->startCapture(CaptureMode::normal);
        f.overlay(0).onSelectionComplete({10, 20, 30, 40});
        f.overlay(1).onSelectionComplete({10, 20, 50, 60});
        QCOMPARE(readers.size(), size_t(2));
        QVERIFY(!readers[0].isCanceled());
        readers[1].addResult(std::vector{word("second", 0.8)});
        readers[1].finish();
        QTRY_COMPARE(f.controller->detectedTextRegions().size(), size_t(1));
        readers[0].addResult(std::vector{word("first", 0.8)});
        readers[0].finish();
        QCoreApplication::processEvents();
        // All text is that of the last selection.
        f.overlay(1).onCopyAllText();
        QCOMPARE(f.clipboard.lastText(), QStringLiteral("second"));
    }

    void showsWordsWhileOthersAreStillRead()
    {
        SlowText text;
        text.tellPart({word("to", 0.8)});
        text.tellPart({word("be", 0.6)});
        QCOMPARE(text.shown(), QStringLiteral("to be"));
        QVERIFY(text.f.controller->detectedTextRegions().empty());
        text.finish({word("not", 0.9), word("to", 0.8), word("be", 0.6)});
        QTRY_COMPARE(text.shown(), QStringLiteral("not to be"));
        QCOMPARE(text.f.controller->detectedTextRegions().size(), size_t(3));
    }

    /// The list of a recognition that failed is empty, but what was read is right.
    void keepsTheWordsThatWereShownBeforeAFailure()
    {
        SlowText text;
        text.tellPart({word("to", 0.8)});
        text.finish({});
        QCoreApplication::processEvents();
        QCOMPARE(text.shown(), QStringLiteral("to"));
        QVERIFY(text.f.controller->detectedTextRegions().empty());
        QVERIFY(text.f.events.isEmpty());
    }

    void dropsTheWordsOfAnEarlierSelection()
    {
        SlowText text;
        text.tellPart({word("to", 0.8)});
        const SelectionText::Use tellEarlier = text.tellPart;
        const Rect before = *text.view()->selectionRect();
        text.select({60, 60}, {80, 90}); // by its corner
        QVERIFY(!(*text.view()->selectionRect() == before));
        tellEarlier({word("stale", 0.8)});
        QVERIFY(!text.view()->textRegionOverlay());
        text.tellPart({word("be", 0.8)});
        QCOMPARE(text.shown(), QStringLiteral("be"));
        text.f.overlay().onCancel();
        text.tellPart({word("late", 0.8)});
        QVERIFY(text.promise->isCanceled());
    }

    void copiesOnlyWhatIsReadInWhole()
    {
        SlowText text(CaptureMode::copyText);
        QVERIFY(!text.tellPart);
        text.finish({word("to", 0.8), word("be", 0.8)});
        QTRY_COMPARE(text.f.clipboard.lastText(), QStringLiteral("to be"));
    }

    void keepsTheTextForLaterInNormalMode()
    {
        ControllerFixture f;
        f.regions = {word("to", 0.8)};
        f.controller->startCapture(CaptureMode::normal);
        f.overlay().onCopyAllText();
        QCOMPARE(f.events.size(), 1);
        QVERIFY(f.events.last().startsWith(QStringLiteral("toast No text detected")));
        QVERIFY(f.controller->isCapturing());
        f.overlay().onSelectionComplete({10, 20, 30, 40});
        QVERIFY(f.clipboard.lastText().isEmpty());
        f.overlay().onCopyAllText();
        QCOMPARE(f.clipboard.lastText(), QStringLiteral("to"));
    }
};

QTEST_MAIN(TestCaptureResults)
#include "tst_CaptureResults.moc"
