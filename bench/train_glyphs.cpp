// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Trains the network that tells characters from icons, or says how well the one that is built into
// the program does on samples that it has not been trained on.
//
// train_glyphs WEIGHTS [SAMPLES [ROUNDS]]    writes the weights
// train_glyphs --score [SAMPLES]
//
// scripts/train-glyphs installs the fonts and icons and calls it.

#include "GlyphSamples.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>

#include <cmath>
#include <cstdio>
#include <numeric>

using namespace tovek;

namespace {

constexpr unsigned trainingSeed = 20261122;
constexpr unsigned scoringSeed = 7;
constexpr int batch = 32;
const QString iconFolder = QStringLiteral("/usr/share/icons");

/// The sums that a layer's weights are moved by: the method of moments.
class Descent
{
public:
    explicit Descent(const GlyphLayer &layer)
        : gradient(layer)
        , m_mean(layer.weights.size() + layer.biases.size(), 0)
        , m_square(m_mean.size(), 0)
    {
        clear();
    }
    void apply(GlyphLayer &layer, float rate, int step)
    {
        const float meanPart = 1 - std::pow(0.9F, float(step));
        const float squarePart = 1 - std::pow(0.999F, float(step));
        const auto move = [&](std::vector<float> &values, const std::vector<float> &by,
                              std::size_t offset) {
            for (std::size_t i = 0; i < values.size(); ++i) {
                float &mean = m_mean[offset + i];
                float &square = m_square[offset + i];
                mean = 0.9F * mean + 0.1F * by[i];
                square = 0.999F * square + 0.001F * by[i] * by[i];
                values[i] -= rate * (mean / meanPart) / (std::sqrt(square / squarePart) + 1e-8F);
            }
        };
        move(layer.weights, gradient.weights, 0);
        move(layer.biases, gradient.biases, layer.weights.size());
        clear();
    }

    GlyphLayer gradient;

private:
    void clear()
    {
        std::fill(gradient.weights.begin(), gradient.weights.end(), 0.0F);
        std::fill(gradient.biases.begin(), gradient.biases.end(), 0.0F);
    }

    std::vector<float> m_mean, m_square;
};

/// What reaches `in` from `out` through a layer that connects all with all; adds to the gradient.
std::vector<float> backThrough(const GlyphLayer &layer, const std::vector<float> &in,
                               const std::vector<float> &out, GlyphLayer &gradient)
{
    std::vector<float> back(in.size(), 0);
    const int outputs = layer.outputs;
    for (int o = 0; o < outputs; ++o)
        gradient.biases[o] += out[o];
    for (std::size_t i = 0; i < in.size(); ++i) {
        const float *weights = layer.weights.data() + i * outputs;
        float *change = gradient.weights.data() + i * outputs;
        const float value = in[i];
        float sum = 0;
        for (int o = 0; o < outputs; ++o) {
            sum += weights[o] * out[o];
            change[o] += value * out[o];
        }
        back[i] = sum;
    }
    return back;
}

struct Window
{
    int side, depth, size, stride;
};

/// The same through a layer of windows; `values` is what came out of it forwards.
std::vector<float> backThrough(const GlyphLayer &layer, const std::vector<float> &in,
                               const std::vector<float> &values, const std::vector<float> &out,
                               const Window &window, GlyphLayer &gradient)
{
    std::vector<float> back(in.size(), 0);
    std::vector<float> here(std::size_t(layer.outputs));
    const int outSide = window.side / window.stride;
    const int reach = window.size / 2;
    for (int y = 0; y < outSide; ++y) {
        for (int x = 0; x < outSide; ++x) {
            const std::size_t at = (std::size_t(y) * outSide + x) * layer.outputs;
            bool isAny = false;
            for (int o = 0; o < layer.outputs; ++o) {
                here[o] = values[at + o] > 0 ? out[at + o] : 0;
                gradient.biases[o] += here[o];
                isAny = isAny || here[o] != 0;
            }
            for (int k = 0; isAny && k < window.size * window.size; ++k) {
                const int fromY = y * window.stride + k / window.size - reach;
                const int fromX = x * window.stride + k % window.size - reach;
                if (fromY < 0 || fromX < 0 || fromY >= window.side || fromX >= window.side)
                    continue;
                const std::size_t from = (std::size_t(fromY) * window.side + fromX) * window.depth;
                for (int c = 0; c < window.depth; ++c) {
                    const float value = in[from + c];
                    if (value == 0)
                        continue; // nothing passes back where nothing came out
                    const std::size_t first =
                        (std::size_t(k) * window.depth + c) * std::size_t(layer.outputs);
                    const float *weights = layer.weights.data() + first;
                    float *change = gradient.weights.data() + first;
                    float sum = 0;
                    for (int o = 0; o < layer.outputs; ++o) {
                        sum += weights[o] * here[o];
                        change[o] += value * here[o];
                    }
                    back[from + c] += sum;
                }
            }
        }
    }
    return back;
}

/// What reaches the pixels before pooling: the largest of each four gets all.
std::vector<float> backThroughPool(const std::vector<float> &in, const std::vector<float> &pooled,
                                   const std::vector<float> &out, int side, int depth)
{
    std::vector<float> back(in.size(), 0);
    const int half = side / 2;
    for (int y = 0; y < half * 2; ++y) {
        for (int x = 0; x < half * 2; ++x) {
            for (int c = 0; c < depth; ++c) {
                const std::size_t at = (std::size_t(y) * side + x) * depth + c;
                const std::size_t to = (std::size_t(y / 2) * half + x / 2) * depth + c;
                if (in[at] > 0 && in[at] == pooled[to])
                    back[at] = out[to];
            }
        }
    }
    return back;
}

class Training
{
public:
    explicit Training(unsigned seed) : m_random(seed), m_net(GlyphNet::emptyLayers())
    {
        for (GlyphLayer &layer : m_net.layers()) {
            const float reach = std::sqrt(6.0F / float(layer.inputs));
            for (float &weight : layer.weights)
                weight = (float(m_random()) / float(std::mt19937::max()) * 2 - 1) * reach;
            m_descents.emplace_back(layer);
        }
    }
    const GlyphNet &net() const { return m_net; }
    GlyphNet &net() { return m_net; }

    /// Once over all samples; the mean of the error.
    double round(const std::vector<GlyphSample> &samples, float firstRate, float lastRate)
    {
        std::vector<std::size_t> order(samples.size());
        std::iota(order.begin(), order.end(), std::size_t(0));
        for (std::size_t i = order.size() - 1; i > 0; --i)
            std::swap(order[i], order[m_random() % (i + 1)]);
        double error = 0;
        for (std::size_t i = 0; i < order.size(); ++i) {
            error += learn(samples[order[i]]);
            if ((i + 1) % batch != 0)
                continue;
            const float part = float(i) / float(order.size());
            ++m_step;
            for (std::size_t k = 0; k < m_descents.size(); ++k)
                m_descents[k].apply(m_net.layers()[k], firstRate + (lastRate - firstRate) * part,
                                    m_step);
        }
        return error / double(samples.size());
    }

private:
    double learn(const GlyphSample &sample)
    {
        GlyphNet::Answer answer = m_net.classify(sample.glyph, m_trace);
        const double error = -std::log(std::max(answer[std::size_t(sample.kind)], 1e-9F));
        answer[std::size_t(sample.kind)] -= 1;
        std::vector<float> out(answer.begin(), answer.end());
        for (float &one : out)
            one /= batch;
        const auto &layers = m_net.layers();
        std::vector<float> hidden =
            backThrough(layers[4], m_trace.hidden, out, m_descents[4].gradient);
        for (std::size_t i = 0; i < hidden.size(); ++i)
            hidden[i] = m_trace.hidden[i] > 0 ? hidden[i] : 0;
        const auto flat = backThrough(layers[3], m_trace.thirdPool, hidden, m_descents[3].gradient);
        const auto third = backThroughPool(m_trace.third, m_trace.thirdPool, flat, 7, 40);
        const auto pool = backThrough(layers[2], m_trace.secondPool, m_trace.third, third,
                                      {7, 24, 3, 1}, m_descents[2].gradient);
        const auto second = backThroughPool(m_trace.second, m_trace.secondPool, pool, 14, 24);
        const auto first = backThrough(layers[1], m_trace.first, m_trace.second, second,
                                       {14, 16, 3, 1}, m_descents[1].gradient);
        backThrough(layers[0], m_trace.input, m_trace.first, first, {28, 1, 5, 2},
                    m_descents[0].gradient);
        return error;
    }

    std::mt19937 m_random;
    GlyphNet m_net;
    std::vector<Descent> m_descents;
    GlyphNet::Trace m_trace;
    int m_step = 0;
};

struct Score
{
    int right = 0, pictures = 0, foundPictures = 0, letters = 0, lostLetters = 0;
};

/// A letter is lost when it would be taken for a picture.
Score scoreOf(const GlyphNet &net, const std::vector<GlyphSample> &samples)
{
    Score score;
    for (const GlyphSample &sample : samples) {
        const GlyphNet::Answer answer = net.classify(sample.glyph);
        const auto best = std::max_element(answer.begin(), answer.end()) - answer.begin();
        score.right += best == sample.kind;
        const bool isFound = answer[GlyphNet::picture] > 0.9F;
        (sample.kind == GlyphNet::picture ? score.pictures : score.letters) += 1;
        score.foundPictures += isFound && sample.kind == GlyphNet::picture;
        score.lostLetters += isFound && sample.kind != GlyphNet::picture;
    }
    return score;
}

void print(const char *name, const GlyphNet &net, const std::vector<GlyphSample> &samples)
{
    const Score score = scoreOf(net, samples);
    std::printf("%s: %.2f %% of %zu glyphs right; %.1f %% of %d pictures found, %.3f %% of %d "
                "letters taken for pictures\n",
                name, 100.0 * score.right / double(samples.size()), samples.size(),
                100.0 * score.foundPictures / std::max(1, score.pictures), score.pictures,
                100.0 * score.lostLetters / std::max(1, score.letters), score.letters);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    if (arguments.size() < 2) {
        std::fprintf(stderr, "train_glyphs WEIGHTS [SAMPLES [ROUNDS]] | --score [SAMPLES]\n");
        return 2;
    }
    const auto countAt = [&](int i, int otherwise) {
        return arguments.size() > i ? arguments.at(i).toInt() : otherwise;
    };
    GlyphSamples unseen(scoringSeed, iconFolder);
    if (arguments.at(1) == QLatin1String("--score")) {
        print("trained", GlyphNet::trained(), unseen.take(std::size_t(countAt(2, 20000))));
        return 0;
    }
    QElapsedTimer timer;
    timer.start();
    GlyphSamples drawn(trainingSeed, iconFolder);
    std::printf("%lld families of fonts, %lld icons\n", qlonglong(drawn.families().size()),
                qlonglong(drawn.icons()));
    const auto samples = drawn.take(std::size_t(countAt(2, 160000)));
    const auto scored = unseen.take(10000);
    std::printf("%zu glyphs drawn in %lld s\n", samples.size(), timer.elapsed() / 1000);
    std::fflush(stdout);
    Training training(trainingSeed);
    const int rounds = countAt(3, 6);
    for (int i = 0; i < rounds; ++i) {
        const auto rate = [&](int round) { return 0.0015F * std::pow(0.45F, float(round)); };
        const double error = training.round(samples, rate(i), rate(i + 1));
        std::printf("round %d, %lld s: error %.4f\n", i + 1, timer.elapsed() / 1000, error);
        print("unseen", training.net(), scored);
        const std::vector<std::uint8_t> bytes = GlyphNet::bytesOf(training.net().layers());
        QFile file(arguments.at(1));
        if (!file.open(QIODevice::WriteOnly)
            || file.write(reinterpret_cast<const char *>(bytes.data()), qint64(bytes.size())) < 0) {
            std::fprintf(stderr, "%s: %s\n", qPrintable(file.fileName()),
                         qPrintable(file.errorString()));
            return 1;
        }
    }
    const QByteArray written = [&] {
        QFile file(arguments.at(1));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }();
    if (auto layers =
            GlyphNet::layersFrom({reinterpret_cast<const std::uint8_t *>(written.constData()),
                                  std::size_t(written.size())}))
        print("a byte a weight", GlyphNet(std::move(*layers)), scored);
    return 0;
}
