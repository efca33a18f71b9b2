#include "host/controls/Probe.h"

#include "script/ScriptSystem.h"

#include <cstring>

#include <QtTest>

using namespace Marlox;

namespace {

/// Counts what an overlay tells its viewer.
class Listener : public Object {
public:
    int heard = 0;
    bool HandleEvent(Object*, const MxID& event, TagList&) override
    {
        heard += event == MxID("DisplayChanged");
        return true;
    }
};

/// The place of a virtual operation in its class's table, as the Itanium C++ ABI lays it out: a
/// pointer to it holds the offset plus one. The destructor takes 0 and 1.
template <class Class, class Operation>
int slotOf(Operation Class::*operation)
{
    std::size_t first = 0;
    std::memcpy(&first, &operation, sizeof first);
    return int((first - 1) / sizeof(void*));
}

} // namespace

class PreviewControlTest : public QObject {
    Q_OBJECT
private slots:
    void init();
    void operationsKeepTheirSlots();
    void toldOfChanges();
    void writesAndUndo();
    void commands();
    void names();
    void gestureEndsWithTheOverlay();
    void pointsThereAndBack();
    void circleStaysRound();
    void pictureOfNoSize();

private:
    std::unique_ptr<MarloxDoc> document_;
    Operator* tool_ = nullptr;
    Ref<ProbeOverlay> overlay_;
};

void PreviewControlTest::init()
{
    InstallScripting();
    overlay_ = nullptr;
    document_ = std::make_unique<MarloxDoc>();
    SetProbeInputs([](Operator& tool) {
        tool.AddInput("centre", ProbeAttributes("Centre", {{IA_OverlayIndex, 0}}));
        tool.AddInput("size", ProbeAttributes("Größe", {{IA_OverlayIndex, 1}, {IAD_Maximum, 2.0}}));
    });
    tool_ = document_->AddTool("ProbeTool");
    tool_->SetName("Warp");
    overlay_ = MakeRef<ProbeOverlay>(nullptr, ScriptVal(), TagList());
    QVERIFY(overlay_->AddInput(tool_->FindInput("centre"), nullptr));
    QVERIFY(overlay_->AddInput(tool_->FindInput("size"), nullptr));
    QCOMPARE(overlay_->GetOperator(nullptr), tool_);
}

// Plug-ins are built against this order: an operation put in between breaks every one of them.
void PreviewControlTest::operationsKeepTheirSlots()
{
    QCOMPARE(slotOf(&Object::lw_push), 2);
    QCOMPARE(slotOf(&Object::SizeOf), 11);
    QCOMPARE(slotOf(&Object::DoTagList), 21);
    QCOMPARE(slotOf(&Object::GetDoc), 34);
    QCOMPARE(slotOf(&Object::_IsValid), 44);
    QCOMPARE(slotOf(&InputControl::DefWindowProc), 45);
    QCOMPARE(slotOf(&InputControl::Open), 48);
    QCOMPARE(slotOf(&InputControl::SetInputs), 57);
    QCOMPARE(slotOf(&InputControl::AddExpressionEdit), 66);
    QCOMPARE(slotOf(&InputControl::OnEditEndDrag), 79);
    QCOMPARE(slotOf(&PreviewControl::SetView), 45);
    QCOMPARE(slotOf(&PreviewControl::SetActive), 55);
    QCOMPARE(slotOf(&PreviewControl::ControlDown), 58);
    QCOMPARE(slotOf(&PreviewControl::GetFullName), 66);
}

void PreviewControlTest::toldOfChanges()
{
    const auto listener = MakeRef<Listener>();
    overlay_->AddNotify(listener.Get(), "DisplayChanged");
    QVERIFY(tool_->FindInput("size")->SetValue(*MakeRef<Number>(1.0), 0.0));
    QCOMPARE(std::exchange(overlay_->log, {}), QStringList({"notify size=1", "display size"}));
    QCOMPARE(listener->heard, 1);
    QVERIFY(tool_->FindInput("centre")->AddKey(0.0));
    overlay_->log.clear();
    document_->SetCurrentTime(7.0);
    QCOMPARE(std::exchange(overlay_->log, {}), QStringList({"notify centre=0", "display centre"}));
    QVERIFY(overlay_->RemoveInput(tool_->FindInput("size"), nullptr));
    QVERIFY(!overlay_->RemoveInput(tool_->FindInput("size"), nullptr));
    QVERIFY(tool_->FindInput("size")->SetValue(*MakeRef<Number>(0.0), 0.0));
    QVERIFY(overlay_->log.empty());
    Operator* other = document_->AddTool("ProbeTool");
    QVERIFY(!overlay_->AddInput(other->FindInput("size"), nullptr));
}

void PreviewControlTest::writesAndUndo()
{
    document_->Undo().Clear();
    QVERIFY(overlay_->SetInputs(MakeRef<Number>(7.0).Get(), 0.0, 1, nullptr));
    QCOMPARE(tool_->FindInput("size")->GetNumber(0.0), 2.0);
    QVERIFY(!overlay_->SetInputs(MakeRef<Number>(7.0).Get(), 0.0, 2, nullptr));
    QCOMPARE(document_->Undo().UndoText(), QString("Adjust Größe"));
    overlay_->SetUndo(0, nullptr);
    for (double value : {0.1, 0.2})
        QVERIFY(overlay_->SetInputs(MakeRef<Number>(value).Get(), 0.0, 0, nullptr));
    overlay_->ControlUp(nullptr, {0, 0}, nullptr); // ends what was begun
    QCOMPARE(document_->Undo().Depth(), 0);
    QCOMPARE(document_->Undo().Stack().count(), 2);
    tool_->FindInput("centre")->SetExpression("1");
    QVERIFY(!overlay_->SetInputs(MakeRef<Number>(0.5).Get(), 0.0, 0, nullptr));
}

void PreviewControlTest::commands()
{
    document_->Undo().Clear();
    const auto value = MakeRef<Number>(0.75);
    TagList write({{PV_Value, value.Get()}, {IA_OverlayIndex, 0}});
    QCOMPARE(overlay_->DoTagList(PreviewControl::OpenUndo, write), u64(1));
    QCOMPARE(overlay_->DoTagList(PreviewControl::WriteValue, write), u64(1));
    QCOMPARE(document_->Undo().Depth(), 1);
    QCOMPARE(overlay_->DoTagList(PreviewControl::CloseUndo, write), u64(1));
    QCOMPARE(document_->Undo().UndoText(), QString("Adjust Centre"));
    QCOMPARE(tool_->FindInput("centre")->GetNumber(0.0), 0.75);
    TagList wrong({{PV_Value, overlay_.Get()}, {IA_OverlayIndex, 0}});
    QCOMPARE(overlay_->DoTagList(PreviewControl::WriteValue, wrong), u64(0));
    overlay_->log.clear();
    QCOMPARE(overlay_->DoTagList(PreviewControl::Redisplay, wrong), u64(1));
    QCOMPARE(overlay_->log, QStringList("display -"));
    QCOMPARE(overlay_->DoTagList(999, wrong), u64(0));
}

void PreviewControlTest::names()
{
    char text[32] = "";
    QVERIFY(overlay_->GetName(text, sizeof text, nullptr));
    QCOMPARE(text, "Centre");
    QVERIFY(overlay_->GetFullName(text, sizeof text, tool_->FindInput("size"), nullptr));
    QCOMPARE(text, "Warp.Größe");
    QVERIFY(overlay_->GetFullName(text, sizeof text, nullptr, nullptr));
    QCOMPARE(text, "Warp.Centre");
    // Room for half of the two bytes of a letter: it is left out.
    QVERIFY(overlay_->GetFullName(text, 9, tool_->FindInput("size"), nullptr));
    QCOMPARE(text, "Warp.Gr");
    QVERIFY(overlay_->GetName(text, 1, nullptr));
    QCOMPARE(text, "");
    QVERIFY(!overlay_->GetName(text, 0, nullptr));
    QVERIFY(!MakeRef<ProbeOverlay>(nullptr, ScriptVal(), TagList())->GetName(text, 9, nullptr));
}

void PreviewControlTest::gestureEndsWithTheOverlay()
{
    overlay_->SetUndo(0, nullptr);
    overlay_ = nullptr;
    QCOMPARE(document_->Undo().Depth(), 0);
    Input* centre = tool_->FindInput("centre");
    QVERIFY(centre->Controls().empty());
    QVERIFY(centre->AddKey(0.0));
    document_->SetCurrentTime(3.0);

    const auto last = MakeRef<ProbeOverlay>(nullptr, ScriptVal(), TagList());
    QVERIFY(last->AddInput(centre, nullptr));
    document_ = nullptr; // the overlay keeps the tool
    QCOMPARE(last->Inputs().front()->GetID(), MxID("centre"));
    QVERIFY(!last->GetDoc());
}

void PreviewControlTest::pointsThereAndBack()
{
    PreviewInfo info;
    info.imageLeft = 10.0;
    info.imageBottom = 20.0;
    info.imageWidth = 200.0;
    info.imageHeight = 100.0;
    double x = 0.0;
    double y = 0.0;
    info.TransformOut(0.0, 1.0, x, y); // the image's top left
    QCOMPARE(x, 10.0);
    QCOMPARE(y, 120.0);
    info.TransformOut(0.25, 0.25, x, y);
    QCOMPARE(x, 60.0);
    QCOMPARE(y, 45.0);
    double w = 0.0;
    info.TransformOut(0.5, 0.5, 2.0, x, y, w); // the same point
    QCOMPARE(x / w, 60.0);
    QCOMPARE(y / w, 45.0);
    info.TransformIn(x / w, y / w, x, y);
    QCOMPARE(x, 0.25);
    QCOMPARE(y, 0.25);
    QCOMPARE(info.TransformXIn(info.TransformXOut(-3.0)), -3.0);
    QCOMPARE(info.TransformYIn(info.TransformYOut(7.5)), 7.5);
}

void PreviewControlTest::circleStaysRound()
{
    PreviewInfo info; // anamorphic: 1000 x 800 pixels twice as wide as high, at 30 %
    info.pixelWidth = 1000;
    info.pixelHeight = 800;
    info.pixelAspect = 2.0;
    info.imageWidth = 600.0;
    info.imageHeight = 240.0;
    // A radius of half the image's width: as many view pixels up as across.
    QCOMPARE(info.AspectScaleXOut(0.5) * info.imageWidth, 300.0);
    QCOMPARE(info.AspectScaleYOut(0.5) * info.imageHeight, 300.0);
    QCOMPARE(info.AspectScaleXIn(0.5), 0.5);
    QCOMPARE(info.AspectScaleYIn(info.AspectScaleYOut(-0.5)), -0.5);
}

void PreviewControlTest::pictureOfNoSize()
{
    PreviewInfo info;
    info.imageWidth = info.imageHeight = 0.0;
    info.pixelWidth = info.pixelHeight = 0;
    QCOMPARE(info.TransformXIn(50.0), 0.0);
    QCOMPARE(info.TransformYIn(50.0), 0.0);
    QCOMPARE(info.AspectScaleYIn(50.0), 50.0);
}

QTEST_MAIN(PreviewControlTest)
#include "PreviewControlTest.moc"
