// Shapes of up to 100,000 points: the point and the place on the curve under the pointer, by the
// index and by going over all of them, and drawing the curve with a glyph at each point, thinned
// and gathered, beside the plain way: each segment as four lines, each glyph pushed, translated,
// drawn and popped. Both draw dark casings under light lines; only ours smooths them. The answers
// are compared before anything is measured.

#include "system/shapes/ShapeDrawing.h"
#include "system/shapes/ShapeIndex.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <numbers>
#include <random>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QOpenGLWidget>
#include <QSurfaceFormat>

#include <GL/gl.h>

using namespace Marlox;

namespace {

constexpr int viewWidth = 1280;
constexpr int viewHeight = 720;
constexpr double glyphSize = 3.0; // half of it, view pixels
constexpr ShapePlace imageSize(1920.0, 1080.0);
constexpr ShapePlace tolerance(6.0 / 1920.0, 6.0 / 1080.0);
constexpr int places = 4096;

/// A closed outline as artists draw them, with lobes and small waves.
Ref<PolyLine> MakeShape(int count)
{
    const auto at = [](double turn) {
        const double angle = 2.0 * std::numbers::pi * turn;
        const double radius =
            0.33 + 0.06 * std::sin(7.0 * angle) + 0.02 * std::sin(41.0 * angle + 1.0);
        return ShapePlace(0.5 + radius * std::cos(angle), 0.5 + radius * std::sin(angle));
    };
    std::vector<PolyPoint> points(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const ShapePlace here = at(double(i) / count);
        const ShapePlace along = at((i + 0.01) / count) - at((i - 0.01) / count);
        PolyPoint& point = points[std::size_t(i)];
        point.x = here.x;
        point.y = here.y;
        point.outX = along.x / 0.06;
        point.outY = along.y / 0.06;
        point.inX = -point.outX;
        point.inY = -point.outY;
    }
    Ref<PolyLine> shape = MakeRef<PolyLine>();
    shape->SetPoints(std::move(points));
    shape->Close();
    return shape;
}

std::vector<ShapePlace> Wandering()
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> anywhere(0.0, 1.0);
    std::vector<ShapePlace> made(places);
    for (ShapePlace& place : made)
        place = {anywhere(random), anywhere(random)};
    return made;
}

int ScanForPoint(const PolyLine& shape, ShapePlace at)
{
    const std::span<const PolyPoint> points = shape.Points();
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (std::abs(points[i].x - at.x) < tolerance.x &&
            std::abs(points[i].y - at.y) < tolerance.y)
            return int(i);
    }
    return -1;
}

// Under the pointer ------------------------------------------------------------------------------

void PointByScan(benchmark::State& state)
{
    const Ref<PolyLine> shape = MakeShape(int(state.range(0)));
    const std::vector<ShapePlace> at = Wandering();
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(ScanForPoint(*shape, at[++i % places]));
}

void PointByIndex(benchmark::State& state)
{
    const Ref<PolyLine> shape = MakeShape(int(state.range(0)));
    const ShapeIndex index(*shape);
    const std::vector<ShapePlace> at = Wandering();
    for (const ShapePlace& place : at) {
        if (index.PointAt(place, tolerance) != ScanForPoint(*shape, place))
            return state.SkipWithError("the index finds another point than the scan");
    }
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(index.PointAt(at[++i % places], tolerance));
}

void CurveByScan(benchmark::State& state)
{
    const Ref<PolyLine> shape = MakeShape(int(state.range(0)));
    const std::vector<ShapePlace> at = Wandering();
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(DistancePointToPolygon(at[++i % places], *shape, true, imageSize));
}

void CurveByIndex(benchmark::State& state)
{
    const Ref<PolyLine> shape = MakeShape(int(state.range(0)));
    const ShapeIndex index(*shape);
    const std::vector<ShapePlace> at = Wandering();
    for (std::size_t i = 0; i < 20; ++i) {
        const CurveFoot a = index.NearestOnCurve(at[i], imageSize);
        const CurveFoot b = DistancePointToPolygon(at[i], *shape, true, imageSize);
        if (a.distance != b.distance || a.segment != b.segment || a.t != b.t ||
            a.nearest != b.nearest)
            return state.SkipWithError("the index finds another place than the scan");
    }
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(index.NearestOnCurve(at[++i % places], imageSize));
}

/// Half of the points were moved.
void UpdateIndex(benchmark::State& state)
{
    const int count = int(state.range(0));
    const Ref<PolyLine> shape = MakeShape(count);
    ShapeIndex index(*shape);
    SelMask half(count);
    for (int i = 0; i < count; i += 2)
        half.DoSet(i, SelMask::Select);
    for (auto _ : state)
        index.Update(*shape, half);
}

// Drawing ----------------------------------------------------------------------------------------

class View : public QOpenGLWidget {
public:
    View()
    {
        info.imageWidth = info.pixelWidth = info.viewWidth = viewWidth;
        info.imageHeight = info.pixelHeight = info.viewHeight = viewHeight;
        resize(viewWidth, viewHeight);
        show();
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
        makeCurrent();
        glViewport(0, 0, viewWidth, viewHeight);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(0.0, viewWidth, 0.0, viewHeight, -1.0, 1.0);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
    }
    /// Pixels that are brighter than the ground.
    int Bright() const
    {
        std::vector<unsigned> pixels(std::size_t(viewWidth * viewHeight));
        glReadPixels(0, 0, viewWidth, viewHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        return int(std::count_if(pixels.begin(), pixels.end(),
                                 [](unsigned pixel) { return (pixel & 0xff) > 80; }));
    }
    static void Clear()
    {
        glClearColor(0.1f, 0.1f, 0.1f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    PreviewInfo info;
};

void PlainCurve(const PolyLine& shape, const CurveView& view)
{
    constexpr int steps = 4;
    for (int i = 0; i < shape.GetSegmentsCount(); ++i) {
        const CurveSegment segment = shape.Segment(i);
        glBegin(GL_LINE_STRIP);
        for (int step = 0; step <= steps; ++step) {
            const ShapePlace at = view.Out(segment.At(double(step) / steps));
            glVertex2d(at.x, at.y);
        }
        glEnd();
    }
}

void PlainGlyphs(const PolyLine& shape, const CurveView& view)
{
    for (const PolyPoint& point : shape.Points()) {
        const ShapePlace at = view.Out(point.Place());
        glPushMatrix();
        glTranslated(std::floor(at.x) + 0.5, std::floor(at.y) + 0.5, 0.0);
        glBegin(GL_LINE_LOOP);
        glVertex2d(-glyphSize, -glyphSize);
        glVertex2d(glyphSize, -glyphSize);
        glVertex2d(glyphSize, glyphSize);
        glVertex2d(-glyphSize, glyphSize);
        glEnd();
        glPopMatrix();
    }
}

void DrawPlainly(const PolyLine& shape, const CurveView& view, bool glyphs = true)
{
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    for (const bool isCasing : {true, false}) {
        glLineWidth(isCasing ? 3.0f : 1.0f);
        isCasing ? glColor4ub(0, 0, 0, 176) : glColor4ub(228, 228, 228, 255);
        PlainCurve(shape, view);
        if (glyphs)
            PlainGlyphs(shape, view);
    }
    glDisable(GL_BLEND);
}

/// What is drawn with is kept from one picture to the next, as an overlay keeps it.
struct Gathered {
    void Draw(const PolyLine& shape, const PreviewInfo& info, bool glyphs = true)
    {
        const CurveView view = CurveView::Of(info);
        GLOverlayPainter painter(info, 1.0);
        painter.SetColor(OverlayColor::Normal);
        MakeThinCurve(shape, view, strips);
        strips.Draw(painter);
        if (!glyphs)
            return;
        marks.clear();
        for (const PolyPoint& point : shape.Points()) {
            const ShapePlace at = view.Out(point.Place());
            marks.push_back({at.x, at.y});
        }
        constexpr OverlayPoint square[] = {{-glyphSize, -glyphSize},
                                           {glyphSize, -glyphSize},
                                           {glyphSize, glyphSize},
                                           {-glyphSize, glyphSize}};
        painter.Marks(OverlayPainter::Shape::Loop, square, marks, 1.0);
    }

    ViewStrips strips;
    std::vector<OverlayPoint> marks;
};

/// The curve covers as many pixels as the plain way's, and the glyphs are there.
bool DrawsTheSame(const View& view, const PolyLine& shape, Gathered& gathered)
{
    const auto bright = [&view](auto&& draw) {
        View::Clear();
        draw();
        return view.Bright();
    };
    const int plain = bright([&] { DrawPlainly(shape, CurveView::Of(view.info), false); });
    const int curve = bright([&] { gathered.Draw(shape, view.info, false); });
    const int all = bright([&] { gathered.Draw(shape, view.info); });
    return curve > plain / 2 && curve < 3 * plain && all > curve;
}

void DrawPlain(benchmark::State& state)
{
    View view;
    const Ref<PolyLine> shape = MakeShape(int(state.range(0)));
    View::Clear();
    for (auto _ : state) {
        DrawPlainly(*shape, CurveView::Of(view.info));
        glFinish();
    }
}

void DrawThin(benchmark::State& state)
{
    View view;
    const Ref<PolyLine> shape = MakeShape(int(state.range(0)));
    Gathered gathered;
    if (!DrawsTheSame(view, *shape, gathered))
        return state.SkipWithError("what is drawn is not what the plain way draws");
    for (auto _ : state) {
        gathered.Draw(*shape, view.info);
        glFinish();
    }
    state.counters["places"] = double(gathered.strips.Points().size());
}

void ThinOnly(benchmark::State& state)
{
    const Ref<PolyLine> shape = MakeShape(int(state.range(0)));
    const CurveView view{{viewWidth, viewHeight}, {}, viewWidth, viewHeight};
    ViewStrips strips;
    for (auto _ : state)
        MakeThinCurve(*shape, view, strips);
}

} // namespace

int main(int argc, char** argv)
{
    QSurfaceFormat format;
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    QSurfaceFormat::setDefaultFormat(format);
    QApplication application(argc, argv);
    const auto add = [](const char* name, void (*run)(benchmark::State&)) {
        benchmark::RegisterBenchmark(name, run)->Arg(100)->Arg(1000)->Arg(10000)->Arg(100000);
    };
    add("shapes/point", PointByIndex);
    add("shapes/point-scan", PointByScan);
    add("shapes/curve", CurveByIndex);
    add("shapes/curve-scan", CurveByScan);
    add("shapes/update-index", UpdateIndex);
    add("shapes/draw", DrawThin);
    add("shapes/draw-plain", DrawPlain);
    add("shapes/thin", ThinOnly);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return EXIT_SUCCESS;
}
