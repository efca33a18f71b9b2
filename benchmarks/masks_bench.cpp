// A mask of 200 points at 4096 x 2160 with an outer polygon: from the shapes to a plane of floats,
// on all cores; beside the painter that fills the inner shape's path with antialiasing into an
// image of 8 bits. Both begin with what the last one left and clear it.

#include "workbench/tools/MaskShape.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

#include <benchmark/benchmark.h>

#include <QImage>
#include <QPainter>
#include <QPainterPath>

using namespace Marlox;

namespace {

constexpr int points = 200;
constexpr MxRect frame{0, 0, 4096, 2160};

/// A shape as large as a person standing in the picture, `more` image heights further out.
Ref<PolyLine> Figure(double more)
{
    const auto place = [more](int index) {
        const double angle = 2.0 * std::numbers::pi * index / points;
        const double radius = 0.3 + 0.05 * std::sin(5.0 * angle) + 0.02 * std::sin(13.0 * angle);
        return ShapePlace(0.5 + (radius + more) * std::cos(angle) * 0.6,
                          0.5 + (radius + more) * std::sin(angle));
    };
    auto shape = MakeRef<PolyLine>();
    for (int i = 0; i < points; ++i) {
        const ShapePlace along = place(i + 1) - place(i - 1);
        PolyPoint point;
        point.x = place(i).x;
        point.y = place(i).y;
        point.outX = along.x / 6.0;
        point.outY = along.y / 6.0;
        point.inX = -point.outX;
        point.inY = -point.outY;
        shape->Append(point);
    }
    shape->Close();
    return shape;
}

Image::Format FrameFormat()
{
    Image::Format format;
    format.dataWindow = format.displayWindow = frame;
    return format;
}

double Rasterise(const PolyLine& inner, const PolyLine* outer, std::vector<float>& plane)
{
    const MaskOutlines outlines = MaskShape::From(&inner, outer).OutlinesIn(FrameFormat());
    const MaskRaster raster(outlines, FillRule::NonZero, Falloff::Smooth, frame);
    RenderContext context;
    context.ForRows(frame.Height(), [&](int first, int last) {
        raster.Rows(first, last, plane.data() + std::ptrdiff_t(first) * frame.Width(),
                    frame.Width(), context);
    });
    return double(plane[std::size_t(frame.Height() / 2 * frame.Width() + frame.Width() / 2)]);
}

void Paint(const PolyLine& shape, QImage& image)
{
    const auto at = [](const ShapePlace& place) {
        return QPointF(place.x * frame.Width(), (1.0 - place.y) * frame.Height());
    };
    QPainterPath path(at(shape.First()->Place()));
    path.setFillRule(Qt::WindingFill);
    for (int i = 0; i < shape.GetSegmentsCount(); ++i) {
        const CurveSegment segment = shape.Segment(i);
        path.cubicTo(at(segment.control1), at(segment.control2), at(segment.to));
    }
    image.fill(0);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path, Qt::white);
}

std::vector<float> Plane()
{
    return std::vector<float>(std::size_t(frame.Width()) * std::size_t(frame.Height()));
}

/// Whether both cover the same area; the painter takes the path for lines a quarter of a pixel
/// away.
bool AgreesWithPainter()
{
    const Ref<PolyLine> shape = Figure(0.0);
    std::vector<float> plane = Plane();
    QImage image(frame.Width(), frame.Height(), QImage::Format_ARGB32_Premultiplied);
    Rasterise(*shape, nullptr, plane);
    Paint(*shape, image);
    const double ours = std::accumulate(plane.begin(), plane.end(), 0.0);
    double painters = 0.0;
    for (int y = 0; y < frame.Height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < frame.Width(); ++x)
            painters += qAlpha(line[x]) / 255.0;
    }
    return std::abs(ours - painters) < 1e-3 * painters;
}

void DrawMask(benchmark::State& state, bool isSoft)
{
    const Ref<PolyLine> inner = Figure(0.0);
    const Ref<PolyLine> outer = Figure(0.02);
    std::vector<float> plane = Plane();
    if (!AgreesWithPainter())
        return state.SkipWithError("the painter fills another shape");
    for (auto _ : state) {
        if (Rasterise(*inner, isSoft ? outer.Get() : nullptr, plane) != 1.0)
            return state.SkipWithError("the middle is not covered");
    }
}

void DrawPath(benchmark::State& state)
{
    const Ref<PolyLine> shape = Figure(0.0);
    QImage image(frame.Width(), frame.Height(), QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state)
        Paint(*shape, image);
}

} // namespace

BENCHMARK_CAPTURE(DrawMask, soft, true)->Name("masks/soft-edge")->UseRealTime();
BENCHMARK_CAPTURE(DrawMask, hard, false)->Name("masks/hard-edge")->UseRealTime();
BENCHMARK(DrawPath)->Name("masks/painter")->UseRealTime();

BENCHMARK_MAIN();
