// The polyline overlay with large shapes: one step of dragging half of the points, from the mouse
// event to the redrawn overlay, with keys and without.

#include "BenchView.h"
#include "system/shapes/ShapeKeys.h"

#include <cmath>

using namespace Marlox;

namespace {

constexpr u32 animatedShape = 0x1005800c; // edits make keys

class ShapeTool : public IdleTool {
public:
    explicit ShapeTool(const Registry* record) : IdleTool(record)
    {
        AddInput("Polyline", TagList{{IAS_DataType, CLSID_DataType_Polyline},
                                     {IAS_Overlay, "PolylineControl"},
                                     {IA_OverlayIndex, 0},
                                     {animatedShape, animated}});
    }
    static inline bool animated = false; // the next one
};

Object* MakeTool(const Registry* record, const ScriptVal&, const TagList&)
{
    return new ShapeTool(record);
}

const TagPair toolTags[] = {
    {REG_Kind, int(ClassKind::Tool)}, {REG_Create, CreateFunction(MakeTool)}, {}};
const Registry toolRecord("BenchShapeTool", toolTags);

/// A closed outline with lobes and waves.
Ref<PolyLine> Outline(int count)
{
    std::vector<PolyPoint> points(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const double angle = 2.0 * M_PI * i / count;
        const double radius = 0.3 + 0.06 * std::sin(5.0 * angle) + 0.01 * std::sin(40.0 * angle);
        points[std::size_t(i)].x = 0.5 + radius * std::cos(angle);
        points[std::size_t(i)].y = 0.5 + radius * std::sin(angle);
    }
    const Ref<PolyLine> shape = MakeRef<PolyLine>();
    shape->SetPoints(std::move(points));
    shape->Close();
    shape->Smooth({}, std::vector<u8>(std::size_t(count), 1));
    return shape;
}

struct ShapeView : BenchView {
    explicit ShapeView(int points) : BenchView("BenchShapeTool")
    {
        Shape().SetValue(*Outline(points), TimeNone);
        ScriptVal half = ScriptVal::MakeTable();
        for (int i = 0; i < points / 2; ++i)
            half.Append(i);
        ScriptVal selections = ScriptVal::MakeTable();
        selections.Append(half);
        ScriptVal state = ScriptVal::MakeTable();
        state.Set("DrawMode", 4);
        state.Set("Selections", selections);
        stage.OverlayOf(Shape())->RestoreState(state);
        Settle();
    }
    Input& Shape() const { return *tool->FindInput("Polyline"); }
    ShapePlace Place(int point) const
    {
        return ShapeOf(Shape(), document.CurrentTime())->GetPoint(point)->Place();
    }
};

void DragHalf(benchmark::State& state)
{
    ShapeTool::animated = state.range(1) != 0;
    const auto points = int(state.range(0));
    ShapeView view(points);
    if (ShapeTool::animated) {
        for (const double time : {0.0, 50.0, 100.0})
            view.Shape().AddKey(time);
        view.document.SetCurrentTime(25.0);
        BenchView::Settle();
    }
    const int held = points / 2 - 1;
    const ShapePlace place = view.Place(held);
    const MxPoint from(int(place.x * view.width()), int(place.y * view.height()));
    view.stage.Press(from, 0);
    view.makeCurrent();
    glViewport(0, 0, viewSize.width(), viewSize.height());
    double moved = 0.0;
    double before = view.Place(0).x;
    int step = 0;
    for (auto _ : state) {
        view.stage.Move({from.x + 3 + step++ % 40, from.y}, 0);
        view.DrawOverlays();
        glFinish();
        moved += std::abs(view.Place(0).x - before);
        before = view.Place(0).x;
    }
    if (!(moved > 0.9 * step / viewSize.width()))
        state.SkipWithError("not every move changes the shape");
    view.stage.Release(from, 0);
    view.doneCurrent();
}

} // namespace

int main(int argc, char** argv)
{
    return RunOverlayBenchmarks(argc, argv, [] {
        benchmark::RegisterBenchmark("polyline/drag-half", DragHalf)
            ->Args({10000, 0})
            ->Args({10000, 1});
    });
}
