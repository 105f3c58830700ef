// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/fonts/FontReader.h"

#include "reading/fonts/FontSearch.h"
#include "reading/fonts/GridText.h"
#include "reading/fonts/GridVotes.h"

#include <QImage>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <utility>

namespace tovek {

namespace {

/// The mean distance of a grid's cells from the font's characters: the right font is below, a
/// similar one above. Without greys all pixels are the same.
constexpr double sameInstalledFont = 0.08;
constexpr double sameWithoutGreys = 0.02;
/// Nothing better needs to be looked for.
constexpr double certainly = 0.04;
constexpr double certainlyWithoutGreys = 0.005;
/// The same for a few letters; what is above is not looked at in whole.
constexpr double doubtfulDistance = 0.08;
/// A grid with fewer characters shows too little of its font.
constexpr int leastAreaLetters = 12;
/// Of the letters, in a font that was met before.
constexpr double leastExplained = 0.3;
constexpr std::size_t mostBitmapGuesses = 4;
constexpr std::size_t mostRemembered = 16;

/// Of a grid's letters: two terminals may stand in the same columns, each with a font of its own.
constexpr double leastReadShare = 0.25;

/// The mean of all runs, or that of those which are certainly written in the font, where they are
/// a good part of the grid.
double distanceOf(const std::vector<RunDistance> &runs)
{
    RunDistance all;
    RunDistance certain;
    for (const RunDistance &run : runs) {
        for (RunDistance *sum : {&all, run.mean() < certainly ? &certain : nullptr}) {
            if (!sum)
                continue;
            sum->sum += run.sum;
            sum->letters += run.letters;
        }
    }
    const bool isPart =
        certain.letters >= std::max(2.0 * leastAreaLetters, leastReadShare * all.letters);
    return all.mean() >= sameInstalledFont && isPart ? certain.mean() : all.mean();
}

/// A font that was met in the cells of a certain width.
struct MetFont
{
    QString name;
    GlyphStyle style;
    int cellWidth = 0;
    int rowPitch = 0;

    bool operator==(const MetFont &) const = default;
};

/// Its glyphs, as long as they are kept.
struct DrawnFont
{
    FontChoice choice;
    int cellWidth = 0;
    int rowPitch = 0;
    std::vector<NamedGlyph> letters;
    std::unique_ptr<GlyphTable> table;
};

} // namespace

struct FontReader::State
{
    std::mutex mutex; ///< for all below
    std::unique_ptr<GlyphSource> source;
    std::vector<MetFont> met; ///< the latest first
    std::vector<std::unique_ptr<DrawnFont>> drawn;
    std::chrono::milliseconds patience{0};

    std::optional<std::size_t> fontOf(const QString &name)
    {
        const std::vector<FixedFont> &fonts = source->fonts();
        const auto found = std::find_if(fonts.begin(), fonts.end(),
                                        [&](const FixedFont &font) { return font.name == name; });
        if (found == fonts.end())
            return std::nullopt;
        return std::size_t(found - fonts.begin());
    }
    DrawnFont &drawnFont(const FontChoice &choice, int cellWidth, int rowPitch)
    {
        for (const auto &one : drawn) {
            if (one->choice == choice && one->cellWidth == cellWidth && one->rowPitch == rowPitch)
                return *one;
        }
        drawn.push_back(std::make_unique<DrawnFont>(
            DrawnFont{choice, cellWidth, rowPitch, lettersOf(*source, choice),
                      std::make_unique<GlyphTable>(*source, choice, cellWidth, rowPitch)}));
        return *drawn.back();
    }
    void remember(const FontChoice &choice, const FixedGrid &grid)
    {
        const MetFont font{source->fonts()[choice.font].name, choice.style, grid.cellWidth,
                           grid.rowPitch};
        std::erase(met, font);
        met.insert(met.begin(), font);
        if (met.size() > mostRemembered)
            met.pop_back();
    }
    /// All fonts, those met in other sizes first.
    std::vector<std::size_t> likeliestFirst()
    {
        std::vector<std::size_t> order;
        const auto add = [&order](std::size_t font) {
            if (std::find(order.begin(), order.end(), font) == order.end())
                order.push_back(font);
        };
        for (const MetFont &one : met) {
            if (const auto font = fontOf(one.name))
                add(*font);
        }
        for (std::size_t i = 0; i < source->fonts().size(); ++i)
            add(i);
        return order;
    }
};

/// One page's grids.
class FontReader::Reading : public ExactReading
{
public:
    Reading(State &state, const Page &page, QImage image, std::vector<FixedGrid> grids)
        : m_state(state)
        , m_image(std::move(image))
        , m_ink(page.ink)
        , m_runs(page.runs)
        , m_grids(std::move(grids))
        , m_mayTake(m_runs.size(), false)
        , m_hasTaken(m_runs.size())
    {
        for (const FixedGrid &grid : m_grids) {
            m_samples.push_back(letterSamples(m_ink, m_runs, grid));
            for (const std::size_t run : grid.runs)
                m_mayTake[run] = true;
        }
    }

    bool mayTake(std::size_t run) const override { return m_mayTake[run]; }
    bool hasTaken(std::size_t run) const override { return m_hasTaken[run]; }
    void read(const std::function<bool()> &isWaitedFor) override
    {
        const std::lock_guard lock(m_state.mutex);
        const auto patient = std::chrono::steady_clock::now() + m_state.patience;
        m_isTooLate = [&isWaitedFor, patient] {
            return std::chrono::steady_clock::now() > patient && isWaitedFor();
        };
        for (std::size_t i = 0; i < m_grids.size(); ++i)
            readGrid(i);
    }
    const std::vector<std::vector<ReadWord>> &lines() const override { return m_lines; }
    bool isIn(const QRect &word) const override
    {
        return std::any_of(m_boxes.begin(), m_boxes.end(),
                           [&](const QRect &box) { return box.contains(word.center()); });
    }
    void improve(std::vector<std::vector<ReadPiece>> &readings) const override
    {
        readByCells(m_ink, m_runs, m_grids, readings);
    }
    void learn(const std::function<bool()> &isCancelled) override
    {
        const std::lock_guard lock(m_state.mutex);
        m_isTooLate = isCancelled;
        for (const Unfinished &one : std::exchange(m_unfinished, {})) {
            m_best = std::nullopt;
            search(one.grid, *one.search);
            if (m_best)
                m_state.remember(m_best->choice, m_grids[one.grid]);
        }
    }

private:
    struct Attempt
    {
        FontChoice choice;
        GridText text;
        double distance = 1;
    };
    struct Unfinished
    {
        std::size_t grid = 0;
        std::unique_ptr<FontSearch> search;
    };
    void readGrid(std::size_t grid);
    /// True when nothing better needs to be looked for.
    bool attempt(const FixedGrid &grid, const FontChoice &choice, const FontFit &fit);
    bool attemptMet(const FixedGrid &grid, const std::vector<LetterSample> &samples);
    bool attemptBitmap(const FixedGrid &grid, const std::vector<LetterSample> &samples);
    /// False when there was no time for all fonts.
    bool search(std::size_t grid, FontSearch &fonts);
    void take(const GridText &text, const FixedGrid &grid);

    State &m_state;
    QImage m_image;
    InkMap m_ink;
    std::vector<PageRun> m_runs;
    std::vector<FixedGrid> m_grids;
    std::vector<std::vector<LetterSample>> m_samples; ///< one a grid
    std::vector<bool> m_mayTake;
    std::vector<std::atomic<bool>> m_hasTaken;
    std::function<bool()> m_isTooLate;
    std::optional<Attempt> m_best; ///< for the grid that is being read
    std::vector<Unfinished> m_unfinished;
    std::vector<std::vector<ReadWord>> m_lines;
    std::vector<QRect> m_boxes; ///< of the stretches that were read
};

void FontReader::Reading::readGrid(std::size_t at)
{
    const FixedGrid grid = m_grids[at];
    m_best = std::nullopt;
    if (!attemptMet(grid, m_samples[at]) && !attemptBitmap(grid, m_samples[at])) {
        auto fonts = std::make_unique<FontSearch>(*m_state.source, m_state.likeliestFirst(),
                                                  m_samples[at], grid.cellWidth);
        if (!search(at, *fonts) && !m_best)
            m_unfinished.push_back({at, std::move(fonts)});
    }
    if (!m_best)
        return;
    m_state.remember(m_best->choice, grid);
    take(m_best->text, grid);
    FixedGrid rest = grid; // in another font
    std::erase_if(rest.runs, [this](std::size_t run) { return hasTaken(run); });
    if (rest.runs.empty() || rest.runs.size() == grid.runs.size())
        return;
    m_samples.push_back(letterSamples(m_ink, m_runs, rest));
    m_grids.push_back(std::move(rest));
}

bool FontReader::Reading::attempt(const FixedGrid &grid, const FontChoice &choice,
                                  const FontFit &fit)
{
    DrawnFont &font = m_state.drawnFont(choice, grid.cellWidth, grid.rowPitch);
    const CellShape &shape = font.table->shape();
    CellReader reader(m_image, *font.table, *m_state.source);
    Attempt made{choice,
                 gridText(reader, cellRows(m_runs, grid, fit, shape, m_image.size()), shape), 1};
    const bool hasGreys = choice.style.hinting != Hinting::mono;
    made.distance = distanceOf(runDistances(made.text, m_runs, grid));
    if (made.text.letters() < leastAreaLetters
        || made.distance >= (hasGreys ? sameInstalledFont : sameWithoutGreys))
        return false;
    if (!m_best || made.distance < m_best->distance)
        m_best = std::move(made);
    return m_best->distance < (hasGreys ? certainly : certainlyWithoutGreys);
}

bool FontReader::Reading::attemptMet(const FixedGrid &grid,
                                     const std::vector<LetterSample> &samples)
{
    const std::vector<MetFont> met = m_state.met;
    for (const MetFont &one : met) {
        // Two sizes of a bitmap font may have one width and the same small letters.
        const bool isOfSize = one.cellWidth == grid.cellWidth
            && (one.style.size > 0 || one.rowPitch == grid.rowPitch);
        const auto font = isOfSize ? m_state.fontOf(one.name) : std::nullopt;
        if (!font)
            continue;
        const FontChoice choice{*font, one.style};
        const DrawnFont &drawn = m_state.drawnFont(choice, grid.cellWidth, grid.rowPitch);
        const FontFit fit = fitOf(samples, drawn.letters, grid.cellWidth);
        if (fit.explained >= leastExplained && attempt(grid, choice, fit))
            return true;
    }
    return false;
}

bool FontReader::Reading::attemptBitmap(const FixedGrid &grid,
                                        const std::vector<LetterSample> &samples)
{
    std::vector<FontGuess> guesses = bitmapGuesses(*m_state.source, samples, grid);
    if (guesses.size() > mostBitmapGuesses)
        guesses.resize(mostBitmapGuesses);
    bool isCertain = false;
    for (const FontGuess &guess : guesses)
        isCertain = attempt(grid, guess.choice, guess.fit) || isCertain;
    return isCertain;
}

bool FontReader::Reading::search(std::size_t at, FontSearch &fonts)
{
    while (const auto guess = fonts.next(m_isTooLate)) {
        if (guess->distance < doubtfulDistance && attempt(m_grids[at], guess->choice, guess->fit))
            return true;
    }
    return fonts.isOver();
}

void FontReader::Reading::take(const GridText &text, const FixedGrid &grid)
{
    QRect ownArea;
    for (const std::size_t run : grid.runs)
        ownArea |= m_runs[run].text.box;
    ownArea.adjust(-2 * grid.cellWidth, -2 * grid.rowPitch, 2 * grid.cellWidth, 2 * grid.rowPitch);
    std::vector<GridStretch> stretches = readableStretches(text, ownArea);
    std::erase_if(stretches, [&](const GridStretch &stretch) {
        const QRect box = boxOf(text, stretch.row, stretch.from, stretch.to);
        return std::any_of(m_boxes.begin(), m_boxes.end(),
                           [&](const QRect &word) { return word.intersects(box); });
    });
    GridWords words = wordsIn(text, stretches, cutRows(text, m_runs));
    const std::vector<bool> isCovered = coveredRuns(text, words, m_runs);
    for (std::vector<ReadWord> &line : words.lines) {
        for (const ReadWord &word : line)
            m_boxes.push_back(word.box);
        m_lines.push_back(std::move(line));
    }
    for (std::size_t i = 0; i < m_runs.size(); ++i) {
        if (isCovered[i])
            m_hasTaken[i] = true;
    }
}

FontReader::FontReader(std::unique_ptr<GlyphSource> source, std::chrono::milliseconds patience)
    : m_state(std::make_unique<State>())
{
    m_state->source = std::move(source);
    m_state->patience = patience;
}

FontReader::~FontReader() = default;

std::unique_ptr<ExactReading> FontReader::readingOf(const Page &page, const QImage &image)
{
    std::vector<FixedGrid> grids = fixedGrids(page.ink, page.runs);
    if (grids.empty())
        return nullptr;
    return std::make_unique<Reading>(*m_state, page, image, std::move(grids));
}

void FontReader::letGo()
{
    const std::lock_guard lock(m_state->mutex);
    m_state->drawn.clear();
    m_state->source->letGo();
}

} // namespace tovek
