// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The program gets no memory for a picture, or no thread, in the middle of a capture.

#include "desktop/Session.h"
#include "faults/Scarcity.h"
#include "support/Skip.h"

#include <QTest>

#include <new>

using namespace tovek;

namespace {

/// Threads that have nothing to do have ended.
constexpr int threadsRest = 5000;
constexpr int pixelsRest = 200;
/// Noise, as large in a file as in memory. Of more than half of the screen no copy is made.
constexpr QRect part(50, 50, 1100, 700);

struct ScarceSession : Session
{
    [[nodiscard]] bool start()
    {
        readsText = true;
        if (!startDesktop())
            return false;
        file.setFileName(desktop.home() + QStringLiteral("/scarcity"));
        if (!file.open(QIODevice::ReadWrite) || !file.resize(sizeof(ScarcityOrders)))
            return fail(file.errorString());
        orders = new (file.map(0, sizeof(ScarcityOrders))) ScarcityOrders;
        tovek->variables[QStringLiteral("LD_PRELOAD")] = QStringLiteral(TOVEK_SCARCITY_LIBRARY);
        tovek->variables[QStringLiteral("TOVEK_SCARCITY")] = file.fileName();
        return tovek->start() || fail(tovek->error());
    }
    void grantAll() const
    {
        orders->leastRefused = 0;
        orders->hasNoThreads = false;
    }
    bool tells(const char *message) const
    {
        return waitUntil([&] {
            const QList<SeenWindow> windows = tovek->eye().windows();
            return std::any_of(windows.begin(), windows.end(), [&](const SeenWindow &window) {
                return window.title == QLatin1String(message);
            });
        });
    }
    /// The program has lost nothing but that one capture.
    bool worksAgain()
    {
        grantAll();
        if (!open())
            return false;
        select(part.topLeft(), part.bottomRight());
        return tap("Return")
            && differentPixels(QImage::fromData(pasted()),
                               expected(part.topLeft(), part.bottomRight()))
            == 0;
    }

    const char *log()
    {
        text = tovek->program().lines().join(QLatin1Char('\n')).toUtf8();
        return text.constData();
    }

    QByteArray text;
    QFile file;
    ScarcityOrders *orders = nullptr;
};

struct Want
{
    size_t leastRefused;
    bool hasNoThreads;
};

} // namespace

class TestScarcity : public QObject
{
    Q_OBJECT

    static void addWants()
    {
        QTest::addColumn<Want>("want");
        QTest::newRow("no memory") << Want{64 * 1024, false};
        QTest::newRow("no threads") << Want{0, true};
    }
    static void addWantsOfFiles()
    {
        addWants();
        QTest::newRow("no memory for the file") << Want{500 * 1024, false};
    }
    static void copyIsToldToFail(ScarceSession &s)
    {
        apply(s);
        QVERIFY(s.tap("Return"));
        QVERIFY2(s.isClosed(), s.log());
        QVERIFY(s.tells("Failed to copy image"));
        ClipboardReader reader(s.desktop.displayName());
        QVERIFY(!reader.read(QStringLiteral("image/png")));
        QVERIFY2(s.worksAgain(), s.log());
    }
    static void apply(const ScarceSession &s)
    {
        QFETCH(Want, want);
        if (want.hasNoThreads)
            QTest::qWait(threadsRest);
        s.orders->leastRefused = want.leastRefused;
        s.orders->hasNoThreads = want.hasNoThreads;
    }

private Q_SLOTS:
    void initTestCase()
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        QSKIP("The sanitizers give out the memory themselves");
#endif
        SKIP_BECAUSE(TestDesktop::missing());
    }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    }

    void isToldForACopy_data()
    {
        addWantsOfFiles();
    }
    void isToldForACopy()
    {
        ScarceSession s;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.open());
        s.select(part.topLeft(), part.bottomRight());
        QTest::qWait(pixelsRest); // the frozen pixels are there
        copyIsToldToFail(s);
    }

    void isToldForADrawing_data()
    {
        addWants();
    }
    void isToldForADrawing()
    {
        ScarceSession s;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.open());
        s.select(part.topLeft(), part.bottomRight());
        QVERIFY(s.tap("r"));
        s.select({200, 200}, {300, 300});
        QTest::qWait(pixelsRest);
        copyIsToldToFail(s);
    }

    void isToldForASave_data()
    {
        addWantsOfFiles();
    }
    void isToldForASave()
    {
        ScarceSession s;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.open());
        s.select(part.topLeft(), part.bottomRight());
        QTest::qWait(pixelsRest);
        apply(s);
        QVERIFY(s.tap("Control_L+s"));
        QVERIFY2(s.isClosed(), s.log());
        QVERIFY2(s.tells("Failed to create image"), s.log());
        QCOMPARE(QDir(s.desktop.downloads())
                     .entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList());
        QVERIFY2(s.worksAgain(), s.log());
    }

    /// From before its start on: the server keeps the frozen screen, but its pixels do not come.
    void isToldForAWholeCapture_data()
    {
        addWants();
    }
    void isToldForAWholeCapture()
    {
        ScarceSession s;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.open() && s.tap("Escape") && s.isClosed());
        apply(s);
        QVERIFY(s.open());
        s.select(part.topLeft(), part.bottomRight());
        QVERIFY(s.tap("Return"));
        QVERIFY2(s.isClosed(), s.log());
        QVERIFY(s.tells("Failed to copy image"));
        QVERIFY2(s.worksAgain(), s.log());
    }

    void isToldForText_data()
    {
        addWants();
    }
    void isToldForText()
    {
        ScarceSession s;
        QVERIFY2(s.start(), qPrintable(s.error));
        QVERIFY(s.open(RunningTovek::captureText));
        apply(s);
        s.select(part.topLeft(), part.bottomRight());
        const auto isTold = [&] {
            const QList<SeenWindow> windows = s.tovek->eye().windows();
            return std::any_of(windows.begin(), windows.end(), [](const SeenWindow &window) {
                return window.title == QLatin1String("No text detected")
                    || window.title == QLatin1String("Failed to process image");
            });
        };
        QVERIFY2(waitUntil(isTold), s.log());
        if (!s.isClosed())
            QVERIFY(s.tap("Escape"));
        QVERIFY2(s.worksAgain(), s.log());
    }
};

QTEST_GUILESS_MAIN(TestScarcity)
#include "tst_Scarcity.moc"
