// Overlays of the control library, loaded as a host loads it, over a view of 1280 x 720 pixels:
// finding what is under the pointer and drawing 500 of them, and what one step of a drag costs from
// the mouse event to the repainted view, beside a repaint of the same view without any.

#include "BenchView.h"

#include <algorithm>
#include <cmath>
#include <vector>

using namespace Marlox;

namespace {

constexpr int many = 500;
constexpr int columns = 25;
constexpr u32 crosshairStyle = 0x10058000; // four of them, from 0
constexpr u32 previousPoint = 0x80058000;  // id of the point that another is joined to

int overlaysMade = 0; // for the next tool

QPointF PlaceOf(int index)
{
    return {(index % columns + 0.5) / columns, (index / columns + 0.5) / (many / columns)};
}

/// A tool with points all over the picture: every other one a crosshair, in turn of each style; the
/// rest points, each fifth of them joined to the one before.
class PointsTool : public IdleTool {
public:
    explicit PointsTool(const Registry* record) : IdleTool(record)
    {
        std::string before;
        for (int i = 0; i < overlaysMade; ++i) {
            const std::string id = "p" + std::to_string(i);
            const QPointF place = PlaceOf(i);
            TagList tags{{IAS_DataType, CLSID_DataType_Point},
                         {IAS_Overlay, i % 2 ? "CrosshairControl" : "PointControl"},
                         {IA_OverlayIndex, 0},
                         {IAD_DefaultX, place.x()},
                         {IAD_DefaultY, place.y()}};
            if (i % 2)
                tags.Add(crosshairStyle, i / 2 % 4);
            else if (i % 10 == 8 && i % columns > 0)
                tags.Add(previousPoint, before.c_str());
            AddInput(MxID(id.c_str()), tags);
            before = id;
        }
    }
};

Object* MakeTool(const Registry* record, const ScriptVal&, const TagList&)
{
    return new PointsTool(record);
}

const TagPair toolTags[] = {
    {REG_Kind, int(ClassKind::Tool)}, {REG_Create, CreateFunction(MakeTool)}, {}};
const Registry toolRecord("BenchPointsTool", toolTags);

class View : public BenchView {
public:
    explicit View(int overlays)
        : BenchView((overlaysMade = overlays) > 0 ? "BenchPointsTool" : nullptr)
    {
    }
    QPointF Middle(int overlay) const
    {
        const QPointF place = PlaceOf(overlay);
        return {place.x() * width(), (1.0 - place.y()) * height()};
    }
    double ValueX(int overlay) const
    {
        const Input& input = *tool->Inputs()[std::size_t(overlay)];
        return dynamic_cast<const Point&>(*input.GetValue(0.0)).X();
    }
};

/// Each place is another one than the last, mostly beside the overlays, now and then on one.
MxPoint Wandering(int step)
{
    return {13 + step * 37 % 1250, 11 + step * 23 % 700};
}

/// Whether what is drawn now reaches the picture: pixels of all marks.
bool DrawsMarks(View& view)
{
    glClear(GL_COLOR_BUFFER_BIT);
    view.DrawOverlays();
    std::vector<unsigned> pixels(std::size_t(viewSize.width() * viewSize.height()));
    glReadPixels(0, 0, viewSize.width(), viewSize.height(), GL_RGBA, GL_UNSIGNED_BYTE,
                 pixels.data());
    const auto bright = std::count_if(pixels.begin(), pixels.end(),
                                      [](unsigned pixel) { return (pixel & 0xff) > 80; });
    return bright > 8 * many;
}

void HitAndDraw(benchmark::State& state)
{
    View view(many);
    if (view.stage.Overlays().size() != many)
        return state.SkipWithError("not every overlay was made");
    view.makeCurrent();
    glViewport(0, 0, viewSize.width(), viewSize.height());
    if (!DrawsMarks(view))
        return state.SkipWithError("the marks are not drawn");
    int step = 0;
    int hits = 0;
    for (auto _ : state) {
        view.stage.Move(Wandering(++step), 0);
        view.DrawOverlays();
        glFinish();
        hits += view.stage.View().currentControl != nullptr;
    }
    state.counters["hits"] = benchmark::Counter(hits, benchmark::Counter::kAvgIterations);
    view.doneCurrent();
}

void HitOnly(benchmark::State& state)
{
    View view(many);
    int step = 0;
    for (auto _ : state)
        view.stage.Move(Wandering(++step), 0);
}

/// From the mouse event to the repainted view.
void DragStep(benchmark::State& state)
{
    const int overlays = int(state.range(0));
    View view(overlays);
    const int dragged = overlays / 2 / 2 * 2; // a point
    const QPointF from = view.Middle(dragged);
    view.Send(QEvent::MouseButtonPress, from);
    View::Settle();
    double moved = 0.0;
    double before = view.ValueX(dragged);
    const int paints = view.paints;
    int step = 0;
    for (auto _ : state) {
        view.Send(QEvent::MouseMove, from + QPointF(3.0 + step++ % 40, 0.0));
        QCoreApplication::sendPostedEvents();
        moved += std::abs(view.ValueX(dragged) - before);
        before = view.ValueX(dragged);
    }
    if (view.paints - paints < step || !(moved > 0.9 * step / viewSize.width()))
        state.SkipWithError("not every move changes the value and paints");
    view.Send(QEvent::MouseButtonRelease, from);
}

void BareRepaint(benchmark::State& state)
{
    View view(0);
    const int paints = view.paints;
    int step = 0;
    for (auto _ : state) {
        ++step;
        view.update();
        QCoreApplication::sendPostedEvents();
    }
    if (view.paints - paints < step)
        state.SkipWithError("not every repaint paints");
}

} // namespace

int main(int argc, char** argv)
{
    return RunOverlayBenchmarks(argc, argv, [] {
        benchmark::RegisterBenchmark("overlays/hit-and-draw-500", HitAndDraw);
        benchmark::RegisterBenchmark("overlays/hit-500", HitOnly);
        benchmark::RegisterBenchmark("overlays/drag-step", DragStep)->Arg(1)->Arg(many);
        benchmark::RegisterBenchmark("overlays/bare-repaint", BareRepaint);
    });
}
