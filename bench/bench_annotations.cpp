// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "Measure.h"
#include "Pictures.h"
#include "annotations/AnnotationRenderer.h"
#include "capture/PngEncoder.h"
#include "foundation/SystemColors.h"
#include "overlay/AnnotationLayer.h"

#include <QGuiApplication>
#include <QRandomGenerator>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>

using namespace tovek;
using namespace tovek::bench;

namespace {

const Size screen{3840, 2160};
const Rect everything{0, 0, 3840, 2160};

/// Processor time, so that other programs' load counts as little as it can.
double msOf(const std::function<void()> &work)
{
    const std::clock_t start = std::clock();
    work();
    return double(std::clock() - start) * 1000 / CLOCKS_PER_SEC;
}

double fastestMs(int runs, const std::function<void()> &work)
{
    double fastest = msOf(work);
    for (int i = 1; i < runs; ++i)
        fastest = std::min(fastest, msOf(work));
    return fastest;
}

template <typename Kind>
Annotation shape(QRandomGenerator &random, int extent)
{
    Kind kind;
    kind.color = SystemColors::red;
    kind.startPoint = {double(random.bounded(3840)), double(random.bounded(2160))};
    kind.endPoint = {kind.startPoint.x + random.bounded(-extent, extent),
                     kind.startPoint.y + random.bounded(-extent, extent)};
    if constexpr (std::is_same_v<Kind, TextAnnotation>)
        kind.text = QStringLiteral("An annotation of some words");
    return kind;
}

/// Fifty of all kinds, spread over the screen.
std::vector<Annotation> fifty(int extent)
{
    QRandomGenerator random(7);
    std::vector<Annotation> annotations;
    while (annotations.size() < 50) {
        switch (annotations.size() % 4) {
        case 0:
            annotations.push_back(shape<ArrowAnnotation>(random, extent));
            break;
        case 1:
            annotations.push_back(shape<RectangleAnnotation>(random, extent));
            break;
        case 2:
            annotations.push_back(shape<LineAnnotation>(random, extent));
            break;
        default:
            annotations.push_back(shape<TextAnnotation>(random, extent));
            break;
        }
    }
    return annotations;
}

/// Processor time of all threads, and the time that passes.
struct Cost
{
    std::vector<double> processorMs;
    std::vector<double> passedMs;

    void add(const std::function<void()> &work)
    {
        double passed = 0;
        processorMs.push_back(msOf([&] { passed = millisecondsOf(work); }));
        passedMs.push_back(passed);
    }
    double least() const { return *std::min_element(processorMs.begin(), processorMs.end()); }
};

enum class Until { rendered, encoded };

void benchExport(const Image &image, const char *what, int extent, Until until)
{
    const std::vector<Annotation> annotations = fifty(extent);
    const auto exported = [&](const std::vector<Annotation> &list) {
        return [&image, &list, until] {
            const auto result = AnnotationRenderer::render(list, image, everything);
            if (!result || (until == Until::encoded && encodePng(result->bitmap).isEmpty()))
                std::abort();
        };
    };
    const std::vector<Annotation> none;
    Cost plain;
    Cost annotated;
    // In turns, since the machine's mood changes over time.
    for (int i = 0; i < 25; ++i) {
        plain.add(exported(none));
        annotated.add(exported(annotations));
    }
    std::printf("%s, 50 of up to %d points: processor %.1f and %.1f ms, ratio %.3f; "
                "passed %.1f and %.1f ms, ratio %.3f\n",
                what, extent, plain.least(), annotated.least(), annotated.least() / plain.least(),
                median(plain.passedMs), median(annotated.passedMs),
                median(annotated.passedMs) / median(plain.passedMs));
}

void benchDrag(const char *what, Annotation dragged, double step)
{
    std::vector<Annotation> annotations = fifty(600);
    annotations.push_back(std::move(dragged));
    AnnotationLayer layer;
    const ViewSpace space{screen, 1};
    DisplayList before;
    before.items = layer.items(annotations, space, everything);
    const double ms = fastestMs(60, [&] {
        fieldsOf(annotations.back()).endPoint.x -= step;
        fieldsOf(annotations.back()).endPoint.y += step;
        DisplayList after;
        after.items = layer.items(annotations, space, everything);
        if (damageBetween(before, after).isEmpty())
            std::abort();
        before = after;
    });
    std::printf("drag step at 4K with 50 annotations, %s: %.3f ms\n", what, ms);
}

} // namespace

/// What drawing fifty annotations adds to an export, and what one step of a drag costs.
int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    const QSize pixels(3840, 2160);
    const Image noise{photographicNoise(pixels), screen};
    const Image windows{windowsWithText(pixels), screen};
    Image blank{QImage(pixels, QImage::Format_RGB32), screen};
    blank.bitmap.fill(Qt::white);
    for (const int extent : {300, 1500}) {
        benchExport(windows, "rendering 4K", extent, Until::rendered);
        benchExport(windows, "export of windows at 4K", extent, Until::encoded);
        benchExport(blank, "export of a blank page at 4K", extent, Until::encoded);
        benchExport(noise, "export of a photograph at 4K", extent, Until::encoded);
    }

    QRandomGenerator random(3);
    Annotation rectangle = shape<RectangleAnnotation>(random, 10);
    fieldsOf(rectangle).startPoint = {5, 2155};
    fieldsOf(rectangle).endPoint = {3835, 5};
    benchDrag("a rectangle around the screen", rectangle, 1.5);
    Annotation arrow = shape<ArrowAnnotation>(random, 10);
    fieldsOf(arrow).startPoint = {5, 2155};
    fieldsOf(arrow).endPoint = {3835, 5};
    benchDrag("an arrow across the screen", arrow, 1.5);
    return 0;
}
