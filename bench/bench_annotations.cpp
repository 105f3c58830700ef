// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "annotations/AnnotationRenderer.h"
#include "foundation/SystemColors.h"
#include "overlay/AnnotationLayer.h"

#include <QGuiApplication>
#include <QRandomGenerator>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>

using namespace tovek;

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

void benchExport(const Image &image, const char *what, int extent)
{
    const std::vector<Annotation> annotations = fifty(extent);
    const auto render = [&](const std::vector<Annotation> &list) {
        return msOf([&] {
            if (!AnnotationRenderer::render(list, image, everything))
                std::abort();
        });
    };
    double plain = render({});
    double annotated = render(annotations);
    // In turns, since the machine's mood changes over time.
    for (int i = 0; i < 25; ++i) {
        plain = std::min(plain, render({}));
        annotated = std::min(annotated, render(annotations));
    }
    std::printf("export 4K, 50 %s: plain %.2f ms, annotated %.2f ms, ratio %.2f\n", what, plain,
                annotated, annotated / plain);
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
    Image image{QImage(3840, 2160, QImage::Format_RGB32), screen};
    for (int y = 0; y < 2160; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.bitmap.scanLine(y));
        for (int x = 0; x < 3840; ++x)
            line[x] = qRgb(x & 255, y & 255, (x ^ y) & 255);
    }
    benchExport(image, "of up to 300 points", 300);
    benchExport(image, "of up to 1500 points", 1500);

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
