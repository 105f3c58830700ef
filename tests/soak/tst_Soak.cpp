// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Many captures of all kinds with random selections, in one life of the program: no wrong pixel,
// nothing stuck, nothing left behind, nothing that grows.

#include "desktop/Session.h"
#include "desktop/TextWindow.h"
#include "support/Skip.h"

#include <QRandomGenerator>
#include <QTest>

#include <unistd.h>

using namespace tovek;

namespace {

constexpr int sessionsByDefault = 60;
constexpr int warmUpSessions = 12; // at least one of each kind
constexpr int comparedEach = 20;
constexpr std::chrono::seconds patience(60);
constexpr int restMs = 8000; // threads of pools end after 2 s, memory is given back after 4 s
#ifdef __SANITIZE_ADDRESS__
constexpr qint64 mostGrowth = 400'000'000; // that sanitizer keeps what is freed
#else
constexpr qint64 mostGrowth = 3'000'000;
#endif

/// What a process has of the machine.
struct Usage
{
    explicit Usage(qint64 pid) : threads(count(pid, "task")), descriptors(count(pid, "fd"))
    {
        QFile status(QStringLiteral("/proc/%1/statm").arg(pid));
        if (status.open(QIODevice::ReadOnly))
            resident = status.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
    }
    static qsizetype count(qint64 pid, const char *what)
    {
        return QDir(QStringLiteral("/proc/%1/%2").arg(pid).arg(QLatin1String(what)))
            .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System)
            .size();
    }

    qsizetype threads;
    qsizetype descriptors;
    qint64 resident = 0;
};

const QRect textWindow(700, 560, 460, 200);
const QStringList textLines{
    QStringLiteral("Save the changes before closing?"),
    QStringLiteral("Your document will be lost"), QStringLiteral("if you do not save it now."),
    QStringLiteral("The build finished without errors"), QStringLiteral("See the log for details")};

/// A desktop, the program, and somebody who captures without end.
struct SoakSession : Session
{
    enum Kind {
        copy,
        copyImage,
        save,
        cancelSelection,
        cancelAtOnce,
        resizeAndCopy,
        drawAndCopy,
        drawAndCancel,
        copyText,
        pickWords,
        kinds
    };

    /// With a window of text over a corner of the picture.
    bool startWithText()
    {
        readsText = true;
        if (!startDesktop())
            return false;
        words = showText(desktop, textWindow, 14, false, textLines);
        if (words.empty())
            return fail(QStringLiteral("no text came"));
        return (tovek->start(scale, {{QStringLiteral("highlightText"), true}})
                || fail(tovek->error()))
            && waitUntil([&] { return tovek->holds(QLatin1String(RunningTovek::captureText)); });
    }

    QPoint anywhere()
    {
        return {random.bounded(20, plan.size.width() - 20),
                random.bounded(20, plan.size.height() - 20)};
    }
    /// Corners of a selection that is large enough to be one.
    std::pair<QPoint, QPoint> selection()
    {
        const QPoint from = anywhere();
        QPoint to = anywhere();
        while (std::abs(to.x() - from.x()) < 30 || std::abs(to.y() - from.y()) < 30)
            to = anywhere();
        return {from, to};
    }
    /// False when the overlays did not come, or did not go.
    bool run(Kind kind, std::pair<QPoint, QPoint> corners)
    {
        if (kind == copyText || kind == pickWords) {
            ClipboardReader(desktop.displayName()).clear();
            return (kind == copyText ? selectLines() : selectWords()) && isClosed();
        }
        const char *chord =
            kind == copyImage ? RunningTovek::captureImage : RunningTovek::captureScreenshot;
        if (!tovek->open(QLatin1String(chord), monitors()))
            return false;
        if (kind != cancelAtOnce)
            select(corners.first, corners.second);
        if (kind == resizeAndCopy) {
            // By its lower right corner, and back.
            const QPoint corner(std::max(corners.first.x(), corners.second.x()),
                                std::max(corners.first.y(), corners.second.y()));
            tovek->hand().drag(corner, corner + QPoint(15, 15));
            tovek->hand().drag(corner + QPoint(15, 15), corner);
        }
        const bool draws = kind == drawAndCopy || kind == drawAndCancel;
        if (draws && !draw(corners))
            return false;
        const char *key = kind == save                                     ? "Control_L+s"
            : kind == copy || kind == resizeAndCopy || kind == drawAndCopy ? "Return"
                                                                           : "Escape";
        return (kind == copyImage || tap(key)) && isClosed();
    }
    /// Some of the lines, in a Capture Text.
    bool selectLines()
    {
        const qsizetype first = random.bounded(int(textLines.size()));
        const qsizetype count = 1 + random.bounded(int(textLines.size() - first));
        QRect box;
        size_t word = 0;
        for (qsizetype line = 0; line < first + count; ++line) {
            const qsizetype end = qsizetype(word) + textLines[line].count(QLatin1Char(' ')) + 1;
            for (; word < size_t(end); ++word)
                box |= line < first ? QRect() : words[word].box;
        }
        box.adjust(-9, -3, 9, 3);
        wantedText = textLines.mid(first, count).join(QLatin1Char('\n'));
        if (!tovek->open(QLatin1String(RunningTovek::captureText), monitors()))
            return false;
        select(box.topLeft(), box.bottomRight());
        return true;
    }
    /// Some of the words, in whichever direction, of a capture that holds all of them.
    bool selectWords()
    {
        const auto from = size_t(random.bounded(int(words.size())));
        const auto to = size_t(random.bounded(int(words.size())));
        const QRect all = boxAround(words).adjusted(-12, -12, 12, 12);
        wantedText = textBetween(std::min(from, to), std::max(from, to));
        if (!tovek->open(QLatin1String(RunningTovek::captureScreenshot), monitors()))
            return false;
        select(all.topLeft(), all.bottomRight());
        const auto areMarked = [&] {
            return std::all_of(words.begin(), words.end(),
                               [&](const WordPlace &word) { return isMarked(tovek->eye(), word); });
        };
        if (!waitUntil(areMarked, patience))
            return false;
        tovek->hand().drag(words[from].box.center(), words[to].box.center());
        return tap("Control_L+c");
    }
    QString textBetween(size_t first, size_t last) const
    {
        QString text = words[first].text;
        for (size_t word = first + 1; word <= last; ++word)
            text += (words[word].box.top() > words[word - 1].box.top() ? QLatin1Char('\n')
                                                                       : QLatin1Char(' '))
                + words[word].text;
        return text;
    }
    QString pastedText()
    {
        ClipboardReader reader(desktop.displayName());
        if (!waitUntil([&] { return reader.hasOwner(); }, patience))
            return {};
        return QString::fromUtf8(reader.read(QStringLiteral("UTF8_STRING")).value_or(QByteArray()));
    }
    /// An arrow or a rectangle in the left half of the selection, sometimes undone again.
    bool draw(std::pair<QPoint, QPoint> corners)
    {
        const QRect all = QRect(corners.first, corners.second).normalized();
        const int part = random.bounded(3);
        constexpr int roomBetweenHandles = 120;
        if (std::min(all.width(), all.height()) < roomBetweenHandles)
            return true;
        if (!tap(part == 0 ? "a" : "r"))
            return false;
        tovek->hand().drag(all.topLeft() + QPoint(all.width() / 8 + 4, all.height() / 4 + 4),
                           all.topLeft() + QPoint(all.width() * 3 / 8, all.height() * 3 / 4));
        return part != 2 || tap("Control_L+z");
    }
    bool isRight(Kind kind, std::pair<QPoint, QPoint> corners)
    {
        if (kind == copyText || kind == pickWords) {
            const QString text = pastedText();
            if (text != wantedText)
                qWarning().noquote() << "Wanted:" << wantedText << "but got:" << text;
            return text == wantedText;
        }
        const QImage wanted = expected(corners.first, corners.second);
        if (kind == copy || kind == copyImage)
            return differentPixels(QImage::fromData(pasted()), wanted) == 0;
        if (kind == drawAndCopy) {
            const QImage drawn = QImage::fromData(pasted());
            const QRect right(wanted.width() / 2, 0, wanted.width() / 2, wanted.height());
            return drawn.size() == wanted.size()
                && differentPixels(drawn.copy(right), wanted.copy(right)) == 0;
        }
        if (kind == resizeAndCopy)
            return !QImage::fromData(pasted()).isNull();
        if (kind != save)
            return true;
        // The latest; others of the same second gave way to it.
        return waitUntil([&] {
            const QStringList names = savedNames();
            const QString path = QDir(desktop.downloads()).filePath(names.value(names.size() - 1));
            return !names.isEmpty() && differentPixels(QImage(path), wanted) == 0;
        });
    }
    QStringList leftOver() const
    {
        const QStringList hidden =
            QDir(desktop.downloads()).entryList({QStringLiteral(".*")}, QDir::Files | QDir::Hidden);
        const QString runtime = desktop.environment().value(QStringLiteral("XDG_RUNTIME_DIR"));
        return hidden
            + QDir(runtime + QStringLiteral("/tovek/pictures"))
                  .entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    /// Pixels once in a while, since they are fetched through the server; files and texts always.
    static bool isLookedAt(Kind kind, int session)
    {
        return session % comparedEach == comparedEach - 1 || kind == save || kind == copyText
            || kind == pickWords;
    }

    QRandomGenerator random;
    std::vector<WordPlace> words;
    QString wantedText;
};

} // namespace

class TestSoak : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        SKIP_BECAUSE(TestDesktop::missing());
        if (!QFile::exists(QStringLiteral("/usr/share/tesseract-ocr/5/tessdata/eng.traineddata")))
            QSKIP("no English recognition model is installed");
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void everySession()
    {
        bool isGiven = false;
        const int given = qEnvironmentVariableIntValue("TOVEK_SOAK_SESSIONS", &isGiven);
        const int sessions = isGiven ? given : sessionsByDefault;
        const quint32 seed = isGiven ? QRandomGenerator::global()->generate() : 7;
        qInfo("%d sessions, seed %u", sessions, seed);
        SoakSession s;
        s.random.seed(seed);
        QVERIFY2(s.startWithText(), qPrintable(s.error));
        s.before = s.tovek->eye().lookWhenStill();
        const qint64 pid = s.tovek->program().pid();
        std::optional<Usage> baseline;
        for (int i = 0; i < sessions; ++i) {
            if (i == warmUpSessions) {
                QTest::qWait(restMs);
                baseline.emplace(pid);
            }
            // Each kind once before what is compared with the end is measured.
            const int any = s.random.bounded(int(SoakSession::kinds));
            const auto kind = SoakSession::Kind(i < SoakSession::kinds ? i : any);
            const auto corners = s.selection();
            const QString what = QStringLiteral("session %1, kind %2").arg(i).arg(kind);
            QVERIFY2(s.run(kind, corners), qPrintable(what));
            if (SoakSession::isLookedAt(kind, i))
                QVERIFY2(s.isRight(kind, corners), qPrintable(what));
        }
        QVERIFY(baseline);
        QTest::qWait(restMs);
        const Usage after(pid);
        qInfo("threads %d -> %d, descriptors %d -> %d, resident %.1f -> %.1f MB",
              int(baseline->threads), int(after.threads), int(baseline->descriptors),
              int(after.descriptors), double(baseline->resident) / 1e6,
              double(after.resident) / 1e6);
        QVERIFY(after.threads <= baseline->threads);
        QVERIFY(after.descriptors <= baseline->descriptors);
        QVERIFY(after.resident < baseline->resident + mostGrowth);
        QCOMPARE(s.leftOver(), QStringList());
        QCOMPARE(s.tovek->program().stop(), 0);
        QCOMPARE(s.tovek->program().errorLines(), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestSoak)
#include "tst_Soak.moc"
