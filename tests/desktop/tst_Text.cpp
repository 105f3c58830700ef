// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Text on real windows, read by the program with the machine's own recogniser.

#include "desktop/Session.h"
#include "desktop/TextWindow.h"

#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;

namespace {

constexpr const char *captureText = RunningTovek::captureText;
constexpr std::chrono::seconds patience(60);

/// A desktop with windows of text, and the program with a shortcut for Capture Text.
struct TextSession : Session
{
    explicit TextSession(double screenScale = 1) : Session({}, screenScale) { }

    [[nodiscard]] bool startWith(const QStringList &lines, bool isDark,
                                 const QJsonObject &more = {})
    {
        if (!desktop.start())
            return fail(desktop.error());
        words = showText(desktop, {80, 60, 1000, 600}, int(14 * scale), isDark, lines);
        if (words.empty())
            return fail(QStringLiteral("no text came"));
        return startProgram(more);
    }
    [[nodiscard]] bool startProgram(const QJsonObject &more = {})
    {
        tovek = std::make_unique<RunningTovek>(desktop, program);
        tovek->readsText = true;
        return (tovek->start(scale, more) || fail(tovek->error()))
            && waitUntil([&] { return tovek->holds(QLatin1String(captureText)); });
    }
    /// Around all words, with some room.
    QRect all() const { return boxAround(words).adjusted(-12, -12, 12, 12); }
    QString copiedText()
    {
        ClipboardReader reader(desktop.displayName());
        if (!isClosed() || !waitUntil([&] { return reader.hasOwner(); }, patience))
            return {};
        return QString::fromUtf8(reader.read(QStringLiteral("UTF8_STRING")).value_or(QByteArray()));
    }
    bool isMarked(const WordPlace &word) const { return tovek::isMarked(tovek->eye(), word); }
    /// Once the overlays have gone.
    bool showsToast() const
    {
        const QList<SeenWindow> windows = tovek->eye().windows();
        return std::any_of(windows.begin(), windows.end(), [](const SeenWindow &window) {
            return window.windowClass.compare(QLatin1String("tovek"), Qt::CaseInsensitive) == 0;
        });
    }
    bool areMarked() const
    {
        return std::all_of(words.begin(), words.end(),
                           [&](const WordPlace &word) { return isMarked(word); });
    }

    QString program = qEnvironmentVariable("TOVEK_PROGRAM");
    std::vector<WordPlace> words;
};

const QJsonObject highlighted{{QStringLiteral("highlightText"), true}};

/// Pixels that differ from the middle of the picture, where nothing is written.
int inkIn(const QImage &picture)
{
    const QRgb paper = picture.pixel(picture.rect().center());
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            count += picture.pixel(x, y) != paper;
    }
    return count;
}

} // namespace

class TestText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (const QString reason = TestDesktop::missing(); !reason.isEmpty())
            QSKIP(qPrintable(reason));
        if (!QFile::exists(QStringLiteral("/usr/share/tesseract-ocr/5/tessdata/eng.traineddata")))
            QSKIP("no English recognition model is installed");
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void copiesWhatTheWindowShows_data()
    {
        QTest::addColumn<bool>("isDark");
        QTest::addColumn<double>("scale");
        QTest::newRow("light") << false << 1.0;
        QTest::newRow("dark") << true << 1.0;
        QTest::newRow("light, scale 2") << false << 2.0;
        QTest::newRow("dark, scale 2") << true << 2.0;
    }
    void copiesWhatTheWindowShows()
    {
        QFETCH(bool, isDark);
        QFETCH(double, scale);
        const QStringList lines{QStringLiteral("Save the changes before closing?"),
                                QStringLiteral("Your document will be lost"),
                                QStringLiteral("if you do not save it now.")};
        TextSession session(scale);
        QVERIFY2(session.startWith(lines, isDark), qPrintable(session.error));
        QVERIFY(session.open(captureText));
        session.select(session.all().topLeft(), session.all().bottomRight());
        QCOMPARE(session.copiedText(), lines.join('\n'));
    }

    void copiesFromATerminal()
    {
        const QString xterm = QStandardPaths::findExecutable(QStringLiteral("xterm"));
        if (xterm.isEmpty())
            QSKIP("xterm is not installed");
        TextSession session;
        QVERIFY2(session.desktop.start(), qPrintable(session.desktop.error()));
        QVERIFY(session.desktop.run(
            xterm,
            {"-geometry", "60x8+100+100", "-fa", "DejaVu Sans Mono", "-fs", "12", "+sb", "-e", "sh",
             "-c",
             "printf '\\033[?25lThe build finished without errors\\nSee the log for details'; "
             "sleep 600"}));
        QVERIFY(session.startProgram());
        const auto terminal = [&]() -> QRect {
            for (const SeenWindow &window : session.tovek->eye().windows()) {
                if (window.windowClass == QLatin1String("XTerm"))
                    return window.native;
            }
            return {};
        };
        QVERIFY(waitUntil([&] { return !terminal().isEmpty(); }, patience));
        // A terminal shows its cursor before it shows what its program prints.
        QVERIFY(waitUntil(
            [&] {
                return inkIn(session.tovek->eye().look(terminal().adjusted(4, 26, -4, -4))) > 1500;
            },
            patience));
        QVERIFY(session.open(captureText));
        // Below the title bar.
        session.select(terminal().topLeft() + QPoint(4, 26), terminal().center() + QPoint(250, 0));
        QCOMPARE(session.copiedText(),
                 QStringLiteral("The build finished without errors\nSee the log for details"));
    }

    void saysThatThereIsNoText()
    {
        TextSession session;
        QVERIFY2(session.startWith({QStringLiteral("word")}, false), qPrintable(session.error));
        QVERIFY(session.open(captureText));
        session.select({400, 300}, {700, 500});
        QVERIFY(session.isClosed());
        QVERIFY(waitUntil([&] { return session.showsToast(); }));
        QVERIFY(session.tovek->waitUntilGone());
        QVERIFY(!ClipboardReader(session.desktop.displayName()).hasOwner());
        QVERIFY(session.tovek->program().isRunning());
    }

    void saysThatTheRecogniserIsMissing()
    {
        // Nothing is installed beside this copy.
        const QTemporaryDir folder;
        TextSession session;
        session.program = folder.filePath(QStringLiteral("bin/tovek"));
        QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("bin")));
        QVERIFY(QFile::copy(qEnvironmentVariable("TOVEK_PROGRAM"), session.program));
        QVERIFY2(session.startWith({QStringLiteral("words to read")}, false),
                 qPrintable(session.error));
        QVERIFY(session.open(captureText));
        session.select(session.all().topLeft(), session.all().bottomRight());
        QVERIFY(session.tovek->program().waitForLine(
            QStringLiteral("OCR failed: the program tovek-ocr is missing beside this one; install "
                           "Tovek again"),
            patience));
        QVERIFY(session.isClosed());
        QVERIFY(waitUntil([&] { return session.showsToast(); }));
        QVERIFY(session.tovek->waitUntilGone());
        QVERIFY(!ClipboardReader(session.desktop.displayName()).hasOwner());
        QVERIFY(session.tovek->program().isRunning());
    }

    void readsOnAfterManyCancelledSelections_data()
    {
        QTest::addColumn<QString>("chord");
        QTest::newRow("of text") << QString(captureText);
        QTest::newRow("of pictures") << QString(RunningTovek::captureScreenshot);
    }
    void readsOnAfterManyCancelledSelections()
    {
        QFETCH(QString, chord);
        TextSession session;
        QVERIFY2(session.startWith({QStringLiteral("never mind"), QStringLiteral("read this")},
                                   false, highlighted),
                 qPrintable(session.error));
        const QRect all = session.all();
        for (int i = 0; i < 10; ++i) {
            QVERIFY(session.tovek->open(chord, session.monitors()));
            session.select(all.topLeft(), all.bottomRight());
            QVERIFY(session.tap("Escape"));
            QVERIFY(session.isClosed());
        }
        QVERIFY(session.tovek->program().isRunning());
        QVERIFY(session.open(captureText));
        // A late answer to what was cancelled would hold the first line as well.
        const QRect last = (session.words[2].box | session.words[3].box).adjusted(-9, -3, 9, 3);
        session.select(last.topLeft(), last.bottomRight());
        QCOMPARE(session.copiedText(), QStringLiteral("read this"));
    }

    void discardsSelectionsTooSmallToMean_data()
    {
        QTest::addColumn<QPoint>("size");
        QTest::newRow("one pixel") << QPoint(1, 1);
        QTest::newRow("two pixels") << QPoint(2, 2);
        QTest::newRow("ten pixels") << QPoint(10, 10);
        QTest::newRow("wide and flat") << QPoint(300, 10);
        QTest::newRow("narrow and high") << QPoint(10, 300);
    }
    void discardsSelectionsTooSmallToMean()
    {
        QFETCH(QPoint, size);
        TextSession session;
        QVERIFY2(session.startWith({QStringLiteral("another try")}, false),
                 qPrintable(session.error));
        QVERIFY(session.open(captureText));
        session.select({400, 300}, QPoint(400, 300) + size);
        // The same overlay takes the next one.
        session.select(session.all().topLeft(), session.all().bottomRight());
        QCOMPARE(session.copiedText(), QStringLiteral("another try"));
    }

    void bearsTheSmallestSelections_data()
    {
        QTest::addColumn<QPoint>("size");
        QTest::newRow("eleven pixels") << QPoint(11, 11);
        QTest::newRow("twenty pixels") << QPoint(20, 20);
        QTest::newRow("a flat strip") << QPoint(300, 11);
    }
    void bearsTheSmallestSelections()
    {
        QFETCH(QPoint, size);
        TextSession session;
        QVERIFY2(session.startWith({QStringLiteral("word")}, false), qPrintable(session.error));
        QVERIFY(session.open(captureText));
        session.select({400, 300}, QPoint(400, 300) + size);
        QVERIFY(session.isClosed());
        QVERIFY(waitUntil([&] { return session.showsToast(); }));
        QVERIFY(session.tovek->waitUntilGone());
        QVERIFY(!ClipboardReader(session.desktop.displayName()).hasOwner());
        QVERIFY(session.tovek->program().isRunning());
    }

    void picksWordsByTheirPlaces_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<QString>("expected");
        QTest::newRow("forwards") << 1 << 3 << "be or not";
        QTest::newRow("the second to") << 4 << 4 << "to";
        QTest::newRow("backwards over two lines") << 8 << 1 << "be or not to be\nthat is the";
    }
    void picksWordsByTheirPlaces()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        TextSession session;
        QVERIFY2(session.startWith(
                     {QStringLiteral("to be or not to be"), QStringLiteral("that is the question")},
                     false, highlighted),
                 qPrintable(session.error));
        QCOMPARE(session.words.size(), std::size_t(10));
        QVERIFY(session.open());
        session.select(session.all().topLeft(), session.all().bottomRight());
        QVERIFY(waitUntil([&] { return session.areMarked(); }, patience));
        session.tovek->hand().drag(session.words[std::size_t(from)].box.center(),
                                   session.words[std::size_t(to)].box.center());
        QVERIFY(session.tap("Control_L+c"));
        QTEST(session.copiedText(), "expected");
    }

    void marksWordsIfThatIsTurnedOn_data()
    {
        QTest::addColumn<QJsonValue>("highlightText");
        QTest::addColumn<bool>("isMarked");
        QTest::newRow("nothing said") << QJsonValue() << true;
        QTest::newRow("turned on") << QJsonValue(true) << true;
        QTest::newRow("turned off") << QJsonValue(false) << false;
    }
    void marksWordsIfThatIsTurnedOn()
    {
        QFETCH(QJsonValue, highlightText);
        QFETCH(bool, isMarked);
        TextSession session;
        QVERIFY2(session.startWith({QStringLiteral("these words count")}, false,
                                   {{QStringLiteral("highlightText"), highlightText}}),
                 qPrintable(session.error));
        QVERIFY(session.open());
        const QRect all = session.all();
        session.select(all.topLeft(), all.bottomRight());
        // Whether or not they are marked, words that have been found are under the pointer.
        const QPoint first = session.words.front().box.center();
        int moves = 0;
        const auto isFound = [&] {
            session.tovek->hand().move(first + QPoint(++moves % 2, 0));
            return session.isMarked(session.words.front());
        };
        QVERIFY(waitUntil(isFound, patience));
        QCOMPARE(session.isMarked(session.words.back()), isMarked);
    }

    void dropsTheWordsWhileTheSelectionChanges()
    {
        TextSession session;
        QVERIFY2(session.startWith({QStringLiteral("these words stay")}, false, highlighted),
                 qPrintable(session.error));
        QVERIFY(session.open());
        const QRect all = session.all();
        session.select(all.topLeft(), all.bottomRight());
        QVERIFY(waitUntil([&] { return session.areMarked(); }, patience));
        const QPoint wider = all.bottomRight() + QPoint(60, 40);
        session.tovek->hand().dragAndHold(all.bottomRight(), wider);
        const auto isAnyMarked = [&] {
            return std::any_of(session.words.begin(), session.words.end(),
                               [&](const WordPlace &word) { return session.isMarked(word); });
        };
        QVERIFY(waitUntil([&] { return !isAnyMarked(); }));
        session.tovek->hand().release();
        QVERIFY(waitUntil([&] { return session.areMarked(); }, patience));
    }
};

QTEST_GUILESS_MAIN(TestText)
#include "tst_Text.moc"
