// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "reading/fonts/GridVotes.h"

#include "reading/GlyphView.h"
#include "reading/LookAlikes.h"
#include "reading/fonts/GridCells.h"
#include "reading/fonts/LookNames.h"

#include <QHash>

#include <algorithm>
#include <cmath>
#include <map>

namespace tovek {

namespace {

/// Of 255; the same pixel of the same character differs by less, whatever the colours.
constexpr int sameCellInk = 40;
/// What proves a grid: so many cells, most of which look like another, and nearly all with one
/// character of the engine's. Of proportional text, cells hold slices of letters.
constexpr int leastProof = 40;
constexpr double leastRepeated = 0.6;
constexpr double leastSingle = 0.85;
/// A row of a rule drawn with characters has one look alone, and an engine reads anything in it.
constexpr int leastRow = 8;
constexpr double leastRepeatedInRow = 0.95;
/// The vote of a cell in which the engine read no single character.
constexpr double doubtfulVote = 0.3;

/// A cell with what the engine read in it.
struct VotingCell
{
    InkCell cell;
    QString text;
    double confidence = 0;
    int symbols = 0;
    std::size_t look = 0;
};

/// How well cells bear out that they hold characters.
struct GridProof
{
    int all = 0;
    int single = 0;
    int repeated = 0;

    void add(const VotingCell &one, const CellLook &look)
    {
        ++all;
        single += one.symbols == 1;
        repeated += look.cells > 1;
    }
    bool isGood() const
    {
        const bool isRow = all >= leastRow && repeated >= leastRepeatedInRow * all;
        return isRow || (single >= leastSingle * all && repeated >= leastRepeated * all);
    }
};

bool isSameInk(const std::vector<std::uint8_t> &a, const std::vector<std::uint8_t> &b)
{
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::abs(a[i] - b[i]) > sameCellInk)
            return false;
    }
    return true;
}

bool isReadByLetters(const std::vector<ReadPiece> &pieces)
{
    return !pieces.empty() && std::all_of(pieces.begin(), pieces.end(), [](const ReadPiece &one) {
        return one.words.empty();
    });
}

/// One grid.
class GridVotes
{
public:
    GridVotes(const InkMap &ink, const std::vector<PageRun> &runs, const FixedGrid &grid,
              std::vector<std::vector<ReadPiece>> &readings)
        : m_grid(ink, runs, grid)
        , m_runs(runs)
        , m_readings(readings)
    {
    }

    void read()
    {
        if (!m_grid.isTall())
            return;
        for (const std::size_t run : m_grid.runs()) {
            if (isReadByLetters(m_readings[run]))
                takeRun(run);
        }
        findLooks();
        dropUnproved();
        if (!isProved())
            return;
        nameLooks();
        writeWords();
    }

private:
    void takeRun(std::size_t run)
    {
        std::map<int, VotingCell *> columns;
        std::vector<InkCell> cells = m_grid.of(run);
        const std::size_t first = m_cells.size();
        for (InkCell &cell : cells)
            m_cells.push_back({std::move(cell), {}, 0, 0, 0});
        for (std::size_t i = first; i < m_cells.size(); ++i)
            columns[m_cells[i].cell.column] = &m_cells[i];
        for (const ReadPiece &piece : m_readings[run]) {
            for (const InkSymbol &symbol : onCells(piece)) {
                const auto found = columns.find(m_grid.columnAt(centerX(symbol.box)));
                const int from = m_grid.columnAt(symbol.box.left() + 1);
                const int to = m_grid.columnAt(symbol.box.right() - 1);
                if (found == columns.end() || to - from > 1)
                    continue;
                found->second->text += symbol.text;
                found->second->confidence = symbol.confidence;
                ++found->second->symbols;
            }
        }
    }
    /// Settled by the characters beside them, with the words that the cells tell.
    std::vector<InkSymbol> onCells(const ReadPiece &piece) const
    {
        std::vector<InkSymbol> symbols = piece.symbols;
        std::erase_if(symbols, [](const InkSymbol &one) { return one.text.isEmpty(); });
        int before = 0;
        for (InkSymbol &symbol : symbols) {
            const int column = m_grid.columnAt(centerX(symbol.box));
            symbol.startsWord = &symbol == &symbols.front() || column > before + 1;
            before = column;
        }
        settleLookAlikes(symbols, piece.metrics);
        return symbols;
    }

    void findLooks()
    {
        m_looks.clear();
        m_examples.clear();
        QHash<QByteArray, std::size_t> known;
        for (VotingCell &one : m_cells) {
            const std::vector<std::uint8_t> &ink = one.cell.ink;
            const QByteArray key(reinterpret_cast<const char *>(ink.data()), qsizetype(ink.size()));
            const auto same = known.constFind(key);
            one.look = same != known.constEnd() ? *same : lookOf(one.cell);
            known.insert(key, one.look);
            CellLook &look = m_looks[one.look];
            ++look.cells;
            look.votes[one.text] +=
                one.symbols == 1 ? std::pow(one.confidence / 100, 2) : doubtfulVote;
        }
    }
    std::size_t lookOf(const InkCell &cell)
    {
        const auto found =
            std::find_if(m_examples.begin(), m_examples.end(),
                         [&](const InkCell *other) { return isSameInk(other->ink, cell.ink); });
        const auto at = std::size_t(found - m_examples.begin());
        if (found == m_examples.end()) {
            m_examples.push_back(&cell);
            m_looks.emplace_back();
        }
        return at;
    }

    /// Runs that happen to stand on the grid's lines: their cells hold no characters.
    void dropUnproved()
    {
        std::map<std::size_t, GridProof> proofs;
        for (const VotingCell &one : m_cells)
            proofs[one.cell.run].add(one, m_looks[one.look]);
        std::erase_if(m_cells,
                      [&](const VotingCell &one) { return !proofs[one.cell.run].isGood(); });
        findLooks();
    }

    bool isProved() const
    {
        GridProof proof;
        for (const VotingCell &one : m_cells)
            proof.add(one, m_looks[one.look]);
        return proof.all >= leastProof && proof.isGood();
    }

    void nameLooks()
    {
        for (std::size_t i = 0; i < m_looks.size(); ++i)
            m_looks[i].seen = seen(*m_examples[i]);
        m_names = namesOf(m_looks);
    }
    GlyphNet::Answer seen(const InkCell &cell) const
    {
        const int width = cell.box.width();
        QRect box;
        for (int i = 0; i < int(cell.ink.size()); ++i) {
            if (cell.ink[std::size_t(i)] >= faintestInk)
                box |= QRect(i % width, i / width, 1, 1);
        }
        std::vector<std::uint8_t> ink;
        for (int y = box.top(); y <= box.bottom(); ++y) {
            const auto row = cell.ink.begin() + std::ptrdiff_t(y) * width;
            ink.insert(ink.end(), row + box.left(), row + box.right() + 1);
        }
        return GlyphNet::trained().classify(glyphView(ink, box, m_grid.metrics()));
    }

    /// What was met only once stays as it was read.
    QString textOf(const VotingCell &one) const
    {
        const bool isKnown = m_looks[one.look].cells > 1 || one.text.isEmpty();
        return isKnown ? m_names[one.look] : one.text;
    }

    /// A word may go on in the next run: a row of dashes divides lines.
    void writeWords()
    {
        for (const VotingCell &one : m_cells)
            m_readings[one.cell.run] = {ReadPiece{m_runs[one.cell.run].metrics}};
        std::sort(m_cells.begin(), m_cells.end(), [](const VotingCell &a, const VotingCell &b) {
            return std::pair(a.cell.box.top(), a.cell.column)
                < std::pair(b.cell.box.top(), b.cell.column);
        });
        const InkCell *before = nullptr;
        ReadWord *word = nullptr;
        int count = 0;
        for (const VotingCell &one : m_cells) {
            const QString text = textOf(one);
            const InkCell &cell = one.cell;
            const bool isInLine = before && before->box.top() == cell.box.top();
            if (text.isEmpty() || (isInLine && before->column == cell.column))
                continue;
            if (!isInLine || cell.column > before->column + 1) {
                word = &m_readings[cell.run].front().words.emplace_back();
                count = 0;
            }
            word->text += text;
            word->box |= cell.box;
            word->confidence = (word->confidence * count + one.confidence) / (count + 1);
            ++count;
            before = &cell;
        }
    }

    const GridCells m_grid;
    const std::vector<PageRun> &m_runs;
    std::vector<std::vector<ReadPiece>> &m_readings;
    std::vector<VotingCell> m_cells;
    std::vector<CellLook> m_looks;
    std::vector<const InkCell *> m_examples; ///< one a look
    std::vector<QString> m_names;
};

} // namespace

void readByCells(const InkMap &ink, const std::vector<PageRun> &runs,
                 const std::vector<FixedGrid> &grids, std::vector<std::vector<ReadPiece>> &readings)
{
    for (const FixedGrid &grid : grids)
        GridVotes(ink, runs, grid, readings).read();
}

} // namespace tovek
