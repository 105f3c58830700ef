// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/RunReader.h"

#include "reading/Backticks.h"
#include "reading/EngineWords.h"
#include "reading/Hyphens.h"
#include "reading/InkSegments.h"
#include "reading/Scripts.h"
#include "reading/SharedReadings.h"

#include <algorithm>

namespace tovek {

namespace {

/// Of the strip's rows, how many a line takes from the top of its ink to the bottom. Arabic,
/// Hebrew, Hindi and Korean are read about equally well with 22 to 28.
constexpr double lineRows = 22;
/// Below this mean confidence, letters may be what the engine made of a script that was scaled by
/// heights which it does not have. What is text of the script itself lies above.
constexpr double sureOfLetters = 95;

QString textOf(const std::vector<EngineSymbol> &symbols)
{
    QString text;
    for (const EngineSymbol &symbol : symbols)
        text += symbol.text;
    return text;
}

/// The mean; 0 where nothing was read.
template <typename Symbol>
double confidenceOf(const std::vector<Symbol> &symbols)
{
    double sum = 0;
    for (const Symbol &symbol : symbols)
        sum += symbol.confidence;
    return symbols.empty() ? 0 : sum / double(symbols.size());
}

/// Metrics that put the whole of the run's ink into the middle of a strip.
LetterMetrics wholeLine(const QRect &box)
{
    LetterMetrics metrics;
    const double pixels = box.height() / lineRows; // a row
    metrics.capHeight = LineStrip::capRows * pixels;
    metrics.baseline =
        box.top() + (LineStrip::baselineRow - (LineStrip::height - lineRows) / 2) * pixels;
    metrics.xHeight = metrics.capHeight;
    return metrics;
}

bool hasHangul(const QString &text)
{
    const auto characters = text.toStdU32String();
    return std::any_of(characters.begin(), characters.end(),
                       [](char32_t c) { return QChar::script(c) == QChar::Script_Hangul; });
}

bool hasLetterOrNumber(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c.isLetterOrNumber(); });
}

/// What the engine read, with its ink.
std::vector<InkSymbol> symbolsOf(const std::vector<EngineSymbol> &read, const LineStrip &strip,
                                 const InkMap &ink, const TextRun &run,
                                 const LetterMetrics &metrics)
{
    std::vector<InkSymbol> symbols = alignedSymbols(read, strip, inkSegments(ink, run), metrics);
    nameTildes(symbols, ink, run, metrics);
    takeGlyphs(symbols, ink, run);
    nameBackticks(symbols, metrics);
    return symbols;
}

std::optional<ReadPiece> readLetters(const InkMap &map, const TextRun &run,
                                     const LetterMetrics &metrics, LineEngine &engine,
                                     LineEngine::Models models)
{
    const InkMap ink = evenInk(map, run, metrics);
    const LineStrip strip = lineStrip(ink, run, metrics);
    const auto read = engine.read(strip, models);
    if (!read)
        return std::nullopt;
    return ReadPiece{metrics, symbolsOf(*read, strip, ink, run, metrics), {}};
}

/// By the strokes alone, since soft edges join letters of small text.
LetterMetrics metricsOf(const InkMap &map, const TextRun &run)
{
    LetterMetrics rough;
    rough.capHeight = run.box.height();
    TextRun strokes{run.box, inkPatches(evenInk(map, run, rough), strokeInk)};
    for (InkPatch &patch : strokes.patches)
        patch.box.translate(run.box.topLeft());
    return letterMetrics(strokes.patches.empty() ? run : strokes);
}

/// The words of a line in scripts of their own.
class WordsOfRun
{
public:
    WordsOfRun(const InkMap &map, const TextRun &run, const LetterMetrics &metrics,
               LineEngine &engine, LineEngine::Models models = LineEngine::Models::all)
        : m_map(map)
        , m_run(run)
        , m_engine(engine)
        , m_metrics(metrics)
        , m_models(models)
    {
    }

    std::optional<std::vector<ReadPiece>> read()
    {
        const InkMap ink = evenInk(m_map, m_run, m_metrics);
        const LineStrip strip = lineStrip(ink, m_run, m_metrics);
        const auto symbols = m_engine.read(strip, m_models);
        if (!symbols)
            return std::nullopt;
        m_words = engineWords(*symbols, strip);
        m_isIdeographic = isIdeographic(textOf(*symbols));
        m_isRightToLeft = std::any_of(m_words.begin(), m_words.end(), [](const EngineWord &word) {
            return isRightToLeft(word.text);
        });
        takeInk(m_words, inkSegments(ink, m_run), m_run.box.height());
        std::erase_if(m_words, [](const EngineWord &word) { return word.box.isEmpty(); });
        if (isDividedByBlanks(textOf(*symbols)))
            joinAtBlanks(m_words, m_run.box.height());
        return pieces();
    }

private:
    bool isLatin(std::size_t word) const { return scriptOf(m_words[word].text) != Script::words; }

    std::optional<std::vector<ReadPiece>> pieces()
    {
        std::vector<QString> texts;
        for (const EngineWord &word : m_words)
            texts.push_back(word.text);
        const std::vector<std::size_t> order = readingOrderOf(texts);
        std::vector<ReadPiece> pieces;
        for (std::size_t i = 0; i < order.size();) {
            std::size_t end = i + 1;
            while (isLatin(order[i]) && end < order.size() && isLatin(order[end])
                   && order[end] == order[end - 1] + 1)
                ++end;
            auto piece = pieceOf(order[i], order[end - 1]);
            if (!piece)
                return std::nullopt;
            pieces.push_back(std::move(*piece));
            i = end;
        }
        return pieces;
    }

    /// Between ideographs the engine's places are too rough to cut Latin words out, and no gap
    /// tells.
    bool standsApart(std::size_t first, std::size_t last) const
    {
        const double blank = m_run.box.height() * narrowestBlankBetweenWords;
        const auto isBlank = [&](std::size_t left) {
            return m_words[left + 1].box.left() - m_words[left].box.right() - 1 > blank;
        };
        return !m_isIdeographic
            || ((first == 0 || isBlank(first - 1))
                && (last + 1 == m_words.size() || isBlank(last)));
    }

    /// Of neighbouring words, all Latin or one alone.
    std::optional<ReadPiece> pieceOf(std::size_t first, std::size_t last)
    {
        ReadPiece own{m_metrics};
        QRect box;
        bool isText = false;
        for (std::size_t i = first; i <= last; ++i) {
            const EngineWord &word = m_words[i];
            own.words.push_back({word.text, word.box, word.confidence});
            box |= word.box;
            isText = isText || hasLetterOrNumber(word.text);
        }
        if (!isText || !isLatin(first) || !standsApart(first, last))
            return own;
        const TextRun part = partOf(m_run, box);
        if (part.patches.empty())
            return own;
        auto latin =
            readLetters(m_map, part, metricsOf(m_map, part), m_engine, LineEngine::Models::english);
        if (latin && first == last && confidenceOf(latin->symbols) < sureOfLetters)
            latin = surerOf(std::move(*latin), part);
        if (latin)
            latin->isInRightToLeft = m_isRightToLeft;
        return latin;
    }

    /// The Latin word, or one of the line's own script that passed for it.
    std::optional<ReadPiece> surerOf(ReadPiece latin, const TextRun &part)
    {
        TextRun line = part;
        line.box.setTop(m_run.box.top());
        line.box.setBottom(m_run.box.bottom());
        const LineStrip strip = lineStrip(evenInk(m_map, line, m_metrics), line, m_metrics);
        const auto symbols = m_engine.read(strip, LineEngine::Models::native);
        if (!symbols)
            return std::nullopt;
        if (!isReadByWords(textOf(*symbols))
            || confidenceOf(*symbols) <= confidenceOf(latin.symbols))
            return latin;
        ReadPiece own{m_metrics};
        own.words.push_back(
            {withoutDirectionMarks(textOf(*symbols)), part.box, confidenceOf(*symbols)});
        return own;
    }

    const InkMap &m_map;
    const TextRun &m_run;
    LineEngine &m_engine;
    LetterMetrics m_metrics;
    LineEngine::Models m_models;
    std::vector<EngineWord> m_words;
    bool m_isIdeographic = false;
    bool m_isRightToLeft = false;
};

/// One run in whatever script it is.
class RunReader
{
public:
    RunReader(const InkMap &map, const TextRun &run, const LetterMetrics &metrics,
              LineEngine &engine)
        : m_map(map)
        , m_run(run)
        , m_metrics(metrics)
        , m_engine(engine)
    {
    }

    std::optional<std::vector<ReadPiece>> read()
    {
        const InkMap ink = evenInk(m_map, m_run, m_metrics);
        const LineStrip strip = lineStrip(ink, m_run, m_metrics);
        auto symbols = m_engine.read(strip, LineEngine::Models::all);
        if (!symbols)
            return std::nullopt;
        const QString text = textOf(*symbols);
        if (isReadByWords(text))
            return WordsOfRun(m_map, m_run, hasHeights(text) ? m_metrics : wholeLine(m_run.box),
                              m_engine)
                .read();
        if (m_engine.readsByWords()) {
            if (confidenceOf(*symbols) < sureOfLetters) {
                auto words = readUnsure(confidenceOf(*symbols));
                if (!words || !words->empty())
                    return words;
            }
            auto latin = m_engine.read(strip, LineEngine::Models::english);
            if (!latin)
                return std::nullopt;
            if (confidenceOf(*latin) > confidenceOf(*symbols) - 3)
                symbols = std::move(latin);
            symbols = inVisualOrder(*symbols);
        }
        if (!m_engine.readsByWords() && hasOtherThanLatin(text)
            && confidenceOf(*symbols) < sureOfLetters) {
            // A shortcut or a name among Cyrillic or Greek text.
            auto latin = m_engine.read(strip, LineEngine::Models::english);
            if (!latin)
                return std::nullopt;
            if (confidenceOf(*latin) > confidenceOf(*symbols))
                symbols = std::move(latin);
        }
        return std::vector{
            ReadPiece{m_metrics, symbolsOf(*symbols, strip, ink, m_run, m_metrics), {}}};
    }

private:
    /// Ideographs and Thai are about as high as the letters beside them.
    static bool hasHeights(const QString &text)
    {
        return isIdeographic(text) ? !hasHangul(text) : isDividedByBlanks(text);
    }

    /// Another look at what may be no letters; empty where it is none the surer.
    std::optional<std::vector<ReadPiece>> readUnsure(double confidence)
    {
        const LetterMetrics whole = wholeLine(m_run.box);
        const LineStrip strip = lineStrip(evenInk(m_map, m_run, whole), m_run, whole);
        const auto symbols = m_engine.read(strip, LineEngine::Models::native);
        if (!symbols)
            return std::nullopt;
        if (!isReadByWords(textOf(*symbols)) || confidenceOf(*symbols) <= confidence)
            return std::vector<ReadPiece>{};
        return WordsOfRun(m_map, m_run, whole, m_engine, LineEngine::Models::native).read();
    }

    const InkMap &m_map;
    const TextRun &m_run;
    const LetterMetrics &m_metrics;
    LineEngine &m_engine;
};

} // namespace

std::optional<std::vector<ReadPiece>> readRun(const InkMap &map, const TextRun &run,
                                              const LetterMetrics &metrics, LineEngine &engine)
{
    return RunReader(map, run, metrics, engine).read();
}

} // namespace tovek
