#include "plugin/OverlayRig.h"

#include "host/controls/Probe.h"

#include <utility>

namespace Marlox {

OverlayRig::OverlayRig(std::vector<RigInput> inputs) : document(std::make_unique<MarloxDoc>())
{
    SetProbeInputs([inputs](Operator& made) {
        for (const RigInput& each : inputs) {
            TagList tags{{IAS_Name, each.id}, {IAS_DataType, each.dataType}};
            for (const TagPair& pair : each.attributes)
                tags.Add(u32(pair.tag), pair.value);
            made.AddInput(each.id, tags);
        }
    });
    tool = document->AddTool("ProbeTool");
    document->Undo().Clear();
    stage = std::make_unique<OverlayStage>(*document);
    PreviewInfo& view = stage->View();
    view.imageLeft = 100.0;
    view.imageBottom = 50.0;
    view.imageWidth = view.pixelWidth = 400;
    view.imageHeight = view.pixelHeight = 200;
    view.viewWidth = 600;
    view.viewHeight = 300;
    QObject::connect(stage.get(), &OverlayStage::Changed, stage.get(), [this] { ++redraws_; });
    stage->SetOperator(tool);
}

OverlayRig::~OverlayRig()
{
    stage = nullptr;
    document = nullptr;
}

double OverlayRig::NumberOf(const char* id) const
{
    return InputOf(id).GetNumber(document->CurrentTime());
}

std::string OverlayRig::PointOf(const char* id) const
{
    const Ref<Parameter> value = InputOf(id).GetValue(document->CurrentTime());
    const auto* point = dynamic_cast<const Point*>(value.Get());
    return point ? QStringLiteral("%1 %2")
                       .arg(point->X(), 0, 'g', 6)
                       .arg(point->Y(), 0, 'g', 6)
                       .toStdString()
                 : std::string();
}

void OverlayRig::SetPoint(const char* id, double x, double y) const
{
    InputOf(id).SetValue(*MakeRef<Point>(x, y), document->CurrentTime());
}

void OverlayRig::Drag(std::initializer_list<MxPoint> places, u32 modifiers) const
{
    stage->Press(*places.begin(), modifiers);
    for (const MxPoint& place : places)
        stage->Move(place, modifiers);
    stage->Release(*(places.end() - 1), modifiers);
}

std::string OverlayRig::Drawn() const
{
    OverlayRecorder recorder;
    stage->Draw(recorder);
    return recorder.Text();
}

int OverlayRig::TakeRedraws()
{
    return std::exchange(redraws_, 0);
}

} // namespace Marlox
