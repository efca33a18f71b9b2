#include "controls/viewer/PointRules.h"
#include "plugin/OverlayRig.h"

#include <limits>

#include <QTest>

using namespace Marlox;

namespace {

constexpr u32 PCD_SetPrevPointX = 0x20058000;
constexpr u32 PCD_SetPrevPointY = 0x20058001;
constexpr u32 PCID_PrevPoint = 0x80058000;
constexpr u32 PCP_PrevPoint = 0x60058000;

RigInput PointInput(const char* id, std::vector<TagPair> more = {})
{
    more.insert(more.begin(), {{IAS_Overlay, "PointControl"}, {IA_OverlayIndex, 0}});
    return {id, CLSID_DataType_Point, more};
}

const std::string squareAtCentre =
    "normal loop at (300, 150) x 1: (-2, -2) (2, -2) (2, 2) (-2, 2) (-2, -2)\n";

double AttributeOf(Object& object, u32 tag)
{
    double value = std::numeric_limits<double>::quiet_NaN();
    object.CopyAttr(tag, &value);
    return value;
}

} // namespace

class OverlayPointTest : public QObject {
    Q_OBJECT

private slots:
    void Nudging();
    void Draws();
    void TakenByWholePixelsWithinThePickRadius();
    void DragIsOneUndoEntry();
    void OnlyRealChangesCount();
    void KeysMoveIt();
    void PreviousPointByTags();
    void PreviousPointIsDraggedAndActivated();
    void DragOffsetIsOfOneDrag();
    void BadValues();
    void ToolsThatGo();
};

void OverlayPointTest::Nudging()
{
    struct {
        int key;
        unsigned modifiers;
        double x; // pixels of the picture's width
        double y;
    } const keys[] = {
        {Qt::Key_Left, 0, -1.0, 0.0},           {Qt::Key_Right, KeyShift, 10.0, 0.0},
        {Qt::Key_Down, KeyControl, 0.0, -0.1},  {Qt::Key_Up, KeyShift | KeyControl, 0.0, 1.0},
        {Qt::Key_Right, KeyControl, 0.1, -0.0},
    };
    for (const auto& [key, modifiers, x, y] : keys) {
        const auto place = Nudged({0.25, 0.75}, u64(key), modifiers, 200);
        QVERIFY(place);
        QCOMPARE(place->x, 0.25 + x / 200.0);
        QCOMPARE(place->y, 0.75 + y / 200.0);
        QVERIFY(!Nudged({0.25, 0.75}, u64(key), modifiers, 0));
        QVERIFY(!Nudged({0.25, 0.75}, Qt::Key_A, modifiers, 200));
    }
}

void OverlayPointTest::Draws()
{
    OverlayRig rig({PointInput("pos", {{PCID_PrevPoint, "from"}}),
                    {"from", CLSID_DataType_Point, {{IAD_DefaultX, 0.0}, {IAD_DefaultY, 1.0}}}});
    QVERIFY2(rig.library.IsLoaded(), rig.library.Error().constData());
    PreviewControl& overlay = rig.OverlayOf("pos");
    QCOMPARE(rig.Drawn(), squareAtCentre + "normal lines: (300, 150) (100, 250)\n");
    rig.View().controlScale = 3.0; // of marks, not of lines
    const std::string square = "normal loop at (300, 150) x 3: "
                               "(-2, -2) (2, -2) (2, 2) (-2, 2) (-2, -2)\n";
    QCOMPARE(rig.Drawn(), square + "normal lines: (300, 150) (100, 250)\n");

    rig.stage->Press({303, 150}, 0);
    rig.stage->Move({343, 150}, 0);
    QVERIFY(rig.Drawn().find("normal lines: (340, 150) (100, 250)\n") != std::string::npos);
    overlay.SetAttrsTagList({{PC_HideWhileDragging, true}});
    QCOMPARE(rig.Drawn(), std::string());
    rig.stage->CancelDrag();
    OverlayRecorder recorder;
    rig.View().painter = &recorder;
    rig.View().drawMode = DrawHidden;
    overlay.GLDrawControls(&rig.View(), nullptr);
    QCOMPARE(recorder.Text(), std::string());
    rig.View().drawMode = DrawIdle;

    rig.TakeRedraws();
    QVERIFY(overlay.RemoveInput(&rig.InputOf("from"), nullptr));
    QVERIFY(rig.TakeRedraws() > 0);
    QCOMPARE(rig.Drawn(), square);
    rig.SetPoint("from", 0.25, 0.25);
    QCOMPARE(rig.TakeRedraws(), 0); // no longer listens
}

void OverlayPointTest::TakenByWholePixelsWithinThePickRadius()
{
    OverlayRig rig({PointInput("pos")});
    rig.SetPoint("pos", 0.50225, 0.5); // at 300.9
    rig.document->Undo().Clear();
    struct {
        MxPoint at;
        bool taken;
    } const places[] = {{{295, 155}, true},  {{294, 150}, false}, {{306, 145}, true},
                        {{307, 150}, false}, {{300, 156}, false}, {{300, 144}, false}};
    for (const auto& [at, taken] : places) {
        const QByteArray where = QByteArray::number(at.x) + ' ' + QByteArray::number(at.y);
        rig.stage->Move(at, 0);
        QVERIFY2(rig.View().currentControl == (taken ? &rig.OverlayOf("pos") : nullptr), where);
        QVERIFY2(rig.stage->Press(at, 0) == taken, where);
        rig.stage->Release(at, 0);
    }
    rig.stage->Move({300, 150}, 0);
    rig.stage->Leave();
    QVERIFY(!rig.View().currentControl);
    QCOMPARE(rig.UndoEntries(), 0);
}

void OverlayPointTest::DragIsOneUndoEntry()
{
    OverlayRig rig({PointInput("pos")});
    rig.Drag({{303, 148}, {310, 148}, {313, 158}});
    QCOMPARE(rig.PointOf("pos"), std::string("0.525 0.55")); // the distance is kept
    QCOMPARE(AttributeOf(rig.OverlayOf("pos"), PCD_DragOffsetX), -3.0);
    QCOMPARE(AttributeOf(rig.OverlayOf("pos"), PCD_DragOffsetY), 2.0);
    QCOMPARE(rig.UndoEntries(), 1);
    QCOMPARE(rig.UndoText(), QString("Adjust pos"));
    QCOMPARE(rig.document->Undo().Depth(), 0);
    rig.document->Undo().Undo();
    QCOMPARE(rig.Drawn(), squareAtCentre);
}

void OverlayPointTest::OnlyRealChangesCount()
{
    OverlayRig rig({PointInput("pos", {{PCID_PrevPoint, "from"}}), {"from", "Point", {}}});
    for (const char* id : {"pos", "from"}) {
        rig.TakeRedraws();
        rig.SetPoint(id, 0.500009, 0.499991);
        QVERIFY2(rig.TakeRedraws() == 0, id);
        rig.SetPoint(id, 0.500011, 0.5);
        QVERIFY2(rig.TakeRedraws() == 1, id);
        rig.SetPoint(id, 0.5, 0.5);
    }
    rig.document->Undo().Clear();
    rig.View().imageWidth = 1e6;
    rig.View().imageLeft = 300.0 - 0.5e6;
    rig.stage->Press({300, 150}, 0);
    rig.stage->Move({309, 150}, 0); // nine millionths
    QCOMPARE(rig.PointOf("pos"), std::string("0.5 0.5"));
    QCOMPARE(rig.document->Undo().Depth(), 0);
    rig.stage->Move({311, 150}, 0);
    QCOMPARE(rig.PointOf("pos"), std::string("0.500011 0.5"));
}

void OverlayPointTest::KeysMoveIt()
{
    OverlayRig rig({PointInput("pos")});
    rig.View().pixelWidth = 1000; // of which the view shows fewer
    rig.stage->FocusNext(true);
    QVERIFY(rig.stage->KeyDown(Qt::Key_Right, KeyShift));
    QVERIFY(rig.stage->KeyDown(Qt::Key_Up, 0));
    QVERIFY(!rig.stage->KeyDown(Qt::Key_Home, 0));
    QCOMPARE(rig.PointOf("pos"), std::string("0.51 0.501"));
    rig.stage->KeyUpAll();
    QCOMPARE(rig.UndoEntries(), 1);
    QCOMPARE(rig.document->Undo().Depth(), 0);
}

void OverlayPointTest::PreviousPointByTags()
{
    OverlayRig rig({PointInput("pos"), {"other", "Point", {}}});
    PreviewControl& overlay = rig.OverlayOf("pos");
    const std::string line = squareAtCentre + "normal lines: (300, 150) (500, 250)\n";
    rig.SetPoint("other", 1.0, 1.0);
    overlay.SetAttrsTagList({{PCD_SetPrevPointX, 0.0}}); // has no line
    QCOMPARE(rig.Drawn(), squareAtCentre);
    overlay.SetAttrsTagList({{PCP_PrevPoint, &rig.InputOf("other")}});
    QCOMPARE(rig.Drawn(), line);
    overlay.SetAttrsTagList({{PCD_SetPrevPointX, 0.25}, {PCD_SetPrevPointY, 0.25}});
    QCOMPARE(rig.Drawn(), line); // the input rules
    // An id wins over the address, even one that names no input.
    overlay.SetAttrsTagList({{PCID_PrevPoint, "none"}});
    QCOMPARE(rig.Drawn(), squareAtCentre);
    overlay.SetAttrsTagList({{PCID_PrevPoint, "other"}});
    QCOMPARE(rig.Drawn(), line);

    TagList tags{{PCD_SetPrevPointX, 0.25}, {PCD_SetPrevPointY, 0.5}, {PCID_PrevPoint, "from"}};
    ScriptVal table = ScriptVal::MakeTable();
    QVERIFY(overlay.GetRegistry()->TagMapper()("GetAttrs", true, table, tags));
    QCOMPARE(table.Get("PCD_SetPrevPointX").ToNumber(), 0.25);
    QCOMPARE(table.Get("PCD_SetPrevPointY").ToNumber(), 0.5);
    QCOMPARE(table.Get("PCID_PrevPoint").ToString(), std::string("from"));
}

void OverlayPointTest::PreviousPointIsDraggedAndActivated()
{
    OverlayRig rig({PointInput("first"), PointInput("second", {{PCID_PrevPoint, "first"}}),
                    PointInput("third", {{PCID_PrevPoint, "second"}}), PointInput("apart")});
    // All lie at the same place: the first in order takes the press.
    rig.stage->Press({300, 150}, 0);
    QCOMPARE(rig.OverlayOf("second").DragState(), DragType::Driven);
    QCOMPARE(rig.OverlayOf("third").DragState(), DragType::None);
    rig.stage->Move({340, 150}, 0);
    rig.stage->Release({340, 150}, 0);
    QCOMPARE(rig.OverlayOf("second").DragState(), DragType::None);
    QCOMPARE(rig.PointOf("first"), std::string("0.6 0.5"));
    QCOMPARE(rig.PointOf("second"), std::string("0.5 0.5"));

    for (PreviewControl* overlay : rig.stage->Overlays())
        overlay->SetInactive(nullptr);
    rig.OverlayOf("third").SetActive(1, nullptr);
    QVERIFY(rig.OverlayOf("first").IsActive());
    QVERIFY(rig.OverlayOf("second").IsActive());
    QVERIFY(!rig.OverlayOf("apart").IsActive());
}

void OverlayPointTest::DragOffsetIsOfOneDrag()
{
    OverlayRig rig({PointInput("pos")});
    PreviewControl& overlay = rig.OverlayOf("pos");
    rig.stage->Press({300, 150}, 0);
    overlay.SetAttrsTagList({{PCD_DragOffsetX, 40.0}, {PCD_DragOffsetY, -20.0}});
    rig.stage->Move({301, 150}, 0);
    QCOMPARE(rig.PointOf("pos"), std::string("0.6025 0.4"));
    rig.stage->Release({301, 150}, 0);

    rig.stage->Press({341, 130}, 0);
    rig.InputOf("pos").SetAttrsTagList({{IAS_Help, "where it is"}}); // attributes are read again
    rig.stage->Move({341, 150}, 0);
    QCOMPARE(rig.PointOf("pos"), std::string("0.6025 0.5"));
}

void OverlayPointTest::BadValues()
{
    OverlayRig rig({PointInput("pos", {{PCID_PrevPoint, "from"}}), {"from", "Point", {}}});
    rig.SetPoint("from", 1e300, -1e300);
    rig.SetPoint("pos", 1e300, 0.5);
    QVERIFY(!rig.stage->Press({300, 150}, 0));
    rig.SetPoint("pos", 0.5, 0.5);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    rig.SetPoint("pos", nan, nan);
    QCOMPARE(rig.Drawn(), squareAtCentre + "normal lines: (300, 150) (huge, -huge)\n");
    rig.Drag({{300, 150}, {340, 150}});
    QCOMPARE(rig.PointOf("pos"), std::string("0.6 0.5"));

    PreviewInfo& view = rig.View(); // of no size, without a picture
    view.imageWidth = view.imageHeight = 0.0;
    view.pixelWidth = view.pixelHeight = 0;
    rig.stage->Move({500, 90}, 0);
    QVERIFY(!view.currentControl);
    rig.Drag({{103, 52}, {120, 60}});
    rig.stage->FocusNext(true);
    QVERIFY(!rig.stage->KeyDown(Qt::Key_Left, 0));
    QCOMPARE(rig.PointOf("pos"), std::string("0.6 0.5"));
}

void OverlayPointTest::ToolsThatGo()
{
    OverlayRig rig({PointInput("pos")});
    Operator* other = rig.document->AddTool("ProbeTool");
    Input* from = other->FindInput("pos");
    from->SetValue(Point(0.0, 0.0), 0.0);
    rig.InputOf("pos").SetAttrsTagList({{PCP_PrevPoint, from}});
    QCOMPARE(rig.Drawn(), squareAtCentre + "normal lines: (300, 150) (100, 50)\n");
    rig.document->RemoveTool(*other);
    rig.document->Undo().Clear(); // it is gone; the attribute keeps its address
    rig.InputOf("pos").SetAttrsTagList({{IAS_Help, "where it is"}});
    QCOMPARE(rig.Drawn(), squareAtCentre);

    rig.stage->Press({300, 150}, 0);
    rig.stage->Move({340, 150}, 0);
    rig.document->RemoveTool(*rig.tool);
    QCOMPARE(rig.document->Undo().Depth(), 0);
    QCOMPARE(rig.Drawn(), std::string());
    rig.stage->Move({380, 150}, 0);
    QCOMPARE(rig.UndoEntries(), 2); // the drag, and the removal that ended it
    rig.document->Undo().Undo();
    QCOMPARE(rig.PointOf("pos"), std::string("0.6 0.5"));
    rig.document->Undo().Undo();
    QCOMPARE(rig.PointOf("pos"), std::string("0.5 0.5"));
}

QTEST_MAIN(OverlayPointTest)
#include "overlay_point_test.moc"
