// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/TesseractRecognizer.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>
#include <cmath>

using namespace tovek;

namespace {

/// Of two boxes, what they share; half of it is needed.
constexpr double sameBox = 0.5;
/// Of a word that is told, what lies in one that is not judged.
constexpr double coveredByUnjudged = 0.4;

struct TrueWord
{
    QString text;
    QRectF box;
    QRectF cell; ///< as high as the line
    bool isJudged = true;
};

struct Truth
{
    std::vector<TrueWord> words;
    std::vector<QRectF> unjudged;
};

struct ToldWord
{
    QString text;
    QRectF box;
};

/// What is found and told, of all pictures of a kind.
struct Score
{
    int found = 0;
    int told = 0;
    int there = 0;

    double f1() const { return 2.0 * found / std::max(1, told + there); }
};

QRectF boxFrom(const QJsonValue &value)
{
    const QJsonArray box = value.toArray();
    return {box[0].toDouble(), box[1].toDouble(), box[2].toDouble(), box[3].toDouble()};
}

/// Kinds of quotation marks and dashes count as one.
QString plain(QString text)
{
    for (QChar &c : text) {
        if (QStringLiteral("\u2018\u2019\u201a").contains(c))
            c = u'\'';
        else if (QStringLiteral("\u201c\u201d\u201e").contains(c))
            c = u'"';
        else if (QStringLiteral("\u2010\u2011\u2012\u2013\u2014\u2015\u2212\u00ad").contains(c))
            c = u'-';
    }
    return text.replace(QChar(u'\u2026'), QStringLiteral("..."));
}

bool isReadable(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c > u' ' && c <= u'~'; });
}

std::optional<Truth> truthOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QJsonObject json = QJsonDocument::fromJson(file.readAll()).object();
    Truth truth;
    for (const QJsonValue value : json.value(QStringLiteral("words")).toArray()) {
        const QJsonObject word = value.toObject();
        const QString text = plain(word.value(QStringLiteral("text")).toString());
        truth.words.push_back({text, boxFrom(word.value(QStringLiteral("box"))),
                               boxFrom(word.value(QStringLiteral("cell"))),
                               !word.value(QStringLiteral("ignore")).toBool() && isReadable(text)});
    }
    for (const QJsonValue zone : json.value(QStringLiteral("ignore")).toArray())
        truth.unjudged.push_back(boxFrom(zone));
    return truth;
}

double area(const QRectF &box)
{
    return box.width() * box.height();
}

double shared(const QRectF &a, const QRectF &b)
{
    const double both = area(a & b);
    return both / (area(a) + area(b) - both);
}

void add(const Truth &truth, const std::vector<ToldWord> &told, Score &score)
{
    std::vector<bool> isFound(truth.words.size(), false);
    for (const TrueWord &word : truth.words)
        score.there += word.isJudged;
    for (const ToldWord &one : told) {
        std::size_t best = truth.words.size();
        double closest = sameBox;
        for (std::size_t i = 0; i < truth.words.size(); ++i) {
            const TrueWord &word = truth.words[i];
            const double same = std::max(shared(one.box, word.box), shared(one.box, word.cell));
            if (!isFound[i] && word.text == one.text && same >= closest) {
                closest = same;
                best = i;
            }
        }
        if (best < truth.words.size()) {
            isFound[best] = true;
            score.found += truth.words[best].isJudged;
            score.told += truth.words[best].isJudged;
            continue;
        }
        const bool isJudged =
            isReadable(one.text)
            && std::none_of(truth.unjudged.begin(), truth.unjudged.end(),
                            [&](const QRectF &zone) { return zone.contains(one.box.center()); })
            && std::none_of(truth.words.begin(), truth.words.end(), [&](const TrueWord &word) {
                   return !word.isJudged
                       && area(word.cell & one.box) > area(one.box) * coveredByUnjudged;
               });
        score.told += isJudged;
    }
}

} // namespace

/// Real screens through the whole recogniser. The floors are what it reaches, less two words in a
/// hundred, without the terminals' fonts, which are not installed everywhere.
class TestScreens : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void readsWords_data()
    {
        QTest::addColumn<int>("pictures");
        QTest::addColumn<double>("floor");
        const QString fonts = QStringLiteral("/usr/share/fonts/X11/misc/");
        const bool hasBitmapFonts = QFile::exists(fonts + QStringLiteral("7x14.pcf.gz"))

            && QFile::exists(QStringLiteral(
                "/usr/share/fonts/X11/misc/ter-u14n_iso-8859-1.pcf.gz"));
        QTest::newRow("web") << 6 << 0.93;
        QTest::newRow("bitmap") << 6 << (hasBitmapFonts ? 0.97 : 0.74);
        QTest::newRow("terminal") << 3 << 0.76;
        QTest::newRow("gtk") << 5 << 0.92;
        QTest::newRow("qt") << 4 << 0.875;
    }
    void readsWords()
    {
        QFETCH(int, pictures);
        QFETCH(double, floor);
        TesseractRecognizer recognizer;
        Score score;
        for (int i = 1; i <= pictures; ++i) {
            const QString path = QStringLiteral(TOVEK_SCREENS "/%1-%2")
                                     .arg(QString::fromLatin1(QTest::currentDataTag()))
                                     .arg(i);
            const QImage image(path + QStringLiteral(".png"));
            const auto truth = truthOf(path + QStringLiteral(".json"));
            QVERIFY(!image.isNull() && truth && !truth->words.empty());
            const RecognitionResult result =
                recognizer.recognize(image.convertToFormat(QImage::Format_RGB32), 1).result();
            if (result.error.contains(QStringLiteral("model")))
                QSKIP("No text recognition model is installed.");
            QCOMPARE(result.error, QString());
            std::vector<ToldWord> told;
            for (const TextObservation &line : result.observations) {
                for (const RecognizedRange &range : line.ranges)
                    told.push_back({plain(line.text.mid(range.from, range.length)), range.box});
            }
            add(*truth, told, score);
        }
        qInfo("%d of %d words found, %d told: %.3f", score.found, score.there, score.told,
              score.f1());
        QVERIFY2(score.f1() >= floor, qPrintable(QString::number(score.f1())));
    }
};

QTEST_GUILESS_MAIN(TestScreens)
#include "tst_Screens.moc"
